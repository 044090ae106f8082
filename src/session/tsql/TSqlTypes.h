#pragma once

#include "session/db/ResultSet.h"

#include <QHash>
#include <QString>
#include <QVector>

namespace knjige::tsql
{

// The data types the adapter tells apart, as SQL Server types an expression. Null is
// the type of the NULL literal; Unknown is anything the adapter cannot type (a column
// of a table it does not know), typed from the values read instead.
enum class SqlType { Unknown, Null, Bit, Int, Money, Decimal, Float, Date, Text };

// SQL Server's data type precedence: the type an expression of two types takes.
// Date > Float > Decimal > Money > Int > Bit > Text > Null/Unknown.
SqlType higher(SqlType a, SqlType b);
bool isNumericType(SqlType t);
// Unknown stays Unknown: the backend types such a column from its first value.
db::FieldType fieldTypeOf(SqlType t);

// "int", "smallint", "money", "datetime", "nvarchar" ... (no length).
SqlType typeFromTSqlName(const QString& typeName);
// The declared type a column of that type gets on the embedded database. Money and
// decimals get REAL affinity (a MONEY or NUMERIC column would keep whole amounts as
// integers, and integer arithmetic would follow); dates get TEXT affinity, since they
// are stored as ISO text. The names keep the T-SQL type readable so that the catalog
// can be rebuilt from the database file itself.
QString sqliteDeclaredType(SqlType type, int width);
SqlType typeFromSqliteDeclared(const QString& declared, int* width = nullptr);

struct ColumnDef {
    QString name;
    SqlType type = SqlType::Unknown;
    int width = 0; // declared length of a text column; 0 otherwise
};

struct TableDef {
    QString name; // without schema, as declared
    QVector<ColumnDef> columns;
    const ColumnDef* column(const QString& name) const; // case-insensitive
};

// The tables the adapter knows the column types of. Names are case-insensitive and
// the schema prefix ("dbo.") is ignored.
class Catalog
{
public:
    const TableDef* find(const QString& table) const;
    void add(const TableDef& table);
    void remove(const QString& table);
    void clear() { m_tables.clear(); }
    bool isEmpty() const { return m_tables.isEmpty(); }
    static QString key(const QString& table);

private:
    QHash<QString, TableDef> m_tables;
};

} // namespace knjige::tsql
