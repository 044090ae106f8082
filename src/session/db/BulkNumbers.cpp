#include "session/db/BulkNumbers.h"

#include <QHash>
#include <QStringList>
#include <algorithm>

namespace knjige::db
{
namespace
{

// SQL Server's limit of rows in one VALUES list.
constexpr int kPairsPerStatement = 1000;

QString mapTable(SqlDialect dialect)
{
    return dialect == SqlDialect::SqlServer ? QStringLiteral("#KnjigeBrojevi") : QStringLiteral("temp.KnjigeBrojevi");
}

QString bareTable(const QString& table, SqlDialect dialect)
{
    if (dialect == SqlDialect::Sqlite && table.startsWith(QStringLiteral("dbo."), Qt::CaseInsensitive))
        return table.mid(4);
    return table;
}

// A fresh, empty table of pairs; a leftover of an earlier failure is dropped first.
bool createMap(Database& db)
{
    if (db.dialect() == SqlDialect::SqlServer)
        return db.executeNative(
            QStringLiteral("IF OBJECT_ID('tempdb..#KnjigeBrojevi') IS NOT NULL DROP TABLE #KnjigeBrojevi; "
                           "CREATE TABLE #KnjigeBrojevi (Stari int NOT NULL PRIMARY KEY, Novi int NOT NULL)"));
    return db.executeNative(QStringLiteral("DROP TABLE IF EXISTS temp.KnjigeBrojevi"))
        && db.executeNative(
            QStringLiteral("CREATE TEMP TABLE KnjigeBrojevi (Stari INTEGER PRIMARY KEY, Novi INTEGER NOT NULL)"));
}

bool fillMap(Database& db, const std::vector<std::pair<qint64, qint64>>& pairs)
{
    const QString head = QStringLiteral("INSERT INTO %1 (Stari,Novi) VALUES ").arg(mapTable(db.dialect()));
    for (size_t from = 0; from < pairs.size(); from += kPairsPerStatement) {
        const size_t to = std::min(pairs.size(), from + kPairsPerStatement);
        QString sql = head;
        sql.reserve(head.size() + int(to - from) * 16);
        for (size_t i = from; i < to; ++i) {
            if (i > from)
                sql += u',';
            sql += u'(' + QString::number(pairs[i].first) + u',' + QString::number(pairs[i].second) + u')';
        }
        if (!db.executeNative(sql))
            return false;
    }
    return true;
}

QString updateSql(const NumberTarget& t, SqlDialect dialect)
{
    const QString table = bareTable(t.table, dialect);
    if (dialect == SqlDialect::SqlServer)
        return QStringLiteral("UPDATE K SET K.%1 = M.Novi FROM %2 K INNER JOIN #KnjigeBrojevi M ON M.Stari = K.%3 "
                              "WHERE %4")
            .arg(t.column, table, t.keyColumn, t.scope);
    return QStringLiteral("UPDATE %2 AS K SET %1 = M.Novi FROM temp.KnjigeBrojevi AS M WHERE M.Stari = K.%3 AND (%4)")
        .arg(t.column, table, t.keyColumn, t.scope);
}

RowChange rowUpdate(const NumberTarget& t, const ResultSet& rows, int row, qint64 value)
{
    RowChange change;
    change.kind = RowChange::Kind::Update;
    change.table = t.table;
    change.values = { { t.column, value } };
    for (int c = 0; c < rows.fieldCount(); ++c)
        change.original.append({ rows.field(c).name, rows.value(row, c) });
    return change;
}

} // namespace

bool remapNumbers(Database& db, const NumberTarget& target, const std::vector<std::pair<qint64, qint64>>& pairs,
    qint64 expectedRows, QString* error)
{
    if (pairs.empty())
        return true;
    int changed = 0;
    if (!createMap(db) || !fillMap(db, pairs) || !db.executeNative(updateSql(target, db.dialect()), &changed)
        || !db.executeNative(QStringLiteral("DROP TABLE ") + mapTable(db.dialect()))) {
        *error = db.errorDescription();
        return false;
    }
    if (changed != expectedRows) {
        *error
            = QStringLiteral("Promijenjeno je %1 zapisa umjesto %2: zapise je u međuvremenu mijenjao drugi korisnik.")
                  .arg(changed)
                  .arg(expectedRows);
        return false;
    }
    return true;
}

bool rewriteNumbers(Database& db, const NumberTarget& target, const ResultSet& rows,
    const std::vector<std::optional<qint64>>& newValues, QString* error)
{
    const int key = rows.indexOf(target.keyColumn);
    if (key < 0) {
        *error = QStringLiteral("Nema kolone ") + target.keyColumn;
        return false;
    }
    QHash<qint64, int> uses;
    for (int r = 0; r < rows.rowCount(); ++r)
        if (!rows.isNull(r, key))
            ++uses[rows.integer(r, key)];

    std::vector<std::pair<qint64, qint64>> pairs;
    std::vector<int> alone;
    for (int r = 0; r < rows.rowCount(); ++r) {
        if (!newValues[size_t(r)])
            continue;
        if (!rows.isNull(r, key) && uses.value(rows.integer(r, key)) == 1)
            pairs.emplace_back(rows.integer(r, key), *newValues[size_t(r)]);
        else
            alone.push_back(r);
    }
    // The shared keys last: the statement above picks rows by key, and a row changed
    // alone could carry a key of its pairs by then.
    if (!remapNumbers(db, target, pairs, qint64(pairs.size()), error))
        return false;
    for (int r : alone) {
        if (!db.writeRow(rowUpdate(target, rows, r, *newValues[size_t(r)]))) {
            *error = db.errorDescription();
            return false;
        }
    }
    return true;
}

} // namespace knjige::db
