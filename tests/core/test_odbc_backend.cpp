// The ODBC backend's plumbing, run through unixODBC against the SQLite ODBC driver
// (no SQL Server runs on the build machines): every statement here is one that both
// SQL Server and SQLite accept.
#include "ResultText.h"
#include "session/Database.h"
#include "support/Sandbox.h"

#include <QFileInfo>

#include <gtest/gtest.h>

using namespace knjige;

namespace {

QString connectionString(const QString& path) { return QStringLiteral("DRIVER={SQLite3};Database=") + path; }

QVariant amount(qint64 units) { return QVariant::fromValue(Money::fromUnits(units)); }

class OdbcBackendTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!m_db.connect(connectionString(m_path))) {
            const QString why = m_db.errorDescription();
            if (why.contains(QLatin1String("SQLite3")) || why.contains(QLatin1String("Driver Manager"))
                || why.contains(QLatin1String("QODBC")))
                GTEST_SKIP() << "The SQLite ODBC driver (libsqliteodbc, \"SQLite3\" in odbcinst.ini) is not usable: "
                             << why.toStdString();
            FAIL() << why.toStdString();
        }
        exec("CREATE TABLE Stavke (RBroj int, Vrsta smallint, Iznos money, Datum datetime, Opis nvarchar(30), "
             "Placeno bit, Stopa float, Veliki bigint)");
    }

    void exec(const char* sql) { ASSERT_TRUE(m_db.execute(QString::fromUtf8(sql))) << m_db.errorDescription().toStdString(); }
    // Writes one row; a failure is the caller's to check.
    bool write(RowChange::Kind kind, const RowChange::Values& values, const RowChange::Values& original = {})
    {
        return m_db.writeRow({ kind, QStringLiteral("dbo.Stavke"), values, original });
    }
    bool insert(int rbroj, const QString& opis, const QVariant& iznos = {})
    {
        return write(RowChange::Kind::Insert, { { "RBroj", rbroj }, { "Opis", opis }, { "Iznos", iznos } });
    }
    ResultSet rows(const QString& sql)
    {
        ResultSet rs;
        EXPECT_TRUE(m_db.open(sql, rs)) << m_db.errorDescription().toStdString();
        return rs;
    }
    qint64 count(const QString& where = QString())
    {
        const ResultSet rs = rows(QStringLiteral("SELECT COUNT(*) AS Broj FROM Stavke") + where);
        return rs.rowCount() == 1 ? rs.integer(0, 0) : -1;
    }
    std::string error() const { return m_db.errorDescription().toStdString(); }

    QString m_path = test::scratchDir() + QStringLiteral("/odbc.db");
    Database m_db;
};

} // namespace

TEST_F(OdbcBackendTest, ConnectsWithoutTheSqlServerSetUpOrReportsTheDriverManagersText)
{
    // The SET statements of a SQL Server session would be refused here; the backend
    // recognised the engine and ran none.
    EXPECT_TRUE(m_db.isConnected());
    EXPECT_EQ(m_db.dialect(), SqlDialect::Sqlite);
    EXPECT_TRUE(QFileInfo(m_path).isFile());

    Database other;
    EXPECT_FALSE(other.connect(QStringLiteral("DRIVER={Knjige Nepostojeci Driver};Database=/tmp/x.db")));
    EXPECT_TRUE(other.errorDescription().contains(QLatin1String("Knjige Nepostojeci Driver"))) << error();
    EXPECT_FALSE(other.isConnected());
    const QString missingFolder = test::scratchDir() + QStringLiteral("/nema/takve/mape");
    EXPECT_FALSE(other.connect(connectionString(missingFolder + QStringLiteral("/x.db"))));
    EXPECT_FALSE(other.errorDescription().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(missingFolder));
    EXPECT_FALSE(other.connect(QStringLiteral("DSN=KnjigeNepostojeciDsn")));
    EXPECT_TRUE(other.errorDescription().contains(QLatin1String("not found"))) << other.errorDescription().toStdString();
}

TEST_F(OdbcBackendTest, TypesComeFromTheDriversColumnDescriptionsAndBoundValuesArriveIntact)
{
    exec("INSERT INTO Stavke (RBroj, Vrsta, Iznos, Datum, Opis, Placeno, Stopa, Veliki) VALUES (7, 3, 1234567.8901, "
         "'2016-03-15 00:00:00', 'Nabavka', 1, 0.17, 9000000000)");
    const ResultSet rs = rows(QStringLiteral("SELECT RBroj, Vrsta, Iznos, Datum, Opis, Placeno, Stopa, Veliki FROM Stavke"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(test::fieldNames(rs), "RBroj,Vrsta,Iznos,Datum,Opis,Placeno,Stopa,Veliki");
    const FieldType types[] = { FieldType::Integer, FieldType::Integer, {}, FieldType::Date, FieldType::Text,
        FieldType::Boolean, FieldType::Float, FieldType::Integer };
    for (int c : { 0, 1, 3, 4, 5, 6, 7 })
        EXPECT_EQ(rs.field(c).type, types[c]) << c;
    EXPECT_EQ(test::rowText(rs, 0), "7|3|1234567.8901|2016-03-15|Nabavka|1|0.17|9000000000");
    // The amount arrives as exact text whatever type the driver gives it (this driver
    // describes a money column as text; SQL Server's drivers as DECIMAL(19,4)).
    EXPECT_EQ(rs.money(0, 2).toString(), "1234567.8901");
    EXPECT_DOUBLE_EQ(rs.real(0, 6), 0.17);

    // Bound values arrive intact whatever they contain.
    exec("DELETE FROM Stavke");
    const QString awkward = QStringLiteral("O'Brien; DROP TABLE Stavke -- čćžšđ ČĆŽŠĐ");
    ASSERT_TRUE(write(RowChange::Kind::Insert,
        { { "RBroj", 1 }, { "Opis", awkward }, { "Iznos", amount(-1) }, { "Datum", QDate(2016, 12, 31) },
            { "Placeno", false }, { "Stopa", QVariant() } }))
        << error();
    const ResultSet bound = rows(QStringLiteral("SELECT Opis, Iznos, Datum, Placeno, Stopa FROM Stavke"));
    ASSERT_EQ(bound.rowCount(), 1);
    EXPECT_EQ(bound.text(0, 0), awkward);
    EXPECT_EQ(bound.money(0, 1), Money::fromUnits(-1));
    EXPECT_EQ(bound.date(0, 2), QDate(2016, 12, 31));
    EXPECT_TRUE(!bound.isNull(0, 3) && !bound.value(0, 3).toBool() && bound.isNull(0, 4));
}

TEST_F(OdbcBackendTest, ChangesAndDeletionsTouchExactlyOneOfTwoEqualRowsAndReportCounts)
{
    using K = RowChange::Kind;
    const QVariant iznos = amount(1005000);
    ASSERT_TRUE(insert(5, QStringLiteral("isto"), iznos) && insert(5, QStringLiteral("isto"), iznos));
    ASSERT_TRUE(insert(6, QStringLiteral("drugo")));
    const RowChange::Values changed = { { "Opis", QStringLiteral("promijenjeno") } };
    const RowChange::Values asRead = { { "RBroj", 5 }, { "Opis", QStringLiteral("isto") }, { "Iznos", iznos } };
    ASSERT_TRUE(write(K::Update, changed, asRead)) << error();
    EXPECT_EQ(count(QStringLiteral(" WHERE Opis = 'promijenjeno'")), 1);
    EXPECT_EQ(count(QStringLiteral(" WHERE Opis = 'isto'")), 1);
    // A NULL in the row as read matches the NULL in the table.
    ASSERT_TRUE(write(K::Update, { { "Iznos", amount(30000) } }, { { "RBroj", 6 }, { "Iznos", QVariant() } })) << error();
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 6 AND Iznos = 3")), 1);

    const RowChange::Values removal = { { "RBroj", 5 }, { "Iznos", iznos } };
    ASSERT_TRUE(write(K::Delete, {}, removal));
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 5")), 1);
    ASSERT_TRUE(write(K::Delete, {}, removal));
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 5")), 0);
    // The row is gone: the driver's row count tells the caller so.
    EXPECT_FALSE(write(K::Delete, {}, removal));
    EXPECT_EQ(m_db.errorDescription(),
        "Zapis više ne postoji u bazi podataka: promijenio ga je ili obrisao drugi korisnik.");
    EXPECT_FALSE(write(K::Update, changed, asRead));
    EXPECT_EQ(count(), 1);

    // Statements report their row counts.
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(insert(i, QStringLiteral("x")));
    int affected = -1;
    ASSERT_TRUE(m_db.execute(QStringLiteral("UPDATE Stavke SET Opis = 'y' WHERE RBroj >= 1"), &affected));
    EXPECT_EQ(affected, 3);
    ASSERT_TRUE(m_db.execute(QStringLiteral("DELETE FROM Stavke WHERE RBroj = 99"), &affected));
    EXPECT_EQ(affected, 0);
}

TEST_F(OdbcBackendTest, TransactionsCommitAndRollBack)
{
    ASSERT_TRUE(m_db.beginTransaction()) << error();
    ASSERT_TRUE(insert(1, QStringLiteral("odbačeno")));
    ASSERT_TRUE(m_db.rollback());
    EXPECT_EQ(count(), 0);

    ASSERT_TRUE(m_db.beginTransaction());
    ASSERT_TRUE(insert(2, QStringLiteral("zadržano")));
    exec("UPDATE Stavke SET Vrsta = 4 WHERE RBroj = 2");
    ASSERT_TRUE(m_db.commit());
    EXPECT_EQ(count(QStringLiteral(" WHERE Vrsta = 4")), 1);
    {
        TransactionGuard guard(m_db);
        ASSERT_TRUE(guard.isActive());
        ASSERT_TRUE(insert(3, QStringLiteral("bez potvrde")));
    }
    EXPECT_FALSE(m_db.inTransaction());
    EXPECT_EQ(count(), 1);

    // What was committed is in the file for any other connection.
    Database other;
    ASSERT_TRUE(other.connect(connectionString(m_path)));
    EXPECT_EQ(test::columnText(*other.query(QStringLiteral("SELECT Opis FROM Stavke")), "Opis"), "zadržano");
}

TEST_F(OdbcBackendTest, RejectedStatementsAndLargeResultsLeaveTheConnectionUsable)
{
    ResultSet rs;
    EXPECT_FALSE(m_db.open(QStringLiteral("SELEC RBroj FROM Stavke"), rs));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("syntax error"))) << error();
    EXPECT_EQ(m_db.lastSql(), "SELEC RBroj FROM Stavke");
    EXPECT_FALSE(m_db.execute(QStringLiteral("INSERT INTO NemaTablice (a) VALUES (1)")));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("NemaTablice"))) << error();
    EXPECT_FALSE(write(RowChange::Kind::Insert, { { "RBroj", 1 }, { "NemaKolone", 1 } }));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("NemaKolone"))) << error();
    ASSERT_TRUE(insert(1, QStringLiteral("x")));
    EXPECT_EQ(count(), 1);

    // A large result read in one pass, then at once a change and another read on the
    // same connection.
    exec("DELETE FROM Stavke");
    TransactionGuard filling(m_db);
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(insert(i, QStringLiteral("red %1").arg(i), amount(i)));
    ASSERT_TRUE(filling.commit());
    const ResultSet all = rows(QStringLiteral("SELECT RBroj, Iznos FROM Stavke ORDER BY RBroj"));
    ASSERT_EQ(all.rowCount(), 300);
    EXPECT_EQ(all.money(299, 1), Money::fromUnits(299));
    exec("DELETE FROM Stavke WHERE RBroj < 100");
    EXPECT_EQ(count(), 200);

    // A statement that gives no rows reads as an empty result without fields.
    ResultSet none;
    ASSERT_TRUE(m_db.open(QStringLiteral("CREATE TABLE Druga (a int)"), none));
    EXPECT_TRUE(none.fieldCount() == 0 && none.rowCount() == 0);
    const ResultSet empty = rows(QStringLiteral("SELECT a FROM Druga"));
    EXPECT_TRUE(empty.fieldCount() == 1 && empty.rowCount() == 0);
}
