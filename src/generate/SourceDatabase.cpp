#include "generate/SourceDatabase.h"

#include "session/db/ConnectionString.h"

namespace knjige::generate
{
namespace
{

// The process's own store: told apart from one a test installs by its type.
class SessionPasswordStore final : public MemoryPasswordStore
{
public:
    SessionPasswordStore()
        : MemoryPasswordStore(false)
    {
    }
};

std::unique_ptr<PasswordStore>& current()
{
    static std::unique_ptr<PasswordStore> store = std::make_unique<SessionPasswordStore>();
    return store;
}

// A value as the connection string reader takes it back whole.
QString vrijednost(const QString& v)
{
    const bool navodnici = v.contains(u';') || v.contains(u'"') || v.contains(u'\'') || v.startsWith(u'{')
        || (!v.isEmpty() && (v.front().isSpace() || v.back().isSpace()));
    if (!navodnici)
        return v;
    QString t = v;
    return u'"' + t.replace(QStringLiteral("\""), QStringLiteral("\"\"")) + u'"';
}

} // namespace

IzvorPodataka hostSource(const QString& hostConnectionString)
{
    const db::ConnectionTarget target = db::parseConnectionString(hostConnectionString);
    if (target.kind == db::ConnectionTarget::Kind::Sqlite)
        return { QString(), target.sqlitePath };
    return { db::connectionValue(hostConnectionString, QStringLiteral("Data Source")),
        db::connectionValue(hostConnectionString, QStringLiteral("Initial Catalog")) };
}

QString vezaIzvora(const IzvorPodataka& izvor, const QString& lozinka)
{
    if (izvor.embedded())
        return QStringLiteral("sqlite:") + izvor.baza.trimmed();
    return QStringLiteral("Provider=SQLOLEDB.1;Data Source=") + vrijednost(izvor.server.trimmed())
        + QStringLiteral(";Initial Catalog=") + vrijednost(izvor.baza.trimmed())
        + QStringLiteral(";User ID=sa;Password=") + vrijednost(lozinka);
}

PasswordStore& passwordStore()
{
    return *current();
}

std::unique_ptr<PasswordStore> setPasswordStore(std::unique_ptr<PasswordStore> store)
{
    if (!store)
        store = std::make_unique<SessionPasswordStore>();
    std::swap(current(), store);
    return store;
}

bool usingSessionPasswordStore()
{
    return dynamic_cast<SessionPasswordStore*>(current().get()) != nullptr;
}

QString imeOperateraSustava()
{
    return systemUserName().left(10);
}

} // namespace knjige::generate
