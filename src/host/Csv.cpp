#include "host/Csv.h"

#include "session/db/ResultSet.h"

#include <QStringList>
#include <QTextStream>
#include <cmath>

namespace knjige::host::cli
{

QString csvField(const QString& text)
{
    if (!text.contains(u',') && !text.contains(u'"') && !text.contains(u'\n') && !text.contains(u'\r'))
        return text;
    QString quoted = text;
    quoted.replace(QStringLiteral("\""), QStringLiteral("\"\""));
    return u'"' + quoted + u'"';
}

QString plainNumber(double value)
{
    if (value == 0 || !std::isfinite(value))
        return value == 0 ? QStringLiteral("0") : QString::number(value);
    const int magnitude = int(std::floor(std::log10(std::fabs(value))));
    const int decimals = std::max(0, 14 - magnitude);
    QString text = QString::number(value, 'f', decimals);
    if (text.contains(u'.')) {
        while (text.endsWith(u'0'))
            text.chop(1);
        if (text.endsWith(u'.'))
            text.chop(1);
    }
    return text == QLatin1String("-0") ? QStringLiteral("0") : text;
}

QString csvValue(const db::ResultSet& rows, int row, int column)
{
    if (rows.isNull(row, column))
        return {};
    switch (rows.field(column).type) {
    case db::FieldType::Currency:
        return rows.money(row, column).toPlainString();
    case db::FieldType::Decimal:
    case db::FieldType::Float:
        return plainNumber(rows.real(row, column));
    case db::FieldType::Date:
        return rows.date(row, column).toString(QStringLiteral("yyyy-MM-dd"));
    case db::FieldType::Text:
        return csvField(rows.text(row, column));
    case db::FieldType::Integer:
    case db::FieldType::Boolean:
        return rows.text(row, column);
    }
    return {};
}

void writeCsvHeader(const db::ResultSet& rows, bool withTypes, QTextStream& out)
{
    QStringList line;
    for (const db::Field& f : rows.fields())
        line << csvField(f.name);
    out << line.join(u',') << '\n';
    if (withTypes) {
        line.clear();
        for (const db::Field& f : rows.fields())
            line << db::fieldTypeName(f.type);
        out << line.join(u',') << '\n';
    }
}

void writeCsvRows(const db::ResultSet& rows, QTextStream& out)
{
    QStringList line;
    for (int r = 0; r < rows.rowCount(); ++r) {
        line.clear();
        for (int c = 0; c < rows.fieldCount(); ++c)
            line << csvValue(rows, r, c);
        out << line.join(u',') << '\n';
    }
}

void writeCsv(const db::ResultSet& rows, bool withTypes, QTextStream& out)
{
    writeCsvHeader(rows, withTypes, out);
    writeCsvRows(rows, out);
    out.flush();
}

} // namespace knjige::host::cli
