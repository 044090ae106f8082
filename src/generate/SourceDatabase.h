#pragma once

#include <QHash>
#include <QString>
#include <memory>
#include <optional>

namespace knjige::generate
{

// Where the documents a generation reads are kept. With a server named it is a SQL
// Server database reached as the system administrator "sa"; with no server the
// database field names an embedded database file.
struct IzvorPodataka {
    QString server;
    QString baza;
    bool embedded() const { return server.trimmed().isEmpty(); }
};

// The host's own database, the default source of every kind: its server and catalog,
// or its file when the host keeps its books in an embedded database.
IzvorPodataka hostSource(const QString& hostConnectionString);

// "Provider=SQLOLEDB.1;Data Source=" + server + ";Initial Catalog=" + database +
// ";User ID=sa;Password=" + password; a value that would end the string early is
// quoted. For an embedded source, the file.
QString vezaIzvora(const IzvorPodataka& izvor, const QString& lozinka);

// The name under which the source password ("SaPwd") is kept.
inline QString passwordKey()
{
    return QStringLiteral("SaPwd");
}

// Keeps the source password. The default keeps it in memory for the life of the
// process only; the window library installs the operating system's credential store
// where one runs. Nothing here ever writes a password to the settings or a log.
class PasswordStore
{
public:
    virtual ~PasswordStore() = default;
    // True when a written password outlives the process.
    virtual bool trajna() const = 0;
    virtual std::optional<QString> read(const QString& key) = 0;
    virtual bool write(const QString& key, const QString& lozinka) = 0;
};

// A store that keeps the passwords in memory. The process's default says it does not
// outlive the process; tests and the pictures program install one that says it does,
// so the windows behave as on a machine with a credential store.
class MemoryPasswordStore : public PasswordStore
{
public:
    explicit MemoryPasswordStore(bool trajna)
        : m_trajna(trajna)
    {
    }
    bool trajna() const override { return m_trajna; }
    std::optional<QString> read(const QString& key) override
    {
        const auto it = m_lozinke.constFind(key);
        return it == m_lozinke.constEnd() ? std::nullopt : std::optional<QString>(*it);
    }
    bool write(const QString& key, const QString& lozinka) override
    {
        m_lozinke.insert(key, lozinka);
        return true;
    }

private:
    bool m_trajna;
    QHash<QString, QString> m_lozinke;
};

PasswordStore& passwordStore();
// Installs a store and returns the previous one; null installs the in-memory one.
std::unique_ptr<PasswordStore> setPasswordStore(std::unique_ptr<PasswordStore> store);
// True while the in-memory store of the process is in force.
bool usingSessionPasswordStore();

// The operating system's current user name as the generator's operator name: cut
// to 10 characters, as the rights table keeps operators.
QString imeOperateraSustava();
// The full name, from the platform (one file per platform).
QString systemUserName();

} // namespace knjige::generate
