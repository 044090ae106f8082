#include "session/db/ResultSet.h"

#include "session/Dates.h"

#include <algorithm>
#include <cmath>

namespace knjige::db
{

QString fieldTypeName(FieldType type)
{
    switch (type) {
    case FieldType::Integer:
        return QStringLiteral("integer");
    case FieldType::Currency:
        return QStringLiteral("currency");
    case FieldType::Decimal:
        return QStringLiteral("decimal");
    case FieldType::Float:
        return QStringLiteral("float");
    case FieldType::Date:
        return QStringLiteral("date");
    case FieldType::Text:
        return QStringLiteral("text");
    case FieldType::Boolean:
        return QStringLiteral("boolean");
    }
    return {};
}

bool isNumeric(FieldType type)
{
    return type == FieldType::Integer || type == FieldType::Currency || type == FieldType::Decimal
        || type == FieldType::Float;
}

static bool storesReal(FieldType t)
{
    return t == FieldType::Decimal || t == FieldType::Float;
}

// A column that shares its texts stops looking them up once this many different ones
// are stored and fewer than half of all its texts were found among them.
constexpr qsizetype kSharedTexts = 256;
// Longer texts (the rows of a journal record) hardly repeat, and looking them up would
// keep a second copy of each.
constexpr qsizetype kSharedLength = 1024;

void ResultSet::Numbers::push_back(qint64 v)
{
    if (!m_wide) {
        if (v == qint32(v)) {
            m_32.push_back(qint32(v));
            return;
        }
        widen();
    }
    m_64.push_back(v);
}

void ResultSet::Numbers::setBack(qint64 v)
{
    if (!m_wide) {
        if (v == qint32(v)) {
            m_32.back() = qint32(v);
            return;
        }
        widen();
    }
    m_64.back() = v;
}

void ResultSet::Numbers::reserve(size_t n)
{
    if (m_wide)
        m_64.reserve(n);
    else
        m_32.reserve(n);
}

void ResultSet::Numbers::widen()
{
    m_64.reserve(std::max(m_32.capacity(), m_32.size() + 1));
    m_64.assign(m_32.begin(), m_32.end());
    m_32 = {};
    m_wide = true;
}

void ResultSet::Numbers::permute(const std::vector<int>& order)
{
    auto gather = [&order](auto& values) {
        std::remove_reference_t<decltype(values)> sorted;
        sorted.reserve(order.size());
        for (int i : order)
            sorted.push_back(values[i]);
        values = std::move(sorted);
    };
    if (m_wide)
        gather(m_64);
    else
        gather(m_32);
}

void ResultSet::Numbers::clear()
{
    m_32.clear();
    m_64 = {};
    m_wide = false;
}

void ResultSet::Bits::push_back(bool on)
{
    if (m_size % 64 == 0)
        m_words.push_back(0);
    ++m_size;
    setBack(on);
}

void ResultSet::Bits::setBack(bool on)
{
    const size_t i = m_size - 1;
    const quint64 bit = quint64(1) << (i & 63);
    if (on)
        m_words[i >> 6] |= bit;
    else
        m_words[i >> 6] &= ~bit;
}

void ResultSet::Bits::permute(const std::vector<int>& order)
{
    Bits sorted;
    sorted.reserve(order.size());
    for (int i : order)
        sorted.push_back(get(size_t(i)));
    *this = std::move(sorted);
}

qint64 ResultSet::Texts::store(QByteArrayView text)
{
    const bool share = sharing && text.size() <= kSharedLength;
    seen += share ? 1 : 0;
    if (share) {
        const auto it = shared.constFind(QByteArray::fromRawData(text.data(), text.size()));
        if (it != shared.cend()) {
            ++found;
            return *it;
        }
    }
    const qint64 offset = qint64(bytes.size());
    quint64 n = quint64(text.size());
    do {
        char b = char(n & 0x7f);
        n >>= 7;
        if (n)
            b = char(b | 0x80);
        bytes.push_back(b);
    } while (n);
    bytes.insert(bytes.end(), text.data(), text.data() + text.size());
    if (share) {
        if (shared.size() < kSharedTexts) {
            shared.insert(text.toByteArray(), offset);
        } else if (found * 2 < seen) {
            sharing = false;
            shared = {};
        }
    }
    return offset;
}

QByteArrayView ResultSet::Texts::at(qint64 offset) const
{
    const char* p = bytes.data() + offset;
    quint64 n = 0;
    int shift = 0;
    for (;;) {
        const auto b = quint8(*p++);
        n |= quint64(b & 0x7f) << shift;
        if (!(b & 0x80))
            break;
        shift += 7;
    }
    return QByteArrayView(p, qsizetype(n));
}

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
    case FieldType::Integer:
        return QVariant::fromValue<qlonglong>(col.numbers[row]);
    case FieldType::Currency:
        return QVariant::fromValue(Money::fromUnits(col.numbers[row]));
    case FieldType::Decimal:
    case FieldType::Float:
        return col.reals[row];
    case FieldType::Date:
        return QDate::fromJulianDay(col.numbers[row]);
    case FieldType::Text:
        return text(row, c);
    case FieldType::Boolean:
        return col.numbers[row] != 0;
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
    case FieldType::Currency:
        return m_columns[c].numbers[row] / Money::Scale;
    case FieldType::Decimal:
    case FieldType::Float:
        return qint64(m_columns[c].reals[row]);
    case FieldType::Text:
        return text(row, c).trimmed().toLongLong();
    default:
        return m_columns[c].numbers[row];
    }
}

Money ResultSet::money(int row, int c) const
{
    if (isNull(row, c))
        return {};
    switch (m_fields[c].type) {
    case FieldType::Currency:
        return Money::fromUnits(m_columns[c].numbers[row]);
    case FieldType::Integer:
    case FieldType::Boolean:
        return Money::fromWhole(m_columns[c].numbers[row]);
    case FieldType::Decimal:
    case FieldType::Float:
        return Money::fromDouble(m_columns[c].reals[row]);
    case FieldType::Text:
        return Money::parse(text(row, c)).value_or(Money());
    case FieldType::Date:
        return {};
    }
    return {};
}

double ResultSet::real(int row, int c) const
{
    if (isNull(row, c))
        return 0;
    switch (m_fields[c].type) {
    case FieldType::Currency:
        return Money::fromUnits(m_columns[c].numbers[row]).toDouble();
    case FieldType::Decimal:
    case FieldType::Float:
        return m_columns[c].reals[row];
    case FieldType::Text:
        return text(row, c).toDouble();
    default:
        return double(m_columns[c].numbers[row]);
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
    case FieldType::Integer:
        return QString::number(col.numbers[row]);
    case FieldType::Currency:
        return Money::fromUnits(col.numbers[row]).toPlainString();
    case FieldType::Decimal:
    case FieldType::Float:
        return QString::number(col.reals[row], 'g', 15);
    case FieldType::Date:
        return QDate::fromJulianDay(col.numbers[row]).toString(Qt::ISODate);
    case FieldType::Text:
        return QString::fromUtf8(col.texts.at(col.numbers[row]));
    case FieldType::Boolean:
        return col.numbers[row] ? QStringLiteral("1") : QStringLiteral("0");
    }
    return {};
}

QByteArrayView ResultSet::utf8(int row, int c) const
{
    if (isNull(row, c) || m_fields[c].type != FieldType::Text)
        return {};
    const Column& col = m_columns[c];
    return col.texts.at(col.numbers[row]);
}

void ResultSet::reserve(int rows)
{
    for (int c = 0; c < fieldCount(); ++c) {
        Column& col = m_columns[c];
        col.nulls.reserve(rows);
        if (storesReal(m_fields[c].type))
            col.reals.reserve(rows);
        else
            col.numbers.reserve(rows);
    }
}

void ResultSet::clearRows()
{
    for (Column& col : m_columns) {
        col.numbers.clear();
        col.reals.clear();
        col.texts.bytes.clear();
        col.texts.shared.clear();
        col.texts.seen = col.texts.found = 0;
        col.texts.sharing = true;
        col.nulls.clear();
    }
    m_rows = 0;
}

void ResultSet::appendRow()
{
    for (int c = 0; c < fieldCount(); ++c) {
        Column& col = m_columns[c];
        col.nulls.push_back(true);
        if (storesReal(m_fields[c].type))
            col.reals.push_back(0);
        else
            col.numbers.push_back(0);
    }
    ++m_rows;
}

void ResultSet::storeText(int c, QByteArrayView utf8)
{
    Column& col = column(c);
    col.numbers.setBack(col.texts.store(utf8));
    col.nulls.setBack(false);
}

void ResultSet::setNull(int c)
{
    column(c).nulls.setBack(true);
}

void ResultSet::setInteger(int c, qint64 v)
{
    switch (m_fields[c].type) {
    case FieldType::Currency:
        setMoney(c, Money::fromWhole(v));
        return;
    case FieldType::Decimal:
    case FieldType::Float:
        setReal(c, double(v));
        return;
    case FieldType::Text:
        setText(c, QString::number(v));
        return;
    default:
        break;
    }
    column(c).numbers.setBack(v);
    column(c).nulls.setBack(false);
}

void ResultSet::setMoney(int c, Money v)
{
    switch (m_fields[c].type) {
    case FieldType::Currency:
        column(c).numbers.setBack(v.units());
        break;
    case FieldType::Decimal:
    case FieldType::Float:
        column(c).reals.back() = v.toDouble();
        break;
    case FieldType::Text:
        setText(c, v.toPlainString());
        return;
    default:
        column(c).numbers.setBack(v.units() / Money::Scale);
        break;
    }
    column(c).nulls.setBack(false);
}

void ResultSet::setReal(int c, double v)
{
    switch (m_fields[c].type) {
    case FieldType::Currency:
        column(c).numbers.setBack(Money::fromDouble(v).units());
        break;
    case FieldType::Decimal:
    case FieldType::Float:
        column(c).reals.back() = v;
        break;
    case FieldType::Text:
        setText(c, QString::number(v, 'g', 15));
        return;
    case FieldType::Date:
        return;
    default:
        column(c).numbers.setBack(qint64(std::llround(v)));
        break;
    }
    column(c).nulls.setBack(false);
}

void ResultSet::setDate(int c, const QDate& v)
{
    if (!v.isValid())
        return;
    if (m_fields[c].type == FieldType::Text) {
        setText(c, v.toString(Qt::ISODate));
        return;
    }
    column(c).numbers.setBack(v.toJulianDay());
    column(c).nulls.setBack(false);
}

void ResultSet::setText(int c, const QString& v)
{
    switch (m_fields[c].type) {
    case FieldType::Text:
        storeText(c, v.toUtf8());
        return;
    case FieldType::Date: {
        const QDate d = dates::fromIsoText(v);
        if (!d.isValid())
            return;
        column(c).numbers.setBack(d.toJulianDay());
        break;
    }
    case FieldType::Currency:
        column(c).numbers.setBack(Money::parse(v).value_or(Money()).units());
        break;
    case FieldType::Decimal:
    case FieldType::Float:
        column(c).reals.back() = v.toDouble();
        break;
    default:
        column(c).numbers.setBack(v.trimmed().toLongLong());
        break;
    }
    column(c).nulls.setBack(false);
}

void ResultSet::setUtf8(int c, QByteArrayView v)
{
    if (m_fields[c].type == FieldType::Text)
        storeText(c, v);
    else
        setText(c, QString::fromUtf8(v));
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
    case QMetaType::UShort:
        setInteger(c, v.toLongLong());
        return;
    case QMetaType::Double:
    case QMetaType::Float:
        setReal(c, v.toDouble());
        return;
    case QMetaType::QDate:
        setDate(c, v.toDate());
        return;
    case QMetaType::QDateTime:
        setDate(c, v.toDateTime().date());
        return;
    default:
        break;
    }
    if (v.canConvert<Money>() && v.userType() == qMetaTypeId<Money>()) {
        setMoney(c, v.value<Money>());
        return;
    }
    setText(c, v.toString());
}

void ResultSet::permute(const std::vector<int>& order)
{
    // A text column's block stays as it is: only the offsets move.
    for (Column& col : m_columns) {
        col.nulls.permute(order);
        if (col.numbers.size() > 0)
            col.numbers.permute(order);
        if (!col.reals.empty()) {
            std::vector<double> sorted;
            sorted.reserve(order.size());
            for (int i : order)
                sorted.push_back(col.reals[i]);
            col.reals = std::move(sorted);
        }
    }
}

} // namespace knjige::db
