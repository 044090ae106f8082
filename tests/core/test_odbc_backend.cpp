// The ODBC backend's plumbing, run through unixODBC against the SQLite ODBC driver
// (no SQL Server runs on the build machines): every statement here is one that both
// SQL Server and SQLite accept.

#include "session/Database.h"
#include "session/Money.h"
#include "support/Sandbox.h"

#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace knjige;

namespace {

const char* const CreateStavke = "CREATE TABLE Stavke (RBroj int, Vrsta smallint, Iznos money, Datum datetime, "
                                 "Opis nvarchar(30), Placeno bit, Stopa float, Veliki bigint)";

class OdbcBackendTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        m_path = test::scratchDir() + QStringLiteral("/odbc.db");
        if (!m_db.connect(connectionString(m_path))) {
            const QString why = m_db.errorDescription();
            if (why.contains(QLatin1String("SQLite3")) || why.contains(QLatin1String("Driver Manager"))
                || why.contains(QLatin1String("QODBC")))
                GTEST_SKIP() << "The SQLite ODBC driver (libsqliteodbc, \"SQLite3\" in odbcinst.ini) is not usable: "
                             << why.toStdString();
            FAIL() << why.toStdString();
        }
        ASSERT_TRUE(m_db.execute(QString::fromLatin1(CreateStavke))) << m_db.errorDescription().toStdString();
    }

    static QString connectionString(const QString& path) { return QStringLiteral("DRIVER={SQLite3};Database=") + path; }

    RowChange insert(int rbroj, const QString& opis, const QVariant& iznos) const
    {
        RowChange c;
        c.kind = RowChange::Kind::Insert;
        c.table = QStringLiteral("dbo.Stavke");
        c.values = {{"RBroj", rbroj}, {"Opis", opis}, {"Iznos", iznos}};
        return c;
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

    QString m_path;
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
    EXPECT_TRUE(other.errorDescription().contains(QLatin1String("Knjige Nepostojeci Driver")))
        << other.errorDescription().toStdString();
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
    ASSERT_TRUE(m_db.execute(QStringLiteral("INSERT INTO Stavke (RBroj, Vrsta, Iznos, Datum, Opis, Placeno, Stopa, Veliki) "
                                            "VALUES (7, 3, 1234567.8901, '2016-03-15 00:00:00', 'Nabavka', 1, 0.17, "
                                            "9000000000)")));
    const ResultSet rs = rows(QStringLiteral("SELECT RBroj, Vrsta, Iznos, Datum, Opis, Placeno, Stopa, Veliki FROM Stavke"));
    ASSERT_EQ(rs.rowCount(), 1);
    ASSERT_EQ(rs.fieldCount(), 8);
    EXPECT_EQ(rs.field(0).name, "RBroj");
    EXPECT_EQ(rs.field(0).type, FieldType::Integer);
    EXPECT_EQ(rs.field(1).type, FieldType::Integer);
    EXPECT_EQ(rs.field(3).type, FieldType::Date);
    EXPECT_EQ(rs.field(4).type, FieldType::Text);
    EXPECT_EQ(rs.field(5).type, FieldType::Boolean);
    EXPECT_EQ(rs.field(6).type, FieldType::Float);
    EXPECT_EQ(rs.field(7).type, FieldType::Integer);
    EXPECT_EQ(rs.integer(0, 0), 7);
    // The amount arrives as exact text whatever type the driver gives it (this driver
    // describes a money column as text; SQL Server's drivers as DECIMAL(19,4)).
    EXPECT_EQ(rs.money(0, 2).toString(), "1234567.8901");
    EXPECT_EQ(rs.date(0, 3), QDate(2016, 3, 15));
    EXPECT_EQ(rs.text(0, 4), "Nabavka");
    EXPECT_EQ(rs.value(0, 5).toBool(), true);
    EXPECT_DOUBLE_EQ(rs.real(0, 6), 0.17);
    EXPECT_EQ(rs.integer(0, 7), 9000000000LL);

    // Bound values arrive intact whatever they contain.
    ASSERT_TRUE(m_db.execute(QStringLiteral("DELETE FROM Stavke")));
    const QString awkward = QStringLiteral("O'Brien; DROP TABLE Stavke -- čćžšđ ČĆŽŠĐ");
    RowChange c = insert(1, awkward, QVariant::fromValue(Money::parse(QStringLiteral("-0.0001")).value()));
    c.values.push_back({"Datum", QDate(2016, 12, 31)});
    c.values.push_back({"Placeno", false});
    c.values.push_back({"Stopa", QVariant()});
    ASSERT_TRUE(m_db.writeRow(c)) << m_db.errorDescription().toStdString();

    const ResultSet bound = rows(QStringLiteral("SELECT Opis, Iznos, Datum, Placeno, Stopa FROM Stavke"));
    ASSERT_EQ(bound.rowCount(), 1);
    EXPECT_EQ(bound.text(0, 0), awkward);
    EXPECT_EQ(bound.money(0, 1), Money::fromUnits(-1));
    EXPECT_EQ(bound.date(0, 2), QDate(2016, 12, 31));
    EXPECT_FALSE(bound.isNull(0, 3));
    EXPECT_EQ(bound.value(0, 3).toBool(), false);
    EXPECT_TRUE(bound.isNull(0, 4));
}

TEST_F(OdbcBackendTest, ChangesAndDeletionsTouchExactlyOneOfTwoEqualRowsAndReportCounts)
{
    const QVariant iznos = QVariant::fromValue(Money::parse(QStringLiteral("100.5")).value());
    ASSERT_TRUE(m_db.writeRow(insert(5, QStringLiteral("isto"), iznos)));
    ASSERT_TRUE(m_db.writeRow(insert(5, QStringLiteral("isto"), iznos)));
    ASSERT_TRUE(m_db.writeRow(insert(6, QStringLiteral("drugo"), QVariant())));

    RowChange change;
    change.kind = RowChange::Kind::Update;
    change.table = QStringLiteral("dbo.Stavke");
    change.values = {{"Opis", QStringLiteral("promijenjeno")}};
    change.original = {{"RBroj", 5}, {"Opis", QStringLiteral("isto")}, {"Iznos", iznos}};
    ASSERT_TRUE(m_db.writeRow(change)) << m_db.errorDescription().toStdString();
    EXPECT_EQ(count(QStringLiteral(" WHERE Opis = 'promijenjeno'")), 1);
    EXPECT_EQ(count(QStringLiteral(" WHERE Opis = 'isto'")), 1);

    // A NULL in the row as read matches the NULL in the table.
    RowChange nullAmount = change;
    nullAmount.values = {{"Iznos", QVariant::fromValue(Money::fromWhole(3))}};
    nullAmount.original = {{"RBroj", 6}, {"Iznos", QVariant()}};
    ASSERT_TRUE(m_db.writeRow(nullAmount)) << m_db.errorDescription().toStdString();
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 6 AND Iznos = 3")), 1);

    RowChange removal;
    removal.kind = RowChange::Kind::Delete;
    removal.table = QStringLiteral("dbo.Stavke");
    removal.original = {{"RBroj", 5}, {"Iznos", iznos}};
    ASSERT_TRUE(m_db.writeRow(removal));
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 5")), 1);
    ASSERT_TRUE(m_db.writeRow(removal));
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 5")), 0);

    // The row is gone: the driver's row count tells the caller so.
    EXPECT_FALSE(m_db.writeRow(removal));
    EXPECT_EQ(m_db.errorDescription(),
              "Zapis više ne postoji u bazi podataka: promijenio ga je ili obrisao drugi korisnik.");
    EXPECT_FALSE(m_db.writeRow(change));
    EXPECT_EQ(count(), 1);

    // Statements report their row counts.
    for (int i = 0; i < 3; ++i)
        ASSERT_TRUE(m_db.writeRow(insert(i, QStringLiteral("x"), QVariant())));
    int affected = -1;
    ASSERT_TRUE(m_db.execute(QStringLiteral("UPDATE Stavke SET Opis = 'y' WHERE RBroj >= 1"), &affected));
    EXPECT_EQ(affected, 3);
    ASSERT_TRUE(m_db.execute(QStringLiteral("DELETE FROM Stavke WHERE RBroj = 99"), &affected));
    EXPECT_EQ(affected, 0);
}

TEST_F(OdbcBackendTest, TransactionsCommitAndRollBack)
{
    ASSERT_TRUE(m_db.beginTransaction()) << m_db.errorDescription().toStdString();
    ASSERT_TRUE(m_db.writeRow(insert(1, QStringLiteral("odbačeno"), QVariant())));
    ASSERT_TRUE(m_db.rollback());
    EXPECT_EQ(count(), 0);

    ASSERT_TRUE(m_db.beginTransaction());
    ASSERT_TRUE(m_db.writeRow(insert(2, QStringLiteral("zadržano"), QVariant())));
    ASSERT_TRUE(m_db.execute(QStringLiteral("UPDATE Stavke SET Vrsta = 4 WHERE RBroj = 2")));
    ASSERT_TRUE(m_db.commit());
    EXPECT_EQ(count(QStringLiteral(" WHERE Vrsta = 4")), 1);

    {
        TransactionGuard guard(m_db);
        ASSERT_TRUE(guard.isActive());
        ASSERT_TRUE(m_db.writeRow(insert(3, QStringLiteral("bez potvrde"), QVariant())));
    }
    EXPECT_FALSE(m_db.inTransaction());
    EXPECT_EQ(count(), 1);

    // What was committed is in the file for any other connection.
    Database other;
    ASSERT_TRUE(other.connect(connectionString(m_path)));
    const ResultSet rs = *other.query(QStringLiteral("SELECT Opis FROM Stavke"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(rs.text(0, 0), QStringLiteral("zadržano"));
}

TEST_F(OdbcBackendTest, RejectedStatementsAndLargeResultsLeaveTheConnectionUsable)
{
    ResultSet rs;
    EXPECT_FALSE(m_db.open(QStringLiteral("SELEC RBroj FROM Stavke"), rs));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("syntax error"))) << m_db.errorDescription().toStdString();
    EXPECT_EQ(m_db.lastSql(), "SELEC RBroj FROM Stavke");

    EXPECT_FALSE(m_db.execute(QStringLiteral("INSERT INTO NemaTablice (a) VALUES (1)")));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("NemaTablice"))) << m_db.errorDescription().toStdString();

    RowChange bad = insert(1, QStringLiteral("x"), QVariant());
    bad.values.push_back({"NemaKolone", 1});
    EXPECT_FALSE(m_db.writeRow(bad));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("NemaKolone"))) << m_db.errorDescription().toStdString();

    ASSERT_TRUE(m_db.writeRow(insert(1, QStringLiteral("x"), QVariant())));
    EXPECT_EQ(count(), 1);

    // Each result is finished before the next statement.
    ASSERT_TRUE(m_db.execute(QStringLiteral("DELETE FROM Stavke")));
    TransactionGuard filling(m_db);
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(m_db.writeRow(insert(i, QStringLiteral("red %1").arg(i), QVariant::fromValue(Money::fromUnits(i)))));
    ASSERT_TRUE(filling.commit());
    // A large result read in one pass, then at once a change and another read on the
    // same connection.
    const ResultSet all = rows(QStringLiteral("SELECT RBroj, Iznos FROM Stavke ORDER BY RBroj"));
    ASSERT_EQ(all.rowCount(), 300);
    EXPECT_EQ(all.money(299, 1), Money::fromUnits(299));
    ASSERT_TRUE(m_db.execute(QStringLiteral("DELETE FROM Stavke WHERE RBroj < 100")));
    EXPECT_EQ(count(), 200);

    // A statement that gives no rows reads as an empty result without fields.
    ResultSet none;
    ASSERT_TRUE(m_db.open(QStringLiteral("CREATE TABLE Druga (a int)"), none));
    EXPECT_EQ(none.fieldCount(), 0);
    EXPECT_EQ(none.rowCount(), 0);
    const ResultSet empty = rows(QStringLiteral("SELECT a FROM Druga"));
    EXPECT_EQ(empty.fieldCount(), 1);
    EXPECT_EQ(empty.rowCount(), 0);
}
