#include "session/db/ConnectionString.h"

#include <QFileInfo>
#include <QHash>
#include <QMap>
#include <QRegularExpression>
#include <QVector>
#include <optional>

namespace knjige::db
{
namespace
{

QString invalidPrefix()
{
    return QStringLiteral("Neispravan connection string: ");
}

ConnectionTarget invalid(const QString& what)
{
    ConnectionTarget t;
    t.error = invalidPrefix() + what;
    return t;
}

ConnectionTarget sqliteTarget(const QString& path)
{
    ConnectionTarget t;
    t.kind = ConnectionTarget::Kind::Sqlite;
    t.sqlitePath = path;
    return t;
}

ConnectionTarget odbcTarget(const QString& odbc)
{
    // Qt's ODBC driver takes a string holding ".dsn" anywhere for the name of a DSN
    // file and puts "FILEDSN=" before all of it; only a string that opens with its
    // FILEDSN reaches the driver manager whole.
    static const QRegularExpression fileDsn(
        QStringLiteral("^\\s*FILEDSN\\s*="), QRegularExpression::CaseInsensitiveOption);
    if (odbc.contains(QLatin1String(".dsn"), Qt::CaseInsensitive) && !fileDsn.match(odbc).hasMatch())
        return invalid(
            QStringLiteral("niz sadrži \".dsn\", a Qt-ov ODBC upravljački program (QODBC) takav niz čita kao "
                           "naziv DSN datoteke; DSN datoteka se navodi prvim ključem FILEDSN."));
    ConnectionTarget t;
    t.kind = ConnectionTarget::Kind::Odbc;
    t.odbc = odbc;
    return t;
}

// The keys of the forms in use (ADO, ODBC, SqlClient), each under one name.
enum class Key {
    Other,
    Provider,
    Server,
    Database,
    User,
    Password,
    Integrated,
    Driver,
    Dsn,
    Port,
    Encrypt,
    TrustCertificate,
    Application,
    Workstation
};

Key keyOf(const QString& normalized)
{
    static const QHash<QString, Key> keys = {
        { QStringLiteral("provider"), Key::Provider },
        { QStringLiteral("data source"), Key::Server },
        { QStringLiteral("server"), Key::Server },
        { QStringLiteral("address"), Key::Server },
        { QStringLiteral("addr"), Key::Server },
        { QStringLiteral("network address"), Key::Server },
        { QStringLiteral("initial catalog"), Key::Database },
        { QStringLiteral("database"), Key::Database },
        { QStringLiteral("user id"), Key::User },
        { QStringLiteral("uid"), Key::User },
        { QStringLiteral("user"), Key::User },
        { QStringLiteral("password"), Key::Password },
        { QStringLiteral("pwd"), Key::Password },
        { QStringLiteral("integrated security"), Key::Integrated },
        { QStringLiteral("trusted_connection"), Key::Integrated },
        { QStringLiteral("trusted connection"), Key::Integrated },
        { QStringLiteral("driver"), Key::Driver },
        { QStringLiteral("dsn"), Key::Dsn },
        { QStringLiteral("filedsn"), Key::Dsn },
        { QStringLiteral("port"), Key::Port },
        { QStringLiteral("encrypt"), Key::Encrypt },
        { QStringLiteral("use encryption for data"), Key::Encrypt },
        { QStringLiteral("trustservercertificate"), Key::TrustCertificate },
        { QStringLiteral("trust server certificate"), Key::TrustCertificate },
        { QStringLiteral("application name"), Key::Application },
        { QStringLiteral("app"), Key::Application },
        { QStringLiteral("workstation id"), Key::Workstation },
        { QStringLiteral("wsid"), Key::Workstation },
    };
    return keys.value(normalized, Key::Other);
}

struct Pair {
    QString key; // as written
    QString value; // unquoted
};

// Reads one value starting at `i` (just past the '='): "quoted" or 'quoted' with the
// quote doubled inside, {braced} with '}}' inside (ODBC), or plain up to the next ';'.
// The value of a password key is never quoted in a refusal; the key is named instead.
std::optional<QString> readValue(const QString& s, int& i, const QString& secretKey, QString* error)
{
    while (i < s.size() && s[i].isSpace())
        ++i;
    if (i < s.size() && (s[i] == u'"' || s[i] == u'\'' || s[i] == u'{')) {
        const QChar open = s[i];
        const QChar close = open == u'{' ? QChar(u'}') : open;
        QString value;
        for (++i; i < s.size(); ++i) {
            if (s[i] != close) {
                value += s[i];
                continue;
            }
            if (i + 1 < s.size() && s[i + 1] == close) {
                value += close;
                ++i;
                continue;
            }
            ++i;
            while (i < s.size() && s[i].isSpace())
                ++i;
            if (i < s.size() && s[i] != u';') {
                *error = secretKey.isEmpty()
                    ? QStringLiteral("iza vrijednosti u navodnicima slijedi \"%1\" umjesto znaka ';'.")
                          .arg(s.mid(i).section(u';', 0, 0).trimmed())
                    : QStringLiteral("iza vrijednosti ključa %1 u navodnicima slijedi još teksta umjesto znaka ';'.")
                          .arg(secretKey);
                return std::nullopt;
            }
            return value;
        }
        *error = QStringLiteral("vrijednost otvorena znakom %1 nije zatvorena.").arg(open);
        return std::nullopt;
    }
    const int end = s.indexOf(u';', i);
    const int stop = end < 0 ? int(s.size()) : end;
    const QString value = s.mid(i, stop - i).trimmed();
    i = stop;
    return value;
}

// A piece that is no pair, quoted unless it may be the rest of a password.
QString notAPair(const QString& piece, const QString& secretKey)
{
    return secretKey.isEmpty()
        ? QStringLiteral("dio \"%1\" nema oblik Ključ=Vrijednost.").arg(piece)
        : QStringLiteral("dio iza vrijednosti ključa %1 nema oblik Ključ=Vrijednost.").arg(secretKey);
}

bool splitPairs(const QString& s, QVector<Pair>& pairs, QString* error)
{
    int i = 0;
    QString secretKey; // the key just read, when its value is a password
    while (i < s.size()) {
        const int eq = s.indexOf(u'=', i);
        const int semi = s.indexOf(u';', i);
        if (semi >= 0 && (eq < 0 || semi < eq)) {
            const QString piece = s.mid(i, semi - i).trimmed();
            if (!piece.isEmpty()) {
                *error = notAPair(piece, secretKey);
                return false;
            }
            i = semi + 1;
            continue;
        }
        if (eq < 0) {
            const QString piece = s.mid(i).trimmed();
            if (!piece.isEmpty()) {
                *error = notAPair(piece, secretKey);
                return false;
            }
            break;
        }
        const QString key = s.mid(i, eq - i).simplified();
        if (key.isEmpty()) {
            *error = QStringLiteral("znak '=' bez naziva ključa.");
            return false;
        }
        i = eq + 1;
        secretKey = keyOf(key.toLower()) == Key::Password ? key : QString();
        const std::optional<QString> value = readValue(s, i, secretKey, error);
        if (!value)
            return false;
        pairs.push_back({ key, *value });
        if (i < s.size() && s[i] == u';')
            ++i;
    }
    return true;
}

// The parsed string: the last value of each known key (as ADO reads them), and the
// pairs in their order for strings passed on.
struct Parsed {
    QVector<Pair> pairs;
    QMap<Key, QString> known;
    bool has(Key k) const { return known.contains(k); }
    QString value(Key k) const { return known.value(k); }
};

bool looksLikeDatabaseFile(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix().toLower();
    return suffix == QLatin1String("db") || suffix == QLatin1String("sqlite") || suffix == QLatin1String("sqlite3")
        || QFileInfo(path).isFile();
}

bool isYes(const QString& value)
{
    const QString v = value.trimmed().toLower();
    return v == QLatin1String("sspi") || v == QLatin1String("true") || v == QLatin1String("yes")
        || v == QLatin1String("1");
}

// How the driver that gets a string reads its values. The ODBC rule: a value is read
// up to the next ';' unless it is braced, and inside braces '}}' stands for '}'.
// FreeTDS before 1.4 ends a braced value at the first "};" and keeps '}}' as two
// characters (and the closing brace of a braced value that ends the string, which is
// why the backend ends every string with a ';'); FreeTDS 1.4 reads the ODBC rule. A
// driver behind a DSN may be any of them. For these only a form all of them read
// alike is written: a plain value (no ';', no '{' at its start, no blank at its edges)
// or a braced value without '}'. Any other value could end early and lend the rest of
// itself to keys of its own (another server, another login), so it is refused.
enum class ValueRules { Odbc, Common };

// Every value put into a built ODBC string passes here.
QString braced(const QString& value)
{
    QString escaped = value;
    escaped.replace(QStringLiteral("}"), QStringLiteral("}}"));
    return u'{' + escaped + u'}';
}

bool needsBraces(const QString& value)
{
    return value.contains(u';') || value.startsWith(u'{')
        || (!value.isEmpty() && (value.front().isSpace() || value.back().isSpace()));
}

// The pairs of one ODBC string, each value in a form its driver reads as one value,
// or the first value it cannot carry named in `error`.
class OdbcPairs
{
public:
    OdbcPairs(ValueRules rules, const QString& driverName)
        : m_rules(rules)
        , m_driverName(driverName)
    {
    }

    // `name` names the value in a refusal (the host's key, never the value itself).
    void add(const QString& key, const QString& value, const QString& name)
    {
        if (!m_error.isEmpty())
            return;
        if (m_rules == ValueRules::Odbc) {
            const bool brace = needsBraces(value) || value.contains(u'{') || value.contains(u'}');
            m_parts << key + u'=' + (brace ? braced(value) : value);
            return;
        }
        if (!needsBraces(value)) {
            m_parts << key + u'=' + value;
            return;
        }
        if (value.contains(u'}')) {
            m_error = QStringLiteral("vrijednost ključa %1 ne može se neizmijenjena predati upravljačkom programu %2: "
                                     "sadrži znak '}', a uz njega ';', '{' na početku ili razmak na rubu.")
                          .arg(name, m_driverName);
            return;
        }
        m_parts << key + u'=' + u'{' + value + u'}';
    }
    void add(const QString& key, const QString& value) { add(key, value, key); }
    // A pair of this system's own making, never braced.
    void addPlain(const QString& pair) { m_parts << pair; }
    // The driver's name is braced always, as drivers are named ("{ODBC Driver 18 for
    // SQL Server}").
    void addDriver(const QString& key, const QString& driver)
    {
        if (m_rules == ValueRules::Odbc || !driver.contains(u'}'))
            m_parts << key + u'=' + braced(driver);
        else
            add(key, driver, key);
    }

    const QString& error() const { return m_error; }
    QString joined() const { return m_parts.join(u';'); }

private:
    ValueRules m_rules;
    QString m_driverName;
    QStringList m_parts;
    QString m_error;
};

ConnectionTarget builtTarget(const OdbcPairs& pairs)
{
    return pairs.error().isEmpty() ? odbcTarget(pairs.joined()) : invalid(pairs.error());
}

QString yesNo(bool yes)
{
    return yes ? QStringLiteral("yes") : QStringLiteral("no");
}

bool isFreeTds(const QString& driver)
{
    return driver.contains(QLatin1String("tds"), Qt::CaseInsensitive);
}

// The pairs passed on to the driver manager, the provider left out: values are
// written anew by the rules of the driver they name; behind a DSN any driver may wait.
ConnectionTarget passThrough(const Parsed& p)
{
    const QString driver = p.value(Key::Driver).trimmed();
    const bool odbcRules = p.has(Key::Driver) && !isFreeTds(driver);
    OdbcPairs pairs(odbcRules ? ValueRules::Odbc : ValueRules::Common,
        p.has(Key::Driver) ? u'"' + driver + u'"' : QStringLiteral("iz DSN-a \"%1\"").arg(p.value(Key::Dsn)));
    for (const Pair& pair : p.pairs) {
        const Key k = keyOf(pair.key.toLower());
        if (k == Key::Driver)
            pairs.addDriver(pair.key, pair.value);
        else if (k != Key::Provider)
            pairs.add(pair.key, pair.value);
    }
    return builtTarget(pairs);
}

struct ServerAddress {
    QString host;
    QString instance;
    QString port;
};

std::optional<ServerAddress> splitServer(const Parsed& p, QString* error)
{
    QString text = p.value(Key::Server).trimmed();
    for (const QString& protocol : { QStringLiteral("tcp:"), QStringLiteral("np:"), QStringLiteral("lpc:") })
        if (text.startsWith(protocol, Qt::CaseInsensitive))
            text = text.mid(protocol.size()).trimmed();
    ServerAddress a;
    const int comma = text.lastIndexOf(u',');
    if (comma >= 0) {
        a.port = text.mid(comma + 1).trimmed();
        text = text.left(comma).trimmed();
    }
    if (p.has(Key::Port) && a.port.isEmpty())
        a.port = p.value(Key::Port).trimmed();
    bool numeric = false;
    if (!a.port.isEmpty() && (a.port.toUInt(&numeric) > 65535 || !numeric)) {
        *error = QStringLiteral("port \"%1\" nije broj od 1 do 65535.").arg(a.port);
        return std::nullopt;
    }
    const int slash = text.indexOf(u'\\');
    a.host = slash < 0 ? text : text.left(slash).trimmed();
    a.instance = slash < 0 ? QString() : text.mid(slash + 1).trimmed();
    if (a.host.isEmpty()) {
        *error = QStringLiteral("nedostaje naziv servera u Data Source.");
        return std::nullopt;
    }
    return a;
}

// FreeTDS has one encryption setting of its own for Microsoft's two keys: Encrypt=yes
// requires encryption; Encrypt=no turns it off (FreeTDS still encrypts the login and
// whatever a server insists on); trusting the server's certificate alone asks for
// encryption where the server offers it. FreeTDS checks a certificate only against
// the "ca file" of freetds.conf, so without one every certificate is taken.
QString freeTdsEncryption(const Parsed& p)
{
    if (p.has(Key::Encrypt)) {
        const QString v = p.value(Key::Encrypt).trimmed().toLower();
        if (isYes(v) || v == QLatin1String("mandatory") || v == QLatin1String("strict"))
            return QStringLiteral("require");
        return QStringLiteral("off");
    }
    return p.has(Key::TrustCertificate) && isYes(p.value(Key::TrustCertificate)) ? QStringLiteral("request")
                                                                                 : QString();
}

// The keys of the login, each named in a refusal as ADO names it.
void addLogin(OdbcPairs& pairs, const Parsed& p, const QString& trusted)
{
    pairs.add(QStringLiteral("DATABASE"), p.value(Key::Database), QStringLiteral("Initial Catalog"));
    if (isYes(p.value(Key::Integrated))) {
        pairs.addPlain(trusted);
    } else {
        pairs.add(QStringLiteral("UID"), p.value(Key::User), QStringLiteral("User ID"));
        pairs.add(QStringLiteral("PWD"), p.value(Key::Password), QStringLiteral("Password"));
    }
}

void addNames(OdbcPairs& pairs, const Parsed& p)
{
    if (p.has(Key::Application))
        pairs.add(QStringLiteral("APP"), p.value(Key::Application), QStringLiteral("Application Name"));
    if (p.has(Key::Workstation))
        pairs.add(QStringLiteral("WSID"), p.value(Key::Workstation), QStringLiteral("Workstation ID"));
}

ConnectionTarget freeTdsTarget(const Parsed& p, const ServerAddress& a, const QString& driver)
{
    // FreeTDS knows neither "(local)" nor "."; a named instance is found through the
    // server's browser service unless a port is given.
    QString host = a.host;
    if (host == QLatin1String(".") || host.compare(QLatin1String("(local)"), Qt::CaseInsensitive) == 0)
        host = QStringLiteral("localhost");
    OdbcPairs pairs(ValueRules::Common, u'"' + driver + u'"');
    pairs.addDriver(QStringLiteral("DRIVER"), driver);
    const QString server = QStringLiteral("Data Source");
    if (!a.instance.isEmpty() && a.port.isEmpty()) {
        pairs.add(QStringLiteral("SERVER"), host + u'\\' + a.instance, server);
    } else {
        pairs.add(QStringLiteral("SERVER"), host, server);
        pairs.addPlain(QStringLiteral("PORT=") + (a.port.isEmpty() ? QStringLiteral("1433") : a.port));
    }
    addLogin(pairs, p, QStringLiteral("Trusted_Connection=Yes"));
    pairs.addPlain(QStringLiteral("TDS_Version=7.4"));
    pairs.addPlain(QStringLiteral("ClientCharset=UTF-8"));
    if (const QString encryption = freeTdsEncryption(p); !encryption.isEmpty())
        pairs.addPlain(QStringLiteral("Encryption=") + encryption);
    addNames(pairs, p);
    return builtTarget(pairs);
}

ConnectionTarget microsoftTarget(const Parsed& p, const ServerAddress& a, const QString& driver)
{
    QString server = a.host;
    if (!a.instance.isEmpty())
        server += u'\\' + a.instance;
    if (!a.port.isEmpty())
        server += u',' + a.port;
    OdbcPairs pairs(ValueRules::Odbc, u'"' + driver + u'"');
    pairs.addDriver(QStringLiteral("DRIVER"), driver);
    pairs.add(QStringLiteral("SERVER"), server);
    addLogin(pairs, p, QStringLiteral("Trusted_Connection=yes"));
    // Encryption and certificate trust only as the string asks: trusting any
    // certificate is the administrator's decision, never a default.
    if (p.has(Key::Encrypt)) {
        // Driver 18's strict mode (TDS 8) is kept; it must never fall to "no".
        const QString v = p.value(Key::Encrypt).trimmed().toLower();
        pairs.addPlain(QStringLiteral("Encrypt=")
            + (v == QLatin1String("strict") ? v : yesNo(isYes(v) || v == QLatin1String("mandatory"))));
    }
    if (p.has(Key::TrustCertificate))
        pairs.addPlain(QStringLiteral("TrustServerCertificate=") + yesNo(isYes(p.value(Key::TrustCertificate))));
    addNames(pairs, p);
    return builtTarget(pairs);
}

ConnectionTarget sqlServerTarget(const Parsed& p, const QString& defaultDriver)
{
    QStringList missing;
    if (p.value(Key::Server).trimmed().isEmpty())
        missing << QStringLiteral("Data Source (naziv servera)");
    if (p.value(Key::Database).trimmed().isEmpty())
        missing << QStringLiteral("Initial Catalog (naziv baze)");
    if (!missing.isEmpty())
        return invalid(QStringLiteral("nedostaje %1.").arg(missing.join(QStringLiteral(" i "))));
    QString error;
    const std::optional<ServerAddress> address = splitServer(p, &error);
    if (!address)
        return invalid(error);
    const QString driver = p.value(Key::Driver).trimmed().isEmpty() ? defaultDriver : p.value(Key::Driver).trimmed();
    return isFreeTds(driver) ? freeTdsTarget(p, *address, driver) : microsoftTarget(p, *address, driver);
}

bool isSqlServerProvider(const QString& provider)
{
    const QString v = provider.trimmed().toLower();
    return v.startsWith(QLatin1String("sqloledb")) || v.startsWith(QLatin1String("sqlncli"))
        || v.startsWith(QLatin1String("msoledbsql")) || v.contains(QLatin1String("sqlclient"));
}

ConnectionTarget fromProvider(const Parsed& p, const QString& driver)
{
    const QString provider = p.value(Key::Provider).trimmed();
    if (provider.contains(QLatin1String("sqlite"), Qt::CaseInsensitive)) {
        const QString path = p.has(Key::Server) ? p.value(Key::Server) : p.value(Key::Database);
        if (path.trimmed().isEmpty())
            return invalid(QStringLiteral("nedostaje Data Source (putanja do datoteke baze)."));
        return sqliteTarget(path.trimmed());
    }
    if (provider.startsWith(QLatin1String("msdasql"), Qt::CaseInsensitive)) {
        if (!p.has(Key::Driver) && !p.has(Key::Dsn))
            return invalid(QStringLiteral("uz Provider=MSDASQL nedostaje DSN ili Driver."));
        return passThrough(p);
    }
    if (isSqlServerProvider(provider))
        return sqlServerTarget(p, driver);
    return invalid(QStringLiteral("Provider \"%1\" nije podržan (očekuje se SQLOLEDB za SQL Server ili SQLite za "
                                  "datoteku baze).")
                       .arg(provider));
}

} // namespace

QString sqlServerOdbcDriver()
{
    const QString fromEnvironment = qEnvironmentVariable("KNJIGE_ODBC_DRIVER").trimmed();
    if (!fromEnvironment.isEmpty())
        return fromEnvironment;
#ifdef Q_OS_WIN
    return QStringLiteral("ODBC Driver 18 for SQL Server");
#else
    return QStringLiteral("FreeTDS");
#endif
}

ConnectionTarget parseConnectionString(const QString& text)
{
    return parseConnectionString(text, sqlServerOdbcDriver());
}

ConnectionTarget parseConnectionString(const QString& text, const QString& driver)
{
    const QString s = text.trimmed();
    if (s.isEmpty())
        return invalid(QStringLiteral("prazan je."));
    if (s.startsWith(QLatin1String("sqlite:"), Qt::CaseInsensitive)) {
        const QString path = s.mid(7).trimmed();
        if (path.isEmpty())
            return invalid(QStringLiteral("iza \"sqlite:\" nedostaje putanja do datoteke baze."));
        return sqliteTarget(path);
    }
    if (QFileInfo(s).isFile())
        return sqliteTarget(s);
    if (!s.contains(u'=')) {
        if (looksLikeDatabaseFile(s))
            return sqliteTarget(s);
        return invalid(
            QStringLiteral("\"%1\" nije ni datoteka baze (.db, .sqlite) ni niz oblika Ključ=Vrijednost.").arg(s));
    }

    Parsed p;
    QString error;
    if (!splitPairs(s, p.pairs, &error))
        return invalid(error);
    for (const Pair& pair : p.pairs)
        if (const Key k = keyOf(pair.key.toLower()); k != Key::Other)
            p.known.insert(k, pair.value);

    if (p.has(Key::Provider))
        return fromProvider(p, driver);
    // An ODBC string for a driver that reads the ODBC rule goes as it stands; one for
    // FreeTDS or a DSN is written anew in the form every FreeTDS reads alike.
    if (p.has(Key::Driver) && !isFreeTds(p.value(Key::Driver)))
        return odbcTarget(s);
    if (p.has(Key::Driver) || p.has(Key::Dsn))
        return passThrough(p);
    const bool serverLogin = p.has(Key::User) || p.has(Key::Password) || p.has(Key::Integrated);
    if (p.has(Key::Server) && !p.has(Key::Database) && !serverLogin && looksLikeDatabaseFile(p.value(Key::Server)))
        return sqliteTarget(p.value(Key::Server).trimmed());
    return sqlServerTarget(p, driver);
}

QString connectionValue(const QString& text, const QString& key)
{
    QVector<Pair> pairs;
    QString error;
    const QString s = text.trimmed();
    if (!s.contains(u'=') || !splitPairs(s, pairs, &error))
        return {};
    const Key wanted = keyOf(key.simplified().toLower());
    QString value;
    for (const Pair& pair : pairs) {
        const Key k = keyOf(pair.key.toLower());
        if (wanted == Key::Other ? pair.key.compare(key, Qt::CaseInsensitive) == 0 : k == wanted)
            value = pair.value;
    }
    return value;
}

QStringList sqlServerSessionSetup()
{
    return { QStringLiteral("SET DATEFORMAT mdy"), QStringLiteral("SET NOCOUNT ON") };
}

} // namespace knjige::db
