#include "support/TestDatabase.h"

#include "books/Schema.h"
#include "session/Session.h"

#include <gtest/gtest.h>

namespace knjige::test
{

TestDatabase::TestDatabase(qint16 company, qint16 year)
{
    m_path = m_dir.filePath(QStringLiteral("knjige.db"));
    QString error;
    if (!books::createEmbeddedDatabase(m_path, &error))
        ADD_FAILURE() << "schema: " << error.toStdString();
    Session& s = session();
    s.reset();
    s.ConnString = m_path;
    s.BrojPoduzeca = company;
    s.RadnaGodina = year;
}

TestDatabase::~TestDatabase()
{
    session().reset();
}

db::Database& TestDatabase::db()
{
    return session().db();
}

void TestDatabase::exec(const QString& tsql)
{
    if (!db().execute(tsql))
        ADD_FAILURE() << tsql.toStdString() << "\n  -> " << db().errorDescription().toStdString();
}

void TestDatabase::insert(const QString& table, const db::RowChange::Values& values)
{
    if (!db().writeRow({ db::RowChange::Kind::Insert, table, values, {} }))
        ADD_FAILURE() << "insert into " << table.toStdString() << ": " << db().errorDescription().toStdString();
}

db::ResultSet TestDatabase::query(const QString& tsql)
{
    db::ResultSet rs;
    if (!db().open(tsql, rs))
        ADD_FAILURE() << tsql.toStdString() << "\n  -> " << db().errorDescription().toStdString();
    return rs;
}

int TestDatabase::count(const QString& table)
{
    const db::ResultSet rs = query(QStringLiteral("SELECT COUNT(*) AS N FROM ") + table);
    return rs.isEmpty() ? -1 : int(rs.integer(0, 0));
}

QVariant money(double amount)
{
    return QVariant::fromValue(Money::fromDouble(amount));
}

} // namespace knjige::test
