#include "generate/widgets/KeychainStore.h"

#include "generate/SourceDatabase.h"

#ifdef KNJIGE_HAVE_KEYCHAIN
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QHash>
#include <QTimer>
#include <qt6keychain/keychain.h>
#endif

namespace knjige::generate
{

#ifdef KNJIGE_HAVE_KEYCHAIN
namespace
{

const QString kService = QStringLiteral("Arbosa");
// Unlocking a locked keyring asks the person; give them time, but never hang.
constexpr int kWaitMs = 120000;

bool storeCanRun()
{
#if defined(Q_OS_UNIX) && !defined(Q_OS_MACOS)
    if (!qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS"))
        return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(QDir(runtime).filePath(QStringLiteral("bus")));
#else
    return true;
#endif
}

// Runs a job to its end; false when it did not finish in time.
bool run(QKeychain::Job& job)
{
    bool finished = false;
    QEventLoop loop;
    QObject::connect(&job, &QKeychain::Job::finished, &loop, [&] {
        finished = true;
        loop.quit();
    });
    QTimer::singleShot(kWaitMs, &loop, &QEventLoop::quit);
    job.setAutoDelete(false);
    job.setInsecureFallback(false);
    job.start();
    if (!finished)
        loop.exec();
    return finished;
}

// The credential store; when it turns out not to answer, the session's memory from
// then on.
class KeychainStore final : public PasswordStore
{
public:
    bool trajna() const override { return !m_fallback; }

    std::optional<QString> read(const QString& key) override
    {
        if (!m_fallback) {
            QKeychain::ReadPasswordJob job(kService);
            job.setKey(key);
            const bool done = run(job);
            if (done && job.error() == QKeychain::NoError)
                return job.textData();
            if (done && job.error() == QKeychain::EntryNotFound)
                return std::nullopt;
            m_fallback = true;
        }
        const auto it = m_session.constFind(key);
        return it == m_session.constEnd() ? std::nullopt : std::optional<QString>(*it);
    }

    bool write(const QString& key, const QString& lozinka) override
    {
        if (!m_fallback) {
            QKeychain::WritePasswordJob job(kService);
            job.setKey(key);
            job.setTextData(lozinka);
            if (run(job) && job.error() == QKeychain::NoError)
                return true;
            m_fallback = true;
        }
        m_session.insert(key, lozinka);
        return true;
    }

private:
    bool m_fallback = false;
    QHash<QString, QString> m_session;
};

} // namespace

void useSystemCredentialStore()
{
    static bool tried = false;
    if (tried || !usingSessionPasswordStore())
        return;
    tried = true;
    if (storeCanRun())
        setPasswordStore(std::make_unique<KeychainStore>());
}

#else

void useSystemCredentialStore() { }

#endif

} // namespace knjige::generate
