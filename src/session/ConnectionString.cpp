#include "session/ConnectionString.h"

#include <QFileInfo>
#include <QHash>
#include <QMap>
#include <QVector>

#include <optional>

namespace knjige {
namespace {

QString invalidPrefix() { return QStringLiteral("Neispravan connection string: "); }

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
    ConnectionTarget t;
    t.kind = ConnectionTarget::Kind::Odbc;
    t.odbc = odbc;
    return t;
}

// The keys of the forms in use (ADO, ODBC, SqlClient), each under one name.
enum class Key { Other, Provider, Server, Database, User, Password, Integrated, Driver, Dsn, Port, Encrypt,
                 TrustCertificate, Application, Workstation };

Key keyOf(const QString& normalized)
{
    static const QHash<QString, Key> keys = {
        {QStringLiteral("provider"), Key::Provider},
        {QStringLiteral("data source"), Key::Server},
        {QStringLiteral("server"), Key::Server},
        {QStringLiteral("address"), Key::Server},
        {QStringLiteral("addr"), Key::Server},
        {QStringLiteral("network address"), Key::Server},
        {QStringLiteral("initial catalog"), Key::Database},
        {QStringLiteral("database"), Key::Database},
        {QStringLiteral("user id"), Key::User},
        {QStringLiteral("uid"), Key::User},
        {QStringLiteral("user"), Key::User},
        {QStringLiteral("password"), Key::Password},
        {QStringLiteral("pwd"), Key::Password},
        {QStringLiteral("integrated security"), Key::Integrated},
        {QStringLiteral("trusted_connection"), Key::Integrated},
        {QStringLiteral("trusted connection"), Key::Integrated},
        {QStringLiteral("driver"), Key::Driver},
        {QStringLiteral("dsn"), Key::Dsn},
        {QStringLiteral("filedsn"), Key::Dsn},
        {QStringLiteral("port"), Key::Port},
        {QStringLiteral("encrypt"), Key::Encrypt},
        {QStringLiteral("use encryption for data"), Key::Encrypt},
        {QStringLiteral("trustservercertificate"), Key::TrustCertificate},
        {QStringLiteral("trust server certificate"), Key::TrustCertificate},
        {QStringLiteral("application name"), Key::Application},
        {QStringLiteral("app"), Key::Application},
        {QStringLiteral("workstation id"), Key::Workstation},
        {QStringLiteral("wsid"), Key::Workstation},
    };
    return keys.value(normalized, Key::Other);
}

struct Pair {
    QString key;   // as written
    QString value; // unquoted
};

// Reads one value starting at `i` (just past the '='): "quoted" or 'quoted' with the
// quote doubled inside, {braced} with '}}' inside (ODBC), or plain up to the next ';'.
std::optional<QString> readValue(const QString& s, int& i, QString* error)
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
                *error = QStringLiteral("iza vrijednosti u navodnicima slijedi \"%1\" umjesto znaka ';'.")
                             .arg(s.mid(i).section(u';', 0, 0).trimmed());
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

bool splitPairs(const QString& s, QVector<Pair>& pairs, QString* error)
{
    int i = 0;
    while (i < s.size()) {
        const int eq = s.indexOf(u'=', i);
        const int semi = s.indexOf(u';', i);
        if (semi >= 0 && (eq < 0 || semi < eq)) {
            const QString piece = s.mid(i, semi - i).trimmed();
            if (!piece.isEmpty()) {
                *error = QStringLiteral("dio \"%1\" nema oblik Ključ=Vrijednost.").arg(piece);
                return false;
            }
            i = semi + 1;
            continue;
        }
        if (eq < 0) {
            const QString piece = s.mid(i).trimmed();
            if (!piece.isEmpty()) {
                *error = QStringLiteral("dio \"%1\" nema oblik Ključ=Vrijednost.").arg(piece);
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
        const std::optional<QString> value = readValue(s, i, error);
        if (!value)
            return false;
        pairs.push_back({key, *value});
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

// A value as ODBC reads it: braced when it holds a character that would end or open
// one, or spaces at its edges.
QString odbcValue(const QString& value)
{
    const bool needsBraces = value.contains(u';') || value.contains(u'{') || value.contains(u'}')
        || (!value.isEmpty() && (value.front().isSpace() || value.back().isSpace()));
    if (!needsBraces)
        return value;
    QString escaped = value;
    escaped.replace(QStringLiteral("}"), QStringLiteral("}}"));
    return u'{' + escaped + u'}';
}

QString yesNo(bool yes) { return yes ? QStringLiteral("yes") : QStringLiteral("no"); }

QString odbcPair(const QString& key, const QString& value) { return key + u'=' + odbcValue(value); }

// The pairs passed on to the driver manager, the provider left out.
QString passThrough(const Parsed& p)
{
    QStringList parts;
    for (const Pair& pair : p.pairs)
        if (keyOf(pair.key.toLower()) != Key::Provider)
            parts << odbcPair(pair.key, pair.value);
    return parts.join(u';');
}

struct ServerAddress {
    QString host;
    QString instance;
    QString port;
};

std::optional<ServerAddress> splitServer(const Parsed& p, QString* error)
{
    QString text = p.value(Key::Server).trimmed();
    for (const QString& protocol : {QStringLiteral("tcp:"), QStringLiteral("np:"), QStringLiteral("lpc:")})
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

bool isFreeTds(const QString& driver) { return driver.contains(QLatin1String("tds"), Qt::CaseInsensitive); }

QString freeTdsString(const Parsed& p, const ServerAddress& a, const QString& driver)
{
    // FreeTDS knows neither "(local)" nor "."; a named instance is found through the
    // server's browser service unless a port is given.
    QString host = a.host;
    if (host == QLatin1String(".") || host.compare(QLatin1String("(local)"), Qt::CaseInsensitive) == 0)
        host = QStringLiteral("localhost");
    QStringList parts;
    parts << QStringLiteral("DRIVER={%1}").arg(driver);
    if (!a.instance.isEmpty() && a.port.isEmpty()) {
        parts << odbcPair(QStringLiteral("SERVER"), host + u'\\' + a.instance);
    } else {
        parts << odbcPair(QStringLiteral("SERVER"), host);
        parts << QStringLiteral("PORT=") + (a.port.isEmpty() ? QStringLiteral("1433") : a.port);
    }
    parts << odbcPair(QStringLiteral("DATABASE"), p.value(Key::Database));
    if (isYes(p.value(Key::Integrated))) {
        parts << QStringLiteral("Trusted_Connection=Yes");
    } else {
        parts << odbcPair(QStringLiteral("UID"), p.value(Key::User));
        parts << odbcPair(QStringLiteral("PWD"), p.value(Key::Password));
    }
    parts << QStringLiteral("TDS_Version=7.4") << QStringLiteral("ClientCharset=UTF-8");
    if (p.has(Key::Application))
        parts << odbcPair(QStringLiteral("APP"), p.value(Key::Application));
    if (p.has(Key::Workstation))
        parts << odbcPair(QStringLiteral("WSID"), p.value(Key::Workstation));
    return parts.join(u';');
}

QString microsoftString(const Parsed& p, const ServerAddress& a, const QString& driver)
{
    QString server = a.host;
    if (!a.instance.isEmpty())
        server += u'\\' + a.instance;
    if (!a.port.isEmpty())
        server += u',' + a.port;
    QStringList parts;
    parts << QStringLiteral("DRIVER={%1}").arg(driver);
    parts << odbcPair(QStringLiteral("SERVER"), server);
    parts << odbcPair(QStringLiteral("DATABASE"), p.value(Key::Database));
    if (isYes(p.value(Key::Integrated))) {
        parts << QStringLiteral("Trusted_Connection=yes");
    } else {
        parts << odbcPair(QStringLiteral("UID"), p.value(Key::User));
        parts << odbcPair(QStringLiteral("PWD"), p.value(Key::Password));
    }
    // Encryption and certificate trust only as the string asks: trusting any
    // certificate is the administrator's decision, never a default.
    if (p.has(Key::Encrypt))
        parts << QStringLiteral("Encrypt=") + yesNo(isYes(p.value(Key::Encrypt)));
    if (p.has(Key::TrustCertificate))
        parts << QStringLiteral("TrustServerCertificate=") + yesNo(isYes(p.value(Key::TrustCertificate)));
    if (p.has(Key::Application))
        parts << odbcPair(QStringLiteral("APP"), p.value(Key::Application));
    if (p.has(Key::Workstation))
        parts << odbcPair(QStringLiteral("WSID"), p.value(Key::Workstation));
    return parts.join(u';');
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
    return odbcTarget(isFreeTds(driver) ? freeTdsString(p, *address, driver) : microsoftString(p, *address, driver));
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
        return odbcTarget(passThrough(p));
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

ConnectionTarget parseConnectionString(const QString& text) { return parseConnectionString(text, sqlServerOdbcDriver()); }

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
        return invalid(QStringLiteral("\"%1\" nije ni datoteka baze (.db, .sqlite) ni niz oblika Ključ=Vrijednost.")
                           .arg(s));
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
    if (p.has(Key::Driver) || p.has(Key::Dsn))
        return odbcTarget(s);
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

QStringList sqlServerSessionSetup() { return {QStringLiteral("SET DATEFORMAT mdy"), QStringLiteral("SET NOCOUNT ON")}; }

} // namespace knjige
