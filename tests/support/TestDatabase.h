#pragma once

#include "session/db/Database.h"
#include "session/db/ResultSet.h"

#include <QString>
#include <QTemporaryDir>

namespace knjige::test
{

// A throwaway embedded book database with the whole schema (sql/schema.sql), to which
// knjige::session() points for the life of the object: ConnString is the file,
// BrojPoduzeca and RadnaGodina the given company and year. The destructor resets the
// session and removes the file. One at a time.
//
//   TestDatabase t;                               // company 1, year 2016
//   t.insert("dbo.KnjPrihRashFBiH", {{"BrojPoduzeca", 1}, {"RBroj", 1},
//            {"Datum", QDate(2016, 3, 15)}, {"GodinaKnj", 2016},
//            {"Vrsta", 11}, {"Iznos", QVariant::fromValue(Money::fromWhole(100))}});
//   ResultSet rs = t.query("SELECT ...");         // any T-SQL text of the system
//
// exec, insert and query record a test failure (with the data layer's text) when the
// statement fails; use db() directly to test failures.
class TestDatabase
{
public:
    explicit TestDatabase(qint16 company = 1, qint16 year = 2016);
    ~TestDatabase();
    TestDatabase(const TestDatabase&) = delete;
    TestDatabase& operator=(const TestDatabase&) = delete;

    QString path() const { return m_path; }
    db::Database& db();

    // Runs T-SQL through the dialect adapter.
    void exec(const QString& tsql);
    // Writes one row; values may be int, QString, QDate, Money or a null QVariant.
    void insert(const QString& table, const db::RowChange::Values& values);
    db::ResultSet query(const QString& tsql);
    // The number of rows of a table.
    int count(const QString& table);

private:
    QTemporaryDir m_dir;
    QString m_path;
};

// A money value for RowChange values: money(12.5), money(100).
QVariant money(double amount);

} // namespace knjige::test
