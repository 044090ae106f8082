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

TEST(ConnectionString, HostsAdoStringBecomesFreeTdsOdbc)
{
    EXPECT_EQ(odbc("Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=x"),
              "DRIVER={FreeTDS};SERVER=srv;PORT=1433;DATABASE=db;UID=sa;PWD=x;TDS_Version=7.4;ClientCharset=UTF-8");
    // The generator's source connection, built by the system with an empty password.
    EXPECT_EQ(odbc("Provider=SQLOLEDB.1;Data Source=POSLOVNI;Initial Catalog=KIF2016;User ID=sa;Password="),
              "DRIVER={FreeTDS};SERVER=POSLOVNI;PORT=1433;DATABASE=KIF2016;UID=sa;PWD=;TDS_Version=7.4;"
              "ClientCharset=UTF-8");
}

TEST(ConnectionString, KeysAreCaseInsensitiveAndSpacingIsIgnored)
{
    const QString expected
        = "DRIVER={FreeTDS};SERVER=srv;PORT=1433;DATABASE=Knjige;UID=ana;PWD=tajna;TDS_Version=7.4;ClientCharset=UTF-8";
    EXPECT_EQ(odbc(" provider = sqloledb.1 ; DATA SOURCE = srv ;initial   catalog=Knjige;user id=ana;PASSWORD=tajna;"),
              expected);
    EXPECT_EQ(odbc("Server=srv;Database=Knjige;UID=ana;PWD=tajna"), expected);
    EXPECT_EQ(odbc("Provider=SQLNCLI11;Address=srv;Database=Knjige;User=ana;Pwd=tajna;;"), expected);
    // ADO reads the last of two equal keys.
    EXPECT_EQ(odbc("Provider=SQLOLEDB;Data Source=stari;Initial Catalog=Knjige;User ID=ana;Password=tajna;Server=srv"),
              expected);
    // Keys the ODBC side has no use for are dropped, not passed on.
    EXPECT_EQ(odbc("Provider=SQLOLEDB.1;Persist Security Info=True;User ID=ana;Password=tajna;Initial Catalog=Knjige;"
                   "Data Source=srv;Use Procedure for Prepare=1;Auto Translate=True;Packet Size=4096"),
              expected);
}

TEST(ConnectionString, QuotedValuesKeepTheirSeparatorsAndAreBracedForOdbc)
{
    EXPECT_TRUE(odbc("Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=\"a;b=c\"")
                    .contains(";PWD={a;b=c};"));
    EXPECT_TRUE(odbc("Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password='it''s'")
                    .contains(";PWD=it's;"));
    EXPECT_TRUE(odbc("Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=\"say \"\"hi\"\"\"")
                    .contains(";PWD=say \"hi\";"));
    // A closing brace inside a braced ODBC value is doubled.
    EXPECT_TRUE(odbc("Server=srv;Database=db;UID=sa;PWD={x}};y}").contains(";PWD={x}};y};"));
    EXPECT_TRUE(odbc("Server=srv;Database=\"Knjige 2016\";UID=sa;PWD= x").contains(";DATABASE=Knjige 2016;"));
}

TEST(ConnectionString, IntegratedSecurityUsesTheWindowsLoginAndNoPassword)
{
    const QString text
        = "Provider=SQLOLEDB.1;Integrated Security=SSPI;Persist Security Info=False;Initial Catalog=db;Data Source=srv";
    EXPECT_EQ(odbc(text, Microsoft), "DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;DATABASE=db;Trusted_Connection=yes");
    EXPECT_EQ(odbc(text), "DRIVER={FreeTDS};SERVER=srv;PORT=1433;DATABASE=db;Trusted_Connection=Yes;TDS_Version=7.4;"
                          "ClientCharset=UTF-8");
    EXPECT_EQ(odbc("Server=srv;Database=db;Trusted_Connection=True", Microsoft),
              "DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;DATABASE=db;Trusted_Connection=yes");
    EXPECT_FALSE(odbc("Server=srv;Database=db;Integrated Security=False;UID=a;PWD=b", Microsoft).contains("Trusted"));
}

TEST(ConnectionString, NamedInstancesAndPortsPerDriver)
{
    const QString instance = "Provider=SQLOLEDB.1;Data Source=srv\\SQLEXPRESS;Initial Catalog=db;User ID=sa;Password=x";
    EXPECT_TRUE(odbc(instance).startsWith("DRIVER={FreeTDS};SERVER=srv\\SQLEXPRESS;DATABASE=db;"));
    EXPECT_TRUE(odbc(instance, Microsoft).startsWith("DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv\\SQLEXPRESS;DATABASE=db;"));

    const QString port = "Provider=SQLOLEDB.1;Data Source=tcp:10.0.0.5, 1500;Initial Catalog=db;User ID=sa;Password=x";
    EXPECT_TRUE(odbc(port).startsWith("DRIVER={FreeTDS};SERVER=10.0.0.5;PORT=1500;DATABASE=db;"));
    EXPECT_TRUE(odbc(port, Microsoft).startsWith("DRIVER={ODBC Driver 18 for SQL Server};SERVER=10.0.0.5,1500;DATABASE=db;"));

    // A port given next to an instance names the instance's listener directly.
    EXPECT_TRUE(odbc("Server=srv\\INST,1501;Database=db;UID=sa;PWD=x").startsWith("DRIVER={FreeTDS};SERVER=srv;PORT=1501;"));
    EXPECT_TRUE(odbc("Server=srv;Port=1600;Database=db;UID=sa;PWD=x").startsWith("DRIVER={FreeTDS};SERVER=srv;PORT=1600;"));

    // FreeTDS knows the local machine only by name.
    EXPECT_TRUE(odbc("Server=(local);Database=db;UID=sa;PWD=x").startsWith("DRIVER={FreeTDS};SERVER=localhost;PORT=1433;"));
    EXPECT_TRUE(odbc("Server=.\\SQLEXPRESS;Database=db;UID=sa;PWD=x").startsWith("DRIVER={FreeTDS};SERVER=localhost\\SQLEXPRESS;"));
    EXPECT_TRUE(odbc("Server=(local);Database=db;UID=sa;PWD=x", Microsoft).contains(";SERVER=(local);"));
}

TEST(ConnectionString, TheDriverCanBeChosenButCertificatesAreNeverTrustedSilently)
{
    const QString ado = "Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=x";
    EXPECT_FALSE(odbc(ado, Microsoft).contains("TrustServerCertificate"));
    EXPECT_FALSE(odbc(ado, Microsoft).contains("Encrypt"));
    EXPECT_TRUE(odbc(ado + ";Trust Server Certificate=True;Use Encryption for Data=True", Microsoft)
                    .endsWith(";PWD=x;Encrypt=yes;TrustServerCertificate=yes"));

    // An explicit driver in the host's string wins over the machine's choice.
    EXPECT_TRUE(odbc(ado + ";Driver={ODBC Driver 17 for SQL Server}").startsWith("DRIVER={ODBC Driver 17 for SQL Server};SERVER=srv;DATABASE=db;"));
    EXPECT_TRUE(odbc(ado + ";Driver=FreeTDS", Microsoft).startsWith("DRIVER={FreeTDS};SERVER=srv;PORT=1433;"));

    const QByteArray saved = qgetenv("KNJIGE_ODBC_DRIVER");
    qputenv("KNJIGE_ODBC_DRIVER", "ODBC Driver 18 for SQL Server");
    EXPECT_EQ(sqlServerOdbcDriver(), Microsoft);
    EXPECT_TRUE(parseConnectionString(ado).odbc.startsWith("DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;"));
    qunsetenv("KNJIGE_ODBC_DRIVER");
#ifdef Q_OS_WIN
    EXPECT_EQ(sqlServerOdbcDriver(), Microsoft);
#else
    EXPECT_EQ(sqlServerOdbcDriver(), FreeTds);
    EXPECT_TRUE(parseConnectionString(ado).odbc.startsWith("DRIVER={FreeTDS};"));
#endif
    if (!saved.isEmpty())
        qputenv("KNJIGE_ODBC_DRIVER", saved);
}

TEST(ConnectionString, OdbcStringsPassThroughUnchanged)
{
    EXPECT_EQ(odbc("DRIVER={SQLite3};Database=/tmp/x.db"), "DRIVER={SQLite3};Database=/tmp/x.db");
    EXPECT_EQ(odbc("Driver={ODBC Driver 18 for SQL Server};Server=srv;Database=db;TrustServerCertificate=yes"),
              "Driver={ODBC Driver 18 for SQL Server};Server=srv;Database=db;TrustServerCertificate=yes");
    EXPECT_EQ(odbc("DSN=Knjige;UID=sa;PWD=x"), "DSN=Knjige;UID=sa;PWD=x");
    // The OLE DB provider for ODBC: the provider goes, the ODBC part stays.
    EXPECT_EQ(odbc("Provider=MSDASQL.1;DSN=Knjige;UID=sa"), "DSN=Knjige;UID=sa");
}

TEST(ConnectionString, DatabaseFilesOpenTheEmbeddedDatabase)
{
    EXPECT_EQ(sqlitePath("/home/ana/knjige.db"), "/home/ana/knjige.db");
    EXPECT_EQ(sqlitePath("  podaci/knjige.SQLITE3 "), "podaci/knjige.SQLITE3");
    EXPECT_EQ(sqlitePath("C:\\Arbosa\\knjige.sqlite"), "C:\\Arbosa\\knjige.sqlite");
    EXPECT_EQ(sqlitePath("sqlite:/tmp/bilo koja datoteka"), "/tmp/bilo koja datoteka");
    EXPECT_EQ(sqlitePath("SQLite:relativna"), "relativna");
    EXPECT_EQ(sqlitePath("Data Source=/tmp/knjige.db"), "/tmp/knjige.db");
    EXPECT_EQ(sqlitePath("Data Source=\"/tmp/moje knjige;2016.db\""), "/tmp/moje knjige;2016.db");
    EXPECT_EQ(sqlitePath("Provider=SQLite;Data Source=/tmp/knjige"), "/tmp/knjige");
    EXPECT_EQ(sqlitePath("Data Source=C:\\Arbosa\\knjige.db;Version=3;"), "C:\\Arbosa\\knjige.db");

    // An existing file is a database whatever its name.
    const QString existing = test::scratchDir() + "/knjige-bez-nastavka";
    QFile f(existing);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    EXPECT_EQ(sqlitePath(existing), existing);
    EXPECT_EQ(sqlitePath("Data Source=" + existing), existing);
}

TEST(ConnectionString, MalformedStringsSayWhatIsWrong)
{
    EXPECT_EQ(errorOf("Provider=SQLOLEDB.1;Data Source=srv;User ID=sa;Password=x"),
              "Neispravan connection string: nedostaje Initial Catalog (naziv baze).");
    EXPECT_EQ(errorOf("Provider=SQLOLEDB.1;Initial Catalog=db;User ID=sa;Password=x"),
              "Neispravan connection string: nedostaje Data Source (naziv servera).");
    EXPECT_EQ(errorOf("Provider=SQLOLEDB.1;User ID=sa;Password=x"),
              "Neispravan connection string: nedostaje Data Source (naziv servera) i Initial Catalog (naziv baze).");
    // Without a catalog, a server name is not taken for a file.
    EXPECT_EQ(errorOf("Data Source=srv;User ID=sa;Password=x"),
              "Neispravan connection string: nedostaje Initial Catalog (naziv baze).");
    EXPECT_EQ(errorOf("Data Source=srv"), "Neispravan connection string: nedostaje Initial Catalog (naziv baze).");
    EXPECT_EQ(errorOf(""), "Neispravan connection string: prazan je.");
    EXPECT_EQ(errorOf("sqlite:  "), "Neispravan connection string: iza \"sqlite:\" nedostaje putanja do datoteke baze.");
    EXPECT_EQ(errorOf("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=knjige.mdb"),
              "Neispravan connection string: Provider \"Microsoft.Jet.OLEDB.4.0\" nije podržan (očekuje se SQLOLEDB za "
              "SQL Server ili SQLite za datoteku baze).");
    EXPECT_EQ(errorOf("Provider=SQLOLEDB.1;Data Source srv;Initial Catalog=db"),
              "Neispravan connection string: dio \"Data Source srv\" nema oblik Ključ=Vrijednost.");
    EXPECT_EQ(errorOf("Server=srv;Database=db;PWD=\"nezatvoren"),
              "Neispravan connection string: vrijednost otvorena znakom \" nije zatvorena.");
    EXPECT_EQ(errorOf("Server=srv,14x33;Database=db"), "Neispravan connection string: port \"14x33\" nije broj od 1 do 65535.");
    EXPECT_EQ(errorOf("Server=\\INST;Database=db"), "Neispravan connection string: nedostaje naziv servera u Data Source.");
    EXPECT_EQ(errorOf("knjige"),
              "Neispravan connection string: \"knjige\" nije ni datoteka baze (.db, .sqlite) ni niz oblika "
              "Ključ=Vrijednost.");
    EXPECT_EQ(errorOf("Provider=SQLite"), "Neispravan connection string: nedostaje Data Source (putanja do datoteke baze).");
    EXPECT_EQ(errorOf("Provider=MSDASQL;UID=sa"), "Neispravan connection string: uz Provider=MSDASQL nedostaje DSN ili Driver.");
}

TEST(ConnectionString, ErrorsNeverShowThePassword)
{
    EXPECT_FALSE(errorOf("Provider=SQLOLEDB.1;Data Source=srv;User ID=sa;Password=Tajna123").contains("Tajna123"));
    EXPECT_FALSE(errorOf("Server=srv,x;Database=db;PWD=Tajna123").contains("Tajna123"));
}

TEST(ConnectionString, SqlServerSessionsAreSetUpForMonthFirstDatesAndNoCounts)
{
    EXPECT_EQ(sqlServerSessionSetup(), QStringList({"SET DATEFORMAT mdy", "SET NOCOUNT ON"}));
}

TEST(OdbcBackend, QtsOdbcDriverGetsDataSourceNamesWithoutTheirKey)
{
    EXPECT_EQ(qodbcDatabaseName("DRIVER={FreeTDS};SERVER=srv;PORT=1433"), "DRIVER={FreeTDS};SERVER=srv;PORT=1433");
    EXPECT_EQ(qodbcDatabaseName("Driver={SQLite3};Database=/tmp/x.db"), "Driver={SQLite3};Database=/tmp/x.db");
    EXPECT_EQ(qodbcDatabaseName("DSN=Knjige;UID=sa;PWD=x"), "Knjige;UID=sa;PWD=x");
    EXPECT_EQ(qodbcDatabaseName(" dsn = Knjige"), "Knjige");
    EXPECT_EQ(qodbcDatabaseName("FILEDSN=/etc/knjige.dsn;PWD=x"), "/etc/knjige.dsn;PWD=x");
}

TEST(OdbcBackend, FieldTypesFollowTheDriversColumnDescription)
{
    // Codes as ODBC defines them: bit -7, tinyint -6, bigint -5, numeric 2, decimal 3,
    // integer 4, smallint 5, float 6, real 7, double 8, timestamp 93, date 91,
    // varchar 12, wvarchar -9, longvarchar -1.
    EXPECT_EQ(odbcFieldType(3, 19, 4), FieldType::Currency);   // money
    EXPECT_EQ(odbcFieldType(3, 10, 4), FieldType::Currency);   // smallmoney
    EXPECT_EQ(odbcFieldType(2, 19, 4), FieldType::Currency);
    EXPECT_EQ(odbcFieldType(3, 18, 2), FieldType::Decimal);
    EXPECT_EQ(odbcFieldType(3, 38, 6), FieldType::Decimal);    // SUM of a decimal column
    EXPECT_EQ(odbcFieldType(2, 10, 0), FieldType::Decimal);
    for (int integer : {-6, -5, 4, 5})
        EXPECT_EQ(odbcFieldType(integer, 10, 0), FieldType::Integer) << integer;
    EXPECT_EQ(odbcFieldType(-7, 1, 0), FieldType::Boolean);
    for (int real : {6, 7, 8})
        EXPECT_EQ(odbcFieldType(real, 53, 0), FieldType::Float) << real;
    for (int date : {9, 11, 91, 93, -155})
        EXPECT_EQ(odbcFieldType(date, 23, 3), FieldType::Date) << date;
    for (int text : {1, 12, -8, -9, -1, -10, -11})
        EXPECT_EQ(odbcFieldType(text, 30, 0), FieldType::Text) << text;
}

TEST(ConnectionString, EveryBuiltValueIsEscapedAndEncryptionReachesFreeTds)
{
    const QString base = "Provider=SQLOLEDB.1;Data Source=srv;Initial Catalog=db;User ID=sa;Password=x";
    // A hostile driver name cannot end its pair and add a key of its own.
    EXPECT_TRUE(odbc(base + ";Driver={Evil}};DSN=x}", Microsoft).startsWith("DRIVER={Evil}};DSN=x};SERVER=srv;"));
    const char* cases[][3] = {// the string's keys, FreeTDS's setting, what Driver 18 is told
        {"", "", ""},
        {";Encrypt=Mandatory", ";Encryption=require", ";Encrypt=yes"},
        {";Encrypt=strict", ";Encryption=require", ";Encrypt=strict"},
        {";Encrypt=no", ";Encryption=off", ";Encrypt=no"},
        {";TrustServerCertificate=yes", ";Encryption=request", ";TrustServerCertificate=yes"}};
    for (const auto& c : cases) {
        EXPECT_EQ(odbc(base + c[0]), "DRIVER={FreeTDS};SERVER=srv;PORT=1433;DATABASE=db;UID=sa;PWD=x;TDS_Version=7.4;"
                                     "ClientCharset=UTF-8" + QString(c[1])) << c[0];
        EXPECT_EQ(odbc(base + c[0], Microsoft),
                  "DRIVER={ODBC Driver 18 for SQL Server};SERVER=srv;DATABASE=db;UID=sa;PWD=x" + QString(c[2]))
            << c[0];
    }
}
