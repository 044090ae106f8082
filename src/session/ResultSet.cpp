#include "session/ResultSet.h"

#include "session/Dates.h"

#include <cmath>

namespace knjige {

QString fieldTypeName(FieldType type)
{
    switch (type) {
    case FieldType::Integer: return QStringLiteral("integer");
    case FieldType::Currency: return QStringLiteral("currency");
    case FieldType::Decimal: return QStringLiteral("decimal");
    case FieldType::Float: return QStringLiteral("float");
    case FieldType::Date: return QStringLiteral("date");
    case FieldType::Text: return QStringLiteral("text");
    case FieldType::Boolean: return QStringLiteral("boolean");
    }
    return {};
}

bool isNumeric(FieldType type)
{
    return type == FieldType::Integer || type == FieldType::Currency || type == FieldType::Decimal
        || type == FieldType::Float;
}

static bool storesReal(FieldType t) { return t == FieldType::Decimal || t == FieldType::Float; }
static bool storesText(FieldType t) { return t == FieldType::Text; }

ResultSet::ResultSet(QVector<Field> fields)
    : m_fields(std::move(fields))
    , m_columns(m_fields.size())
{
}

int ResultSet::indexOf(const QString& name) const
{
    for (int i = 0; i < m_fields.size(); ++i)
        if (m_fields[i].name.compare(name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

QVariant ResultSet::value(int row, int c) const
{
    if (isNull(row, c))
        return {};
    const Column& col = m_columns[c];
    switch (m_fields[c].type) {
    case FieldType::Integer: return QVariant::fromValue<qlonglong>(col.numbers[row]);
    case FieldType::Currency: return QVariant::fromValue(Money::fromUnits(col.numbers[row]));
    case FieldType::Decimal:
    case FieldType::Float: return col.reals[row];
    case FieldType::Date: return QDate::fromJulianDay(col.numbers[row]);
    case FieldType::Text: return col.texts[row];
    case FieldType::Boolean: return col.numbers[row] != 0;
    }
    return {};
}

QVariant ResultSet::value(int row, const QString& name) const
{
    const int c = indexOf(name);
    return c < 0 ? QVariant() : value(row, c);
}

qint64 ResultSet::integer(int row, int c) const
{
    if (isNull(row, c))
        return 0;
    switch (m_fields[c].type) {
    case FieldType::Currency: return m_columns[c].numbers[row] / Money::Scale;
    case FieldType::Decimal:
    case FieldType::Float: return qint64(m_columns[c].reals[row]);
    case FieldType::Text: return m_columns[c].texts[row].trimmed().toLongLong();
    default: return m_columns[c].numbers[row];
    }
}

Money ResultSet::money(int row, int c) const
{
    if (isNull(row, c))
        return {};
    switch (m_fields[c].type) {
    case FieldType::Currency: return Money::fromUnits(m_columns[c].numbers[row]);
    case FieldType::Integer:
    case FieldType::Boolean: return Money::fromWhole(m_columns[c].numbers[row]);
    case FieldType::Decimal:
    case FieldType::Float: return Money::fromDouble(m_columns[c].reals[row]);
    case FieldType::Text: return Money::parse(m_columns[c].texts[row]).value_or(Money());
    case FieldType::Date: return {};
    }
    return {};
}

double ResultSet::real(int row, int c) const
{
    if (isNull(row, c))
        return 0;
    switch (m_fields[c].type) {
    case FieldType::Currency: return Money::fromUnits(m_columns[c].numbers[row]).toDouble();
    case FieldType::Decimal:
    case FieldType::Float: return m_columns[c].reals[row];
    case FieldType::Text: return m_columns[c].texts[row].toDouble();
    default: return double(m_columns[c].numbers[row]);
    }
}

QDate ResultSet::date(int row, int c) const
{
    if (isNull(row, c) || m_fields[c].type != FieldType::Date)
        return {};
    return QDate::fromJulianDay(m_columns[c].numbers[row]);
}

QString ResultSet::text(int row, int c) const
{
    if (isNull(row, c))
        return {};
    const Column& col = m_columns[c];
    switch (m_fields[c].type) {
    case FieldType::Integer: return QString::number(col.numbers[row]);
    case FieldType::Currency: return Money::fromUnits(col.numbers[row]).toPlainString();
    case FieldType::Decimal:
    case FieldType::Float: return QString::number(col.reals[row], 'g', 15);
    case FieldType::Date: return QDate::fromJulianDay(col.numbers[row]).toString(Qt::ISODate);
    case FieldType::Text: return col.texts[row];
    case FieldType::Boolean: return col.numbers[row] ? QStringLiteral("1") : QStringLiteral("0");
    }
    return {};
}

void ResultSet::reserve(int rows)
{
    for (int c = 0; c < fieldCount(); ++c) {
        Column& col = m_columns[c];
        col.nulls.reserve(rows);
        if (storesReal(m_fields[c].type))
            col.reals.reserve(rows);
        else if (storesText(m_fields[c].type))
            col.texts.reserve(rows);
        else
            col.numbers.reserve(rows);
    }
}

void ResultSet::appendRow()
{
    for (int c = 0; c < fieldCount(); ++c) {
        Column& col = m_columns[c];
        col.nulls.push_back(1);
        if (storesReal(m_fields[c].type))
            col.reals.push_back(0);
        else if (storesText(m_fields[c].type))
            col.texts.emplace_back();
        else
            col.numbers.push_back(0);
    }
    ++m_rows;
}

void ResultSet::setNull(int c) { column(c).nulls.back() = 1; }

void ResultSet::setInteger(int c, qint64 v)
{
    switch (m_fields[c].type) {
    case FieldType::Currency: setMoney(c, Money::fromWhole(v)); return;
    case FieldType::Decimal:
    case FieldType::Float: setReal(c, double(v)); return;
    case FieldType::Text: setText(c, QString::number(v)); return;
    default: break;
    }
    column(c).numbers.back() = v;
    column(c).nulls.back() = 0;
}

void ResultSet::setMoney(int c, Money v)
{
    switch (m_fields[c].type) {
    case FieldType::Currency: column(c).numbers.back() = v.units(); break;
    case FieldType::Decimal:
    case FieldType::Float: column(c).reals.back() = v.toDouble(); break;
    case FieldType::Text: column(c).texts.back() = v.toPlainString(); break;
    default: column(c).numbers.back() = v.units() / Money::Scale; break;
    }
    column(c).nulls.back() = 0;
}

void ResultSet::setReal(int c, double v)
{
    switch (m_fields[c].type) {
    case FieldType::Currency: column(c).numbers.back() = Money::fromDouble(v).units(); break;
    case FieldType::Decimal:
    case FieldType::Float: column(c).reals.back() = v; break;
    case FieldType::Text: column(c).texts.back() = QString::number(v, 'g', 15); break;
    case FieldType::Date: return;
    default: column(c).numbers.back() = qint64(std::llround(v)); break;
    }
    column(c).nulls.back() = 0;
}

void ResultSet::setDate(int c, const QDate& v)
{
    if (!v.isValid())
        return;
    if (m_fields[c].type == FieldType::Text) {
        setText(c, v.toString(Qt::ISODate));
        return;
    }
    column(c).numbers.back() = v.toJulianDay();
    column(c).nulls.back() = 0;
}

void ResultSet::setText(int c, const QString& v)
{
    switch (m_fields[c].type) {
    case FieldType::Text: column(c).texts.back() = v; break;
    case FieldType::Date: {
        const QDate d = dates::fromIsoText(v);
        if (!d.isValid())
            return;
        column(c).numbers.back() = d.toJulianDay();
        break;
    }
    case FieldType::Currency: column(c).numbers.back() = Money::parse(v).value_or(Money()).units(); break;
    case FieldType::Decimal:
    case FieldType::Float: column(c).reals.back() = v.toDouble(); break;
    default: column(c).numbers.back() = v.trimmed().toLongLong(); break;
    }
    column(c).nulls.back() = 0;
}

void ResultSet::set(int c, const QVariant& v)
{
    if (!v.isValid() || v.isNull()) {
        setNull(c);
        return;
    }
    switch (v.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort: setInteger(c, v.toLongLong()); return;
    case QMetaType::Double:
    case QMetaType::Float: setReal(c, v.toDouble()); return;
    case QMetaType::QDate: setDate(c, v.toDate()); return;
    case QMetaType::QDateTime: setDate(c, v.toDateTime().date()); return;
    default: break;
    }
    if (v.canConvert<Money>() && v.userType() == qMetaTypeId<Money>()) {
        setMoney(c, v.value<Money>());
        return;
    }
    setText(c, v.toString());
}

void ResultSet::permute(const std::vector<int>& order)
{
    for (Column& col : m_columns) {
        Column sorted;
        sorted.nulls.reserve(order.size());
        for (int i : order)
            sorted.nulls.push_back(col.nulls[i]);
        if (!col.numbers.empty())
            for (int i : order)
                sorted.numbers.push_back(col.numbers[i]);
        if (!col.reals.empty())
            for (int i : order)
                sorted.reals.push_back(col.reals[i]);
        if (!col.texts.empty())
            for (int i : order)
                sorted.texts.push_back(std::move(col.texts[i]));
        col = std::move(sorted);
    }
}

} // namespace knjige
