#include "session/db/DatabaseBackend.h"

#include <QDate>
#include <QStringList>

namespace knjige::db
{
namespace
{

QString bareTable(const QString& table, SqlDialect dialect)
{
    if (dialect == SqlDialect::Sqlite && table.startsWith(QStringLiteral("dbo."), Qt::CaseInsensitive))
        return table.mid(4);
    return table;
}

// Every original column matched by value as the server compares it: NULL as NULL, an
// amount as any stored value that rounds to the same four decimals (another program
// may keep more), a date as any moment of that day (a datetime may carry a time), the
// rest by equality.
QString matchClause(const RowChange::Values& original, QVariantList& values)
{
    QStringList parts;
    for (const auto& [column, value] : original) {
        if (!value.isValid() || value.isNull()) {
            parts << column + QStringLiteral(" IS NULL");
        } else if (value.userType() == qMetaTypeId<Money>()) {
            // Every stored value that reads as this amount, the allowance of the
            // reading's rounding included.
            const double units = double(value.value<Money>().units());
            const double half = 0.5 + roundingAllowance(units);
            parts << QStringLiteral("%1 >= ? AND %1 <= ?").arg(column);
            values << (units - half) / Money::Scale << (units + half) / Money::Scale;
        } else if (value.typeId() == QMetaType::QDate || value.typeId() == QMetaType::QDateTime) {
            const QDate day = value.toDate();
            parts << QStringLiteral("%1 >= ? AND %1 < ?").arg(column);
            values << day << day.addDays(1);
        } else {
            parts << column + QStringLiteral(" = ?");
            values << value;
        }
    }
    return parts.join(QStringLiteral(" AND "));
}

} // namespace

BoundStatement rowStatement(const RowChange& change, SqlDialect dialect)
{
    BoundStatement st;
    const QString table = bareTable(change.table, dialect);
    switch (change.kind) {
    case RowChange::Kind::Insert: {
        QStringList columns, marks;
        for (const auto& [column, value] : change.values) {
            columns << column;
            marks << QStringLiteral("?");
            st.values << value;
        }
        st.sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)").arg(table, columns.join(u','), marks.join(u','));
        break;
    }
    case RowChange::Kind::Update: {
        QStringList sets;
        for (const auto& [column, value] : change.values) {
            sets << column + QStringLiteral(" = ?");
            st.values << value;
        }
        const QString where = matchClause(change.original, st.values);
        // Exactly one row, even where two rows are alike in every column.
        if (dialect == SqlDialect::Sqlite)
            st.sql = QStringLiteral("UPDATE %1 SET %2 WHERE rowid IN (SELECT rowid FROM %1 WHERE %3 LIMIT 1)")
                         .arg(table, sets.join(u','), where);
        else
            st.sql = QStringLiteral("UPDATE TOP (1) %1 SET %2 WHERE %3").arg(table, sets.join(u','), where);
        break;
    }
    case RowChange::Kind::Delete: {
        const QString where = matchClause(change.original, st.values);
        if (dialect == SqlDialect::Sqlite)
            st.sql = QStringLiteral("DELETE FROM %1 WHERE rowid IN (SELECT rowid FROM %1 WHERE %2 LIMIT 1)")
                         .arg(table, where);
        else
            st.sql = QStringLiteral("DELETE TOP (1) FROM %1 WHERE %2").arg(table, where);
        break;
    }
    }
    return st;
}

BoundStatement insertIfFreeStatement(const RowChange& change, const NumberSlot& slot, SqlDialect dialect)
{
    BoundStatement st;
    const QString table = bareTable(change.table, dialect);
    QStringList columns, marks, taken;
    for (const auto& [column, value] : change.values) {
        columns << column;
        marks << QStringLiteral("?");
        st.values << value;
    }
    for (const QString& column : QStringList { slot.column } + slot.scope) {
        taken << column + QStringLiteral(" = ?");
        for (const auto& [name, value] : change.values)
            if (name.compare(column, Qt::CaseInsensitive) == 0) {
                st.values << value;
                break;
            }
    }
    // On SQL Server the range stays locked until the insert is done; the embedded
    // database runs a writing statement whole under its write lock.
    const QString lock = dialect == SqlDialect::SqlServer ? QStringLiteral(" WITH (UPDLOCK, HOLDLOCK)") : QString();
    st.sql = QStringLiteral("INSERT INTO %1 (%2) SELECT %3 WHERE NOT EXISTS (SELECT 1 FROM %1%4 WHERE %5)")
                 .arg(table, columns.join(u','), marks.join(u','), lock, taken.join(QStringLiteral(" AND ")));
    return st;
}

} // namespace knjige::db
