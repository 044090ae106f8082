#include "session/tsql/TSqlTypes.h"

#include <QRegularExpression>

namespace knjige::tsql
{

static int precedence(SqlType t)
{
    switch (t) {
    case SqlType::Unknown:
    case SqlType::Null:
        return 0;
    case SqlType::Text:
        return 1;
    case SqlType::Bit:
        return 2;
    case SqlType::Int:
        return 3;
    case SqlType::Money:
        return 4;
    case SqlType::Decimal:
        return 5;
    case SqlType::Float:
        return 6;
    case SqlType::Date:
        return 7;
    }
    return 0;
}

SqlType higher(SqlType a, SqlType b)
{
    if (a == SqlType::Unknown || b == SqlType::Unknown)
        return SqlType::Unknown;
    return precedence(a) >= precedence(b) ? a : b;
}

bool isNumericType(SqlType t)
{
    return t == SqlType::Bit || t == SqlType::Int || t == SqlType::Money || t == SqlType::Decimal
        || t == SqlType::Float;
}

db::FieldType fieldTypeOf(SqlType t)
{
    switch (t) {
    case SqlType::Bit:
        return db::FieldType::Boolean;
    case SqlType::Int:
        return db::FieldType::Integer;
    case SqlType::Money:
        return db::FieldType::Currency;
    case SqlType::Decimal:
        return db::FieldType::Decimal;
    case SqlType::Float:
        return db::FieldType::Float;
    case SqlType::Date:
        return db::FieldType::Date;
    default:
        return db::FieldType::Text;
    }
}

SqlType typeFromTSqlName(const QString& typeName)
{
    const QString t = typeName.toLower();
    if (t == u"int" || t == u"integer" || t == u"smallint" || t == u"bigint" || t == u"tinyint")
        return SqlType::Int;
    if (t == u"bit")
        return SqlType::Bit;
    if (t == u"money" || t == u"smallmoney")
        return SqlType::Money;
    if (t == u"decimal" || t == u"numeric")
        return SqlType::Decimal;
    if (t == u"float" || t == u"real")
        return SqlType::Float;
    if (t == u"datetime" || t == u"smalldatetime" || t == u"date" || t == u"datetime2")
        return SqlType::Date;
    if (t.endsWith(u"char") || t == u"text" || t == u"ntext" || t == u"sysname")
        return SqlType::Text;
    return SqlType::Unknown;
}

QString sqliteDeclaredType(SqlType type, int width)
{
    switch (type) {
    case SqlType::Bit:
        return QStringLiteral("BIT_INTEGER");
    case SqlType::Int:
        return QStringLiteral("INTEGER");
    case SqlType::Money:
        return QStringLiteral("MONEY_REAL");
    case SqlType::Decimal:
        return QStringLiteral("DECIMAL_REAL");
    case SqlType::Float:
        return QStringLiteral("FLOAT");
    case SqlType::Date:
        return QStringLiteral("DATETIME_TEXT");
    case SqlType::Text:
        return width > 0 ? QStringLiteral("NVARCHAR(%1)").arg(width) : QStringLiteral("NVARCHAR");
    default:
        return QString();
    }
}

SqlType typeFromSqliteDeclared(const QString& declared, int* width)
{
    const QString d = declared.toUpper();
    if (width) {
        static const QRegularExpression len(QStringLiteral("\\((\\d+)"));
        const auto m = len.match(d);
        *width = m.hasMatch() && (d.contains(u"CHAR") || d.contains(u"TEXT")) ? m.captured(1).toInt() : 0;
    }
    if (d.contains(u"MONEY"))
        return SqlType::Money;
    if (d.contains(u"DATE") || d.contains(u"TIME"))
        return SqlType::Date;
    if (d.contains(u"BIT"))
        return SqlType::Bit;
    if (d.contains(u"INT"))
        return SqlType::Int;
    if (d.contains(u"DEC") || d.contains(u"NUMERIC"))
        return SqlType::Decimal;
    if (d.contains(u"REAL") || d.contains(u"FLOA") || d.contains(u"DOUB"))
        return SqlType::Float;
    if (d.contains(u"CHAR") || d.contains(u"TEXT") || d.contains(u"CLOB"))
        return SqlType::Text;
    return SqlType::Unknown;
}

const ColumnDef* TableDef::column(const QString& columnName) const
{
    for (const ColumnDef& c : columns)
        if (c.name.compare(columnName, Qt::CaseInsensitive) == 0)
            return &c;
    return nullptr;
}

QString Catalog::key(const QString& table)
{
    QString k = table.trimmed().toLower();
    if (k.startsWith(u"dbo."))
        k = k.mid(4);
    return k;
}

const TableDef* Catalog::find(const QString& table) const
{
    const auto it = m_tables.constFind(key(table));
    return it == m_tables.constEnd() ? nullptr : &it.value();
}

void Catalog::add(const TableDef& table)
{
    m_tables.insert(key(table.name), table);
}
void Catalog::remove(const QString& table)
{
    m_tables.remove(key(table));
}

} // namespace knjige::tsql
