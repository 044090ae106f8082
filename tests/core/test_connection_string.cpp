// The host's connection string read as ADO reads it and turned into what the ODBC
// driver manager or the embedded database takes; the refusals and their texts.
#include "session/ConnectionString.h"
#include "session/OdbcBackend.h"
#include "support/Sandbox.h"

#include <QFile>

#include <gtest/gtest.h>

using namespace knjige;
using Kind = ConnectionTarget::Kind;

namespace {

const QString FreeTds = QStringLiteral("FreeTDS");
const QString Microsoft = QStringLiteral("ODBC Driver 18 for SQL Server");
const QString kAdo = "Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=x";

QString odbc(const QString& text, const QString& driver = FreeTds)
{
    const ConnectionTarget t = parseConnectionString(text, driver);
    EXPECT_EQ(t.kind, Kind::Odbc) << text.toStdString() << ": " << t.error.toStdString();
    return t.odbc;
}

QString sqlitePath(const QString& text)
{
    const ConnectionTarget t = parseConnectionString(text, FreeTds);
    EXPECT_EQ(t.kind, Kind::Sqlite) << text.toStdString() << ": " << t.error.toStdString();
    return t.sqlitePath;
}

QString errorOf(const QString& text)
{
    const ConnectionTarget t = parseConnectionString(text, FreeTds);
    EXPECT_EQ(t.kind, Kind::Invalid) << text.toStdString();
    return t.error;
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
    // How the result must match: = whole, ^ its start, ~ a part of it, ! not a part of it.
    const struct {
        QString input;
        bool microsoft;
        char match;
        QString odbc;
    } cases[] = {
        // The generator's source connection, built by the system with an empty password.
        { "Provider=SQLOLEDB.1;Data Source=POSLOVNI;Initial Catalog=KIF2016;User ID=sa;Password=", false, '=',
            "DRIVER={FreeTDS};SERVER=POSLOVNI;PORT=1433;DATABASE=KIF2016;UID=sa;PWD=;TDS_Version=7.4;ClientCharset=UTF-8" },
        // Keys in any case and spacing, their other names, the last of two equal keys,
        // and keys the ODBC side has no use for dropped.
        { " provider = sqloledb.1 ; DATA SOURCE = srv ;initial   catalog=Knjige;user id=ana;PASSWORD=tajna;", false,
            '=', knjige },
        { "Server=srv;Database=Knjige;UID=ana;PWD=tajna", false, '=', knjige },
        { "Provider=SQLNCLI11;Address=srv;Database=Knjige;User=ana;Pwd=tajna;;", false, '=', knjige },
        { "Provider=SQLOLEDB;Data Source=stari;Initial Catalog=Knjige;User ID=ana;Password=tajna;Server=srv", false, '=',
            knjige },
        { "Provider=SQLOLEDB.1;Persist Security Info=True;User ID=ana;Password=tajna;Initial Catalog=Knjige;"
          "Data Source=srv;Use Procedure for Prepare=1;Auto Translate=True;Packet Size=4096",
            false, '=', knjige },
        // Quoted values keep their separators and are braced, a closing brace doubled.
        { kAdo.chopped(1) + "\"a;b=c\"", false, '~', ";PWD={a;b=c};" },
        { kAdo.chopped(1) + "'it''s'", false, '~', ";PWD=it's;" },
        { kAdo.chopped(1) + "\"say \"\"hi\"\"\"", false, '~', ";PWD=say \"hi\";" },
        { "Server=srv;Database=db;UID=sa;PWD={x}};y}", false, '~', ";PWD={x}};y};" },
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
        { "Server=.\\SQLEXPRESS;Database=db;UID=sa;PWD=x", false, '^', "DRIVER={FreeTDS};SERVER=localhost\\SQLEXPRESS;" },
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
    };
    for (const auto& c : cases) {
        const QString out = odbc(c.input, c.microsoft ? Microsoft : FreeTds);
        const bool ok = c.match == '=' ? out == c.odbc
            : c.match == '^'           ? out.startsWith(c.odbc)
            : c.match == '~'           ? out.contains(c.odbc)
                                       : !out.contains(c.odbc);
        EXPECT_TRUE(ok) << c.input.toStdString() << "\n -> " << out.toStdString();
    }
    // Encryption settings reach FreeTDS in its own words.
    const char* encryption[][3] = { // the string's keys, FreeTDS's setting, what Driver 18 is told
        { "", "", "" }, { ";Encrypt=Mandatory", ";Encryption=require", ";Encrypt=yes" },
        { ";Encrypt=strict", ";Encryption=require", ";Encrypt=strict" }, { ";Encrypt=no", ";Encryption=off", ";Encrypt=no" },
        { ";TrustServerCertificate=yes", ";Encryption=request", ";TrustServerCertificate=yes" } };
    for (const auto& c : encryption) {
        EXPECT_EQ(odbc(kAdo + c[0]),
            "DRIVER={FreeTDS};SERVER=srv;PORT=1433;DATABASE=db;UID=sa;PWD=x;TDS_Version=7.4;ClientCharset=UTF-8"
                + QString(c[1]))
            << c[0];
        EXPECT_EQ(odbc(kAdo + c[0], Microsoft),
            "DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;DATABASE=db;UID=sa;PWD=x" + QString(c[2]))
            << c[0];
    }
}

TEST(ConnectionString, TheMachinesDriverAndTheServerSessionSetUp)
{
    const QByteArray saved = qgetenv("KNJIGE_ODBC_DRIVER");
    qputenv("KNJIGE_ODBC_DRIVER", "ODBC Driver 18 for SQL Server");
    EXPECT_EQ(sqlServerOdbcDriver(), Microsoft);
    EXPECT_TRUE(parseConnectionString(kAdo).odbc.startsWith("DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;"));
    qunsetenv("KNJIGE_ODBC_DRIVER");
#ifdef Q_OS_WIN
    EXPECT_EQ(sqlServerOdbcDriver(), Microsoft);
#else
    EXPECT_EQ(sqlServerOdbcDriver(), FreeTds);
    EXPECT_TRUE(parseConnectionString(kAdo).odbc.startsWith("DRIVER={FreeTDS};"));
#endif
    if (!saved.isEmpty())
        qputenv("KNJIGE_ODBC_DRIVER", saved);
    EXPECT_EQ(sqlServerSessionSetup(), QStringList({ "SET DATEFORMAT mdy", "SET NOCOUNT ON" }));
}

TEST(ConnectionString, DatabaseFilesOpenTheEmbeddedDatabase)
{
    const std::pair<const char*, const char*> cases[] = {
        { "/home/ana/knjige.db", "/home/ana/knjige.db" }, { "  podaci/knjige.SQLITE3 ", "podaci/knjige.SQLITE3" },
        { "C:\\Arbosa\\knjige.sqlite", "C:\\Arbosa\\knjige.sqlite" },
        { "sqlite:/tmp/bilo koja datoteka", "/tmp/bilo koja datoteka" }, { "SQLite:relativna", "relativna" },
        { "Data Source=/tmp/knjige.db", "/tmp/knjige.db" },
        { "Data Source=\"/tmp/moje knjige;2016.db\"", "/tmp/moje knjige;2016.db" },
        { "Provider=SQLite;Data Source=/tmp/knjige", "/tmp/knjige" },
        { "Data Source=C:\\Arbosa\\knjige.db;Version=3;", "C:\\Arbosa\\knjige.db" },
    };
    for (const auto& [text, path] : cases)
        EXPECT_EQ(sqlitePath(text), path) << text;
    // An existing file is a database whatever its name.
    const QString existing = test::scratchDir() + "/knjige-bez-nastavka";
    QFile f(existing);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    EXPECT_EQ(sqlitePath(existing), existing);
    EXPECT_EQ(sqlitePath("Data Source=" + existing), existing);
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
        { "Data Source=srv;User ID=sa;Password=x", catalog }, { "Data Source=srv", catalog },
        { "", "prazan je." }, { "sqlite:  ", "iza \"sqlite:\" nedostaje putanja do datoteke baze." },
        { "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=knjige.mdb",
            "Provider \"Microsoft.Jet.OLEDB.4.0\" nije podržan (očekuje se SQLOLEDB za SQL Server ili SQLite za "
            "datoteku baze)." },
        { "Provider=SQLOLEDB.1;Data Source srv;Initial Catalog=db",
            "dio \"Data Source srv\" nema oblik Ključ=Vrijednost." },
        { "Server=srv;Database=db;PWD=\"nezatvoren", "vrijednost otvorena znakom \" nije zatvorena." },
        { "Server=srv,14x33;Database=db", "port \"14x33\" nije broj od 1 do 65535." },
        { "Server=srv,x;Database=db;PWD=Tajna123", "port \"x\" nije broj od 1 do 65535." },
        { "Server=\\INST;Database=db", "nedostaje naziv servera u Data Source." },
        { "knjige", "\"knjige\" nije ni datoteka baze (.db, .sqlite) ni niz oblika Ključ=Vrijednost." },
        { "Provider=SQLite", "nedostaje Data Source (putanja do datoteke baze)." },
        { "Provider=MSDASQL;UID=sa", "uz Provider=MSDASQL nedostaje DSN ili Driver." },
    };
    for (const auto& [text, error] : cases)
        EXPECT_EQ(errorOf(text), "Neispravan connection string: " + error) << text.toStdString();
}

TEST(OdbcBackend, DataSourceNamesLoseTheirKeyAndFieldTypesFollowTheColumnDescription)
{
    EXPECT_EQ(qodbcDatabaseName("DRIVER={FreeTDS};SERVER=srv;PORT=1433"), "DRIVER={FreeTDS};SERVER=srv;PORT=1433");
    EXPECT_EQ(qodbcDatabaseName("Driver={SQLite3};Database=/tmp/x.db"), "Driver={SQLite3};Database=/tmp/x.db");
    EXPECT_EQ(qodbcDatabaseName("DSN=Knjige;UID=sa;PWD=x"), "Knjige;UID=sa;PWD=x");
    EXPECT_EQ(qodbcDatabaseName(" dsn = Knjige"), "Knjige");
    EXPECT_EQ(qodbcDatabaseName("FILEDSN=/etc/knjige.dsn;PWD=x"), "/etc/knjige.dsn;PWD=x");

    // Codes as ODBC defines them: bit -7, tinyint -6, bigint -5, numeric 2, decimal 3,
    // integer 4, smallint 5, float 6, real 7, double 8, timestamp 93, date 91,
    // varchar 12, wvarchar -9, longvarchar -1.
    EXPECT_EQ(odbcFieldType(3, 19, 4), FieldType::Currency); // money
    EXPECT_EQ(odbcFieldType(3, 10, 4), FieldType::Currency); // smallmoney
    EXPECT_EQ(odbcFieldType(2, 19, 4), FieldType::Currency);
    EXPECT_EQ(odbcFieldType(3, 18, 2), FieldType::Decimal);
    EXPECT_EQ(odbcFieldType(3, 38, 6), FieldType::Decimal); // SUM of a decimal column
    EXPECT_EQ(odbcFieldType(2, 10, 0), FieldType::Decimal);
    EXPECT_EQ(odbcFieldType(-7, 1, 0), FieldType::Boolean);
    const std::tuple<FieldType, int, int, std::vector<int>> byType[] = { // type, size, digits, codes
        { FieldType::Integer, 10, 0, { -6, -5, 4, 5 } }, { FieldType::Float, 53, 0, { 6, 7, 8 } },
        { FieldType::Date, 23, 3, { 9, 11, 91, 93, -155 } }, { FieldType::Text, 30, 0, { 1, 12, -8, -9, -1, -10, -11 } } };
    for (const auto& [type, size, digits, codes] : byType)
        for (int code : codes)
            EXPECT_EQ(odbcFieldType(code, size, digits), type) << code;
}
