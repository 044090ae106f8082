// The host's connection string read as ADO reads it and turned into what the ODBC
// driver manager or the embedded database takes, with the refusals and their texts;
// then the ODBC backend's plumbing, run through unixODBC against the SQLite ODBC driver
// (no SQL Server runs on the build machines): every statement there is one that both
// SQL Server and SQLite accept.
#include "ResultText.h"
#include "session/db/ConnectionString.h"
#include "session/db/Database.h"
#include "session/db/OdbcBackend.h"
#include "support/Sandbox.h"
#include "support/TdsLoginCatcher.h"

#include <QFile>
#include <QFileInfo>
#include <array>
#include <gtest/gtest.h>

using namespace knjige;
using Kind = db::ConnectionTarget::Kind;

namespace
{

const QString FreeTds = QStringLiteral("FreeTDS");
const QString Microsoft = QStringLiteral("ODBC Driver 18 for SQL Server");
const QString kAdo = "Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=x";

db::ConnectionTarget parsed(const QString& text, Kind kind, const QString& driver = FreeTds)
{
    const db::ConnectionTarget t = db::parseConnectionString(text, driver);
    EXPECT_EQ(t.kind, kind) << text.toStdString() << ": " << t.error.toStdString();
    return t;
}

QString freeTdsRefusal(const QString& key, const QString& driver = "\"FreeTDS\"")
{
    return "vrijednost ključa " + key + " ne može se neizmijenjena predati upravljačkom programu " + driver
        + ": sadrži znak '}', a uz njega ';', '{' na početku ili razmak na rubu.";
}

} // namespace

TEST(ConnectionString, HostStringsBecomeOdbcStringsForEitherDriver)
{
    const QString knjige
        = "DRIVER={FreeTDS};SERVER=srv;PORT=1433;DATABASE=Knjige;UID=ana;PWD=tajna;TDS_Version=7.4;ClientCharset=UTF-8";
    const QString trusted = "DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;DATABASE=db;Trusted_Connection=yes";
    const QString integrated
        = "Provider=SQLOLEDB.1;Integrated Security=SSPI;Persist Security Info=False;Initial Catalog=db;Data Source=srv";
    const QString instance = "Provider=SQLOLEDB.1;Data Source=srv\\SQLEXPRESS;Initial Catalog=db;User ID=sa;Password=x";
    const QString port = "Provider=SQLOLEDB.1;Data Source=tcp:10.0.0.5, 1500;Initial Catalog=db;User ID=sa;Password=x";
    // How the result must match: = whole, ^ its start, $ its end, ~ a part of it, ! not a part of it.
    const struct {
        QString input;
        bool microsoft;
        char match;
        QString odbc;
    } cases[] = {
        // The generator's source connection, built by the system with an empty password.
        { "Provider=SQLOLEDB.1;Data Source=POSLOVNI;Initial Catalog=KIF2016;User ID=sa;Password=", false, '=',
            "DRIVER={FreeTDS};SERVER=POSLOVNI;PORT=1433;DATABASE=KIF2016;UID=sa;PWD=;TDS_Version=7.4;ClientCharset=UTF-"
            "8" },
        // Keys in any case and spacing, their other names, the last of two equal keys,
        // and keys the ODBC side has no use for dropped.
        { " provider = sqloledb.1 ; DATA SOURCE = srv ;initial   catalog=Knjige;user id=ana;PASSWORD=tajna;", false,
            '=', knjige },
        { "Server=srv;Database=Knjige;UID=ana;PWD=tajna", false, '=', knjige },
        { "Provider=SQLNCLI11;Address=srv;Database=Knjige;User=ana;Pwd=tajna;;", false, '=', knjige },
        { "Provider=SQLOLEDB;Data Source=stari;Initial Catalog=Knjige;User ID=ana;Password=tajna;Server=srv", false,
            '=', knjige },
        { "Provider=SQLOLEDB.1;Persist Security Info=True;User ID=ana;Password=tajna;Initial Catalog=Knjige;"
          "Data Source=srv;Use Procedure for Prepare=1;Auto Translate=True;Packet Size=4096",
            false, '=', knjige },
        // Quoted values keep their separators and are braced, a closing brace doubled.
        { kAdo.chopped(1) + "\"a;b=c\"", false, '~', ";PWD={a;b=c};" },
        { kAdo.chopped(1) + "'it''s'", false, '~', ";PWD=it's;" },
        { kAdo.chopped(1) + "\"say \"\"hi\"\"\"", false, '~', ";PWD=say \"hi\";" },
        // Microsoft's driver reads the ODBC rule; FreeTDS 1.3 keeps '}}' whole inside
        // braces, so a value with '}' goes to it plain or not at all.
        { "Server=srv;Database=db;UID=sa;PWD={x}};y}", true, '$', ";PWD={x}};y}" },
        { kAdo.chopped(1) + "ta}jna", false, '~', ";PWD=ta}jna;" },
        { kAdo.chopped(1) + "ta}jna", true, '$', ";PWD={ta}}jna}" },
        { kAdo.chopped(1) + "\"{x;y=z\"", false, '~', ";PWD={{x;y=z};" },
        { "Server=srv;Database=\"Knjige 2016\";UID=sa;PWD= x", false, '~', ";DATABASE=Knjige 2016;" },
        // The Windows login, and no password.
        { integrated, true, '=', trusted },
        { integrated, false, '=',
            "DRIVER={FreeTDS};SERVER=srv;PORT=1433;DATABASE=db;Trusted_Connection=Yes;TDS_Version=7.4;"
            "ClientCharset=UTF-8" },
        { "Server=srv;Database=db;Trusted_Connection=True", true, '=', trusted },
        { "Server=srv;Database=db;Integrated Security=False;UID=a;PWD=b", true, '!', "Trusted" },
        // Named instances and ports as each driver wants them; a port next to an
        // instance names the instance's listener; FreeTDS knows the local machine by name.
        { instance, false, '^', "DRIVER={FreeTDS};SERVER=srv\\SQLEXPRESS;DATABASE=db;" },
        { instance, true, '^', "DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv\\SQLEXPRESS;DATABASE=db;" },
        { port, false, '^', "DRIVER={FreeTDS};SERVER=10.0.0.5;PORT=1500;DATABASE=db;" },
        { port, true, '^', "DRIVER={ODBC Driver 18 for SQL Server};SERVER=10.0.0.5,1500;DATABASE=db;" },
        { "Server=srv\\INST,1501;Database=db;UID=sa;PWD=x", false, '^', "DRIVER={FreeTDS};SERVER=srv;PORT=1501;" },
        { "Server=srv;Port=1600;Database=db;UID=sa;PWD=x", false, '^', "DRIVER={FreeTDS};SERVER=srv;PORT=1600;" },
        { "Server=(local);Database=db;UID=sa;PWD=x", false, '^', "DRIVER={FreeTDS};SERVER=localhost;PORT=1433;" },
        { "Server=.\\SQLEXPRESS;Database=db;UID=sa;PWD=x", false, '^',
            "DRIVER={FreeTDS};SERVER=localhost\\SQLEXPRESS;" },
        { "Server=(local);Database=db;UID=sa;PWD=x", true, '~', ";SERVER=(local);" },
        // Certificates are never trusted silently; an explicit driver wins, escaped.
        { kAdo, true, '!', "TrustServerCertificate" },
        { kAdo, true, '!', "Encrypt" },
        { kAdo + ";Trust Server Certificate=True;Use Encryption for Data=True", true, '=',
            "DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;DATABASE=db;UID=sa;PWD=x;Encrypt=yes;"
            "TrustServerCertificate=yes" },
        { kAdo + ";Driver={ODBC Driver 17 for SQL Server}", false, '^',
            "DRIVER={ODBC Driver 17 for SQL Server};SERVER=srv;DATABASE=db;" },
        { kAdo + ";Driver=FreeTDS", true, '^', "DRIVER={FreeTDS};SERVER=srv;PORT=1433;" },
        { kAdo + ";Driver={Evil}};DSN=x}", true, '^', "DRIVER={Evil}};DSN=x};SERVER=srv;" },
        // ODBC strings pass through; the OLE DB provider for ODBC leaves its ODBC part.
        { "DRIVER={SQLite3};Database=/tmp/x.db", false, '=', "DRIVER={SQLite3};Database=/tmp/x.db" },
        { "Driver={ODBC Driver 18 for SQL Server};Server=srv;Database=db;TrustServerCertificate=yes", false, '=',
            "Driver={ODBC Driver 18 for SQL Server};Server=srv;Database=db;TrustServerCertificate=yes" },
        { "DSN=Knjige;UID=sa;PWD=x", false, '=', "DSN=Knjige;UID=sa;PWD=x" },
        { "Provider=MSDASQL.1;DSN=Knjige;UID=sa", false, '=', "DSN=Knjige;UID=sa" },
        // Written anew for FreeTDS or a DSN.
        { "DSN=Knjige;PWD={ta}}jna}", false, '=', "DSN=Knjige;PWD=ta}jna" },
        { "Driver={FreeTDS};Server=srv;PWD={a;b}", false, '=', "Driver={FreeTDS};Server=srv;PWD={a;b}" },
    };
    for (const auto& c : cases) {
        const QString out = parsed(c.input, Kind::Odbc, c.microsoft ? Microsoft : FreeTds).odbc;
        const bool ok = c.match == '=' ? out == c.odbc
            : c.match == '^'           ? out.startsWith(c.odbc)
            : c.match == '$'           ? out.endsWith(c.odbc)
            : c.match == '~'           ? out.contains(c.odbc)
                                       : !out.contains(c.odbc);
        EXPECT_TRUE(ok) << c.input.toStdString() << "\n -> " << out.toStdString();
    }
    // Encryption settings reach FreeTDS in its own words.
    const char* encryption[][3] = { // the string's keys, FreeTDS's setting, what Driver 18 is told
        { "", "", "" }, { ";Encrypt=Mandatory", ";Encryption=require", ";Encrypt=yes" },
        { ";Encrypt=strict", ";Encryption=require", ";Encrypt=strict" },
        { ";Encrypt=no", ";Encryption=off", ";Encrypt=no" },
        { ";TrustServerCertificate=yes", ";Encryption=request", ";TrustServerCertificate=yes" }
    };
    for (const auto& c : encryption) {
        EXPECT_EQ(parsed(kAdo + c[0], Kind::Odbc).odbc,
            "DRIVER={FreeTDS};SERVER=srv;PORT=1433;DATABASE=db;UID=sa;PWD=x;TDS_Version=7.4;ClientCharset=UTF-8"
                + QString(c[1]))
            << c[0];
        EXPECT_EQ(parsed(kAdo + c[0], Kind::Odbc, Microsoft).odbc,
            "DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;DATABASE=db;UID=sa;PWD=x" + QString(c[2]))
            << c[0];
    }
}

TEST(ConnectionString, TheMachinesDriverAndTheServerSessionSetUp)
{
    const QByteArray saved = qgetenv("KNJIGE_ODBC_DRIVER");
    qputenv("KNJIGE_ODBC_DRIVER", "ODBC Driver 18 for SQL Server");
    EXPECT_EQ(db::sqlServerOdbcDriver(), Microsoft);
    EXPECT_TRUE(db::parseConnectionString(kAdo).odbc.startsWith("DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;"));
    qunsetenv("KNJIGE_ODBC_DRIVER");
#ifdef Q_OS_WIN
    EXPECT_EQ(db::sqlServerOdbcDriver(), Microsoft);
#else
    EXPECT_EQ(db::sqlServerOdbcDriver(), FreeTds);
    EXPECT_TRUE(db::parseConnectionString(kAdo).odbc.startsWith("DRIVER={FreeTDS};"));
#endif
    if (!saved.isEmpty())
        qputenv("KNJIGE_ODBC_DRIVER", saved);
    EXPECT_EQ(db::sqlServerSessionSetup(), QStringList({ "SET DATEFORMAT mdy", "SET NOCOUNT ON" }));
}

TEST(ConnectionString, DatabaseFilesOpenTheEmbeddedDatabase)
{
    const std::pair<const char*, const char*> cases[] = {
        { "/home/ana/knjige.db", "/home/ana/knjige.db" },
        { "  podaci/knjige.SQLITE3 ", "podaci/knjige.SQLITE3" },
        { "C:\\Arbosa\\knjige.sqlite", "C:\\Arbosa\\knjige.sqlite" },
        { "sqlite:/tmp/bilo koja datoteka", "/tmp/bilo koja datoteka" },
        { "SQLite:relativna", "relativna" },
        { "Data Source=/tmp/knjige.db", "/tmp/knjige.db" },
        { "Data Source=\"/tmp/moje knjige;2016.db\"", "/tmp/moje knjige;2016.db" },
        { "Provider=SQLite;Data Source=/tmp/knjige", "/tmp/knjige" },
        { "Data Source=C:\\Arbosa\\knjige.db;Version=3;", "C:\\Arbosa\\knjige.db" },
    };
    for (const auto& [text, path] : cases)
        EXPECT_EQ(parsed(text, Kind::Sqlite).sqlitePath, path) << text;
    // An existing file is a database whatever its name.
    const QString existing = test::scratchDir() + "/knjige-bez-nastavka";
    QFile f(existing);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    EXPECT_EQ(parsed(existing, Kind::Sqlite).sqlitePath, existing);
    EXPECT_EQ(parsed("Data Source=" + existing, Kind::Sqlite).sqlitePath, existing);
}

TEST(ConnectionString, MalformedStringsSayWhatIsWrongAndNeverShowThePassword)
{
    const QString catalog = "nedostaje Initial Catalog (naziv baze).";
    const std::pair<QString, QString> cases[] = {
        { "Provider=SQLOLEDB.1;Data Source=srv;User ID=sa;Password=Tajna123", catalog },
        { "Provider=SQLOLEDB.1;Initial Catalog=db;User ID=sa;Password=x", "nedostaje Data Source (naziv servera)." },
        { "Provider=SQLOLEDB.1;User ID=sa;Password=x",
            "nedostaje Data Source (naziv servera) i Initial Catalog (naziv baze)." },
        // Without a catalog, a server name is not taken for a file.
        { "Data Source=srv;User ID=sa;Password=x", catalog },
        { "Data Source=srv", catalog },
        { "", "prazan je." },
        { "sqlite:  ", "iza \"sqlite:\" nedostaje putanja do datoteke baze." },
        { "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=knjige.mdb",
            "Provider \"Microsoft.Jet.OLEDB.4.0\" nije podržan (očekuje se SQLOLEDB za SQL Server ili SQLite za "
            "datoteku baze)." },
        { "Provider=SQLOLEDB.1;Data Source srv;Initial Catalog=db",
            "dio \"Data Source srv\" nema oblik Ključ=Vrijednost." },
        { "Server=srv;Database=db;PWD=\"nezatvoren", "vrijednost otvorena znakom \" nije zatvorena." },
        // What follows a password is its rest as like as not.
        { "Server=srv;Database=db;PWD=\"Taj\"na",
            "iza vrijednosti ključa PWD u navodnicima slijedi još teksta umjesto "
            "znaka ';'." },
        { "Server=srv;Database=\"db\" x", "iza vrijednosti u navodnicima slijedi \"x\" umjesto znaka ';'." },
        { "Server=srv;Password=Taj;na;Database=db",
            "dio iza vrijednosti ključa Password nema oblik Ključ=Vrijednost." },
        { "Server=srv,14x33;Database=db", "port \"14x33\" nije broj od 1 do 65535." },
        { "Server=srv,x;Database=db;PWD=Tajna123", "port \"x\" nije broj od 1 do 65535." },
        { "Server=\\INST;Database=db", "nedostaje naziv servera u Data Source." },
        { "knjige", "\"knjige\" nije ni datoteka baze (.db, .sqlite) ni niz oblika Ključ=Vrijednost." },
        { "Provider=SQLite", "nedostaje Data Source (putanja do datoteke baze)." },
        { "Provider=MSDASQL;UID=sa", "uz Provider=MSDASQL nedostaje DSN ili Driver." },
        // A value that FreeTDS (before 1.4) or a driver behind a DSN could end early.
        { kAdo.chopped(1) + "\"Tajna};PORT=5558;UID=napadac;X={\"", freeTdsRefusal("Password") },
        { "Server=srv;Database={{Knjige}}};UID=sa", freeTdsRefusal("Initial Catalog") },
        { "Driver=FreeTDS;Server=srv;PWD={Tajna}};x}", freeTdsRefusal("PWD") },
        { "DSN=Knjige;PWD={ Tajna}}}", freeTdsRefusal("PWD", "iz DSN-a \"Knjige\"") },
        { kAdo.chopped(1) + "Tajna.dsn",
            "niz sadrži \".dsn\", a Qt-ov ODBC upravljački program (QODBC) takav niz čita kao naziv DSN datoteke; "
            "DSN datoteka se navodi prvim ključem FILEDSN." },
    };
    for (const auto& [text, error] : cases)
        EXPECT_EQ(parsed(text, Kind::Invalid).error, "Neispravan connection string: " + error) << text.toStdString();
}

TEST(ConnectionString, FreeTdsLogsInWithEveryValueWholeOrTheStringIsRefused)
{
    // FreeTDS itself reads each string and sends its login to a stand-in server; a
    // value that leaked a PORT of its own would go to the decoy.
    test::TdsLoginCatcher server;
    const QString hostile = QStringLiteral("x};PORT=%1;UID=napadac;DATABASE=master;X={").arg(server.decoyPort());
    const std::pair<QString, bool> values[] = { // a value, refused
        { hostile, true }, { "ta}jna", false }, { "a;b", false }, { "{x}", true }, { "p=q", false },
        { "\"quoted\"", false }, { "'single'", false }, { "tajna}", false }, { "{x", false }, { " čćž ", false },
        { "a;b}", true }
    };
    const QString adoKeys[] = { "Password", "User ID", "Initial Catalog" };
    const QString base
        = QStringLiteral("Provider=SQLOLEDB.1;Driver={FreeTDS};Data Source=127.0.0.1,%1;Encrypt=no").arg(server.port());
    struct Row {
        QString text;
        QString key;
        std::array<QString, 3> login;
    }; // login: password, user, database
    std::vector<Row> rows;
    for (const auto& [value, refused] : values)
        for (int k = 0; k < 3; ++k) {
            std::array<QString, 3> login = { "tajna", "ana", "Knjige" };
            login[k] = value;
            QString text = base;
            for (int i = 0; i < 3; ++i)
                text += ";" + adoKeys[i] + "=\"" + QString(login[i]).replace("\"", "\"\"") + "\"";
            rows.push_back({ text, refused ? adoKeys[k] : QString(), login });
        }
    // An ODBC string written by the host for FreeTDS: the ODBC rule's '}}' arrives as '}'.
    const QString odbcString
        = QStringLiteral("DRIVER={FreeTDS};SERVER=127.0.0.1;PORT=%1;Encryption=off;DATABASE=Knjige;"
                         "UID=ana;PWD=")
              .arg(server.port());
    rows.push_back({ odbcString + "{ta}}jna}", {}, { "ta}jna", "ana", "Knjige" } });
    rows.push_back({ odbcString + "{" + QString(hostile).replace("}", "}}") + "}", "PWD", {} });

    for (const Row& row : rows) {
        db::Database db;
        EXPECT_FALSE(db.connect(row.text));
        const std::vector<test::TdsLogin> logins = server.takeLogins();
        if (!row.key.isEmpty()) {
            EXPECT_EQ(db.errorDescription(), "Neispravan connection string: " + freeTdsRefusal(row.key))
                << row.text.toStdString();
            EXPECT_TRUE(logins.empty());
            continue;
        }
        if (logins.empty() && db.errorDescription().contains(QLatin1String("FreeTDS")))
            GTEST_SKIP() << "The FreeTDS ODBC driver is not usable: " << db.errorDescription().toStdString();
        ASSERT_EQ(logins.size(), 1u) << row.text.toStdString() << ": " << db.errorDescription().toStdString();
        const test::TdsLogin& got = logins.front();
        EXPECT_EQ(got.port, server.port());
        EXPECT_EQ(got.server, "127.0.0.1");
        EXPECT_EQ(QStringList({ got.password, got.user, got.database }),
            QStringList({ row.login[0], row.login[1], row.login[2] }))
            << row.text.toStdString();
    }
    EXPECT_EQ(server.decoyVisits(), 0);
}

TEST(OdbcBackend, DataSourceNamesLoseTheirKeyAndFieldTypesFollowTheColumnDescription)
{
    // Each ends with a ';' of its own, so that the last value is ended for every driver.
    EXPECT_EQ(db::qodbcDatabaseName("DRIVER={FreeTDS};SERVER=srv;PWD={a;b}"), "DRIVER={FreeTDS};SERVER=srv;PWD={a;b};");
    EXPECT_EQ(db::qodbcDatabaseName("Driver={SQLite3};Database=/tmp/x.db;"), "Driver={SQLite3};Database=/tmp/x.db;");
    EXPECT_EQ(db::qodbcDatabaseName("DSN=Knjige;UID=sa;PWD=x"), "Knjige;UID=sa;PWD=x;");
    EXPECT_EQ(db::qodbcDatabaseName(" dsn = Knjige"), "Knjige;");
    EXPECT_EQ(db::qodbcDatabaseName("FILEDSN=/etc/knjige.dsn;PWD=x"), "/etc/knjige.dsn;PWD=x;");

    // Codes as ODBC defines them: bit -7, tinyint -6, bigint -5, numeric 2, decimal 3,
    // integer 4, smallint 5, float 6, real 7, double 8, timestamp 93, date 91,
    // varchar 12, wvarchar -9, longvarchar -1.
    EXPECT_EQ(db::odbcFieldType(3, 19, 4), db::FieldType::Currency); // money
    EXPECT_EQ(db::odbcFieldType(3, 10, 4), db::FieldType::Currency); // smallmoney
    EXPECT_EQ(db::odbcFieldType(2, 19, 4), db::FieldType::Currency);
    EXPECT_EQ(db::odbcFieldType(3, 18, 2), db::FieldType::Decimal);
    EXPECT_EQ(db::odbcFieldType(3, 38, 6), db::FieldType::Decimal); // SUM of a decimal column
    EXPECT_EQ(db::odbcFieldType(2, 10, 0), db::FieldType::Decimal);
    EXPECT_EQ(db::odbcFieldType(-7, 1, 0), db::FieldType::Boolean);
    const std::tuple<db::FieldType, int, int, std::vector<int>> byType[] = { // type, size, digits, codes
        { db::FieldType::Integer, 10, 0, { -6, -5, 4, 5 } }, { db::FieldType::Float, 53, 0, { 6, 7, 8 } },
        { db::FieldType::Date, 23, 3, { 9, 11, 91, 93, -155 } },
        { db::FieldType::Text, 30, 0, { 1, 12, -8, -9, -1, -10, -11 } }
    };
    for (const auto& [type, size, digits, codes] : byType)
        for (int code : codes)
            EXPECT_EQ(db::odbcFieldType(code, size, digits), type) << code;
}

namespace
{

QString connectionString(const QString& path)
{
    return QStringLiteral("DRIVER={SQLite3};Database=") + path;
}

QVariant amount(qint64 units)
{
    return QVariant::fromValue(Money::fromUnits(units));
}

class OdbcBackendTest : public ::testing::Test
{
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

    void exec(const char* sql)
    {
        ASSERT_TRUE(m_db.execute(QString::fromUtf8(sql))) << m_db.errorDescription().toStdString();
    }
    // Writes one row; a failure is the caller's to check.
    bool write(
        db::RowChange::Kind kind, const db::RowChange::Values& values, const db::RowChange::Values& original = {})
    {
        return m_db.writeRow({ kind, QStringLiteral("dbo.Stavke"), values, original });
    }
    bool insert(int rbroj, const QString& opis, const QVariant& iznos = {})
    {
        return write(db::RowChange::Kind::Insert, { { "RBroj", rbroj }, { "Opis", opis }, { "Iznos", iznos } });
    }
    db::ResultSet rows(const QString& sql)
    {
        db::ResultSet rs;
        EXPECT_TRUE(m_db.open(sql, rs)) << m_db.errorDescription().toStdString();
        return rs;
    }
    qint64 count(const QString& where = QString())
    {
        const db::ResultSet rs = rows(QStringLiteral("SELECT COUNT(*) AS Broj FROM Stavke") + where);
        return rs.rowCount() == 1 ? rs.integer(0, 0) : -1;
    }
    std::string error() const { return m_db.errorDescription().toStdString(); }

    QString m_path = test::scratchDir() + QStringLiteral("/odbc.db");
    db::Database m_db;
};

} // namespace

TEST_F(OdbcBackendTest, ConnectsWithoutTheSqlServerSetUpTakesTypesFromTheDriverAndBindsValuesIntact)
{
    // The SET statements of a SQL Server session would be refused here; the backend
    // recognised the engine and ran none.
    EXPECT_TRUE(m_db.isConnected());
    EXPECT_EQ(m_db.dialect(), db::SqlDialect::Sqlite);
    EXPECT_TRUE(QFileInfo(m_path).isFile());

    db::Database other;
    EXPECT_FALSE(other.connect(QStringLiteral("DRIVER={Knjige Nepostojeci Driver};Database=/tmp/x.db")));
    EXPECT_TRUE(other.errorDescription().contains(QLatin1String("Knjige Nepostojeci Driver"))) << error();
    EXPECT_FALSE(other.isConnected());
    const QString missingFolder = test::scratchDir() + QStringLiteral("/nema/takve/mape");
    EXPECT_FALSE(other.connect(connectionString(missingFolder + QStringLiteral("/x.db"))));
    EXPECT_FALSE(other.errorDescription().isEmpty());
    EXPECT_FALSE(QFileInfo::exists(missingFolder));
    EXPECT_FALSE(other.connect(QStringLiteral("DSN=KnjigeNepostojeciDsn")));
    EXPECT_TRUE(other.errorDescription().contains(QLatin1String("not found")))
        << other.errorDescription().toStdString();

    // Types come from the driver's column descriptions.
    exec("INSERT INTO Stavke (RBroj, Vrsta, Iznos, Datum, Opis, Placeno, Stopa, Veliki) VALUES (7, 3, 1234567.8901, "
         "'2016-03-15 00:00:00', 'Nabavka', 1, 0.17, 9000000000)");
    const db::ResultSet rs
        = rows(QStringLiteral("SELECT RBroj, Vrsta, Iznos, Datum, Opis, Placeno, Stopa, Veliki FROM Stavke"));
    ASSERT_EQ(rs.rowCount(), 1);
    EXPECT_EQ(test::fieldNames(rs), "RBroj,Vrsta,Iznos,Datum,Opis,Placeno,Stopa,Veliki");
    const db::FieldType types[] = { db::FieldType::Integer, db::FieldType::Integer, {}, db::FieldType::Date,
        db::FieldType::Text, db::FieldType::Boolean, db::FieldType::Float, db::FieldType::Integer };
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
    ASSERT_TRUE(write(db::RowChange::Kind::Insert,
        { { "RBroj", 1 }, { "Opis", awkward }, { "Iznos", amount(-1) }, { "Datum", QDate(2016, 12, 31) },
            { "Placeno", false }, { "Stopa", QVariant() } }))
        << error();
    const db::ResultSet bound = rows(QStringLiteral("SELECT Opis, Iznos, Datum, Placeno, Stopa FROM Stavke"));
    ASSERT_EQ(bound.rowCount(), 1);
    EXPECT_EQ(test::rowText(bound, 0), awkward.toStdString() + "|-0.0001|2016-12-31|0|<null>");
}

TEST_F(OdbcBackendTest, ChangesTouchOneOfTwoEqualRowsCountsAreReportedAndTransactionsCommitAndRollBack)
{
    using K = db::RowChange::Kind;
    const QVariant iznos = amount(1005000);
    ASSERT_TRUE(insert(5, QStringLiteral("isto"), iznos) && insert(5, QStringLiteral("isto"), iznos));
    ASSERT_TRUE(insert(6, QStringLiteral("drugo")));
    const db::RowChange::Values changed = { { "Opis", QStringLiteral("promijenjeno") } };
    const db::RowChange::Values asRead = { { "RBroj", 5 }, { "Opis", QStringLiteral("isto") }, { "Iznos", iznos } };
    ASSERT_TRUE(write(K::Update, changed, asRead)) << error();
    EXPECT_EQ(count(QStringLiteral(" WHERE Opis = 'promijenjeno'")), 1);
    EXPECT_EQ(count(QStringLiteral(" WHERE Opis = 'isto'")), 1);
    // A NULL in the row as read matches the NULL in the table.
    ASSERT_TRUE(write(K::Update, { { "Iznos", amount(30000) } }, { { "RBroj", 6 }, { "Iznos", QVariant() } }))
        << error();
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 6 AND Iznos = 3")), 1);

    const db::RowChange::Values removal = { { "RBroj", 5 }, { "Iznos", iznos } };
    ASSERT_TRUE(write(K::Delete, {}, removal));
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 5")), 1);
    ASSERT_TRUE(write(K::Delete, {}, removal));
    EXPECT_EQ(count(QStringLiteral(" WHERE RBroj = 5")), 0);
    // The row is gone: the driver's row count tells the caller so.
    EXPECT_FALSE(write(K::Delete, {}, removal));
    EXPECT_EQ(
        m_db.errorDescription(), "Zapis više ne postoji u bazi podataka: promijenio ga je ili obrisao drugi korisnik.");
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

    // Transactions commit and roll back.
    exec("DELETE FROM Stavke");
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
        db::TransactionGuard guard(m_db);
        ASSERT_TRUE(guard.isActive());
        ASSERT_TRUE(insert(3, QStringLiteral("bez potvrde")));
    }
    EXPECT_FALSE(m_db.inTransaction());
    EXPECT_EQ(count(), 1);

    // What was committed is in the file for any other connection.
    db::Database other;
    ASSERT_TRUE(other.connect(connectionString(m_path)));
    EXPECT_EQ(test::columnText(*other.query(QStringLiteral("SELECT Opis FROM Stavke")), "Opis"), "zadržano");
}

TEST_F(OdbcBackendTest, RejectedStatementsAndLargeResultsLeaveTheConnectionUsable)
{
    db::ResultSet rs;
    EXPECT_FALSE(m_db.open(QStringLiteral("SELEC RBroj FROM Stavke"), rs));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("syntax error"))) << error();
    EXPECT_EQ(m_db.lastSql(), "SELEC RBroj FROM Stavke");
    EXPECT_FALSE(m_db.execute(QStringLiteral("INSERT INTO NemaTablice (a) VALUES (1)")));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("NemaTablice"))) << error();
    EXPECT_FALSE(write(db::RowChange::Kind::Insert, { { "RBroj", 1 }, { "NemaKolone", 1 } }));
    EXPECT_TRUE(m_db.errorDescription().contains(QLatin1String("NemaKolone"))) << error();
    ASSERT_TRUE(insert(1, QStringLiteral("x")));
    EXPECT_EQ(count(), 1);

    // A large result read in one pass, then at once a change and another read on the
    // same connection.
    exec("DELETE FROM Stavke");
    db::TransactionGuard filling(m_db);
    for (int i = 0; i < 300; ++i)
        ASSERT_TRUE(insert(i, QStringLiteral("red %1").arg(i), amount(i)));
    ASSERT_TRUE(filling.commit());
    const db::ResultSet all = rows(QStringLiteral("SELECT RBroj, Iznos FROM Stavke ORDER BY RBroj"));
    ASSERT_EQ(all.rowCount(), 300);
    EXPECT_EQ(all.money(299, 1), Money::fromUnits(299));
    exec("DELETE FROM Stavke WHERE RBroj < 100");
    EXPECT_EQ(count(), 200);

    // A statement that gives no rows reads as an empty result without fields.
    db::ResultSet none;
    ASSERT_TRUE(m_db.open(QStringLiteral("CREATE TABLE Druga (a int)"), none));
    EXPECT_TRUE(none.fieldCount() == 0 && none.rowCount() == 0);
    const db::ResultSet empty = rows(QStringLiteral("SELECT a FROM Druga"));
    EXPECT_TRUE(empty.fieldCount() == 1 && empty.rowCount() == 0);
}
