#include "session/DatabaseBackend.h"

#include <QStringList>

namespace knjige {
namespace {

QString bareTable(const QString& table, SqlDialect dialect)
{
    if (dialect == SqlDialect::Sqlite && table.startsWith(QStringLiteral("dbo."), Qt::CaseInsensitive))
        return table.mid(4);
    return table;
}

// "(c = ? OR (c IS NULL AND ? IS NULL))" for every original column: NULLs match NULLs.
QString matchClause(const RowChange::Values& original, QVariantList& values)
{
    QStringList parts;
    for (const auto& [column, value] : original) {
        if (!value.isValid() || value.isNull()) {
            parts << column + QStringLiteral(" IS NULL");
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
        st.sql = QStringLiteral("INSERT INTO %1 (%2) VALUES (%3)")
                     .arg(table, columns.join(u','), marks.join(u','));
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

} // namespace knjige
