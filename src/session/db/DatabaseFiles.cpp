#include "session/db/DatabaseFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <filesystem>
#include <mutex>

namespace knjige::db
{
namespace
{

constexpr const char* kSideFiles[] = { "", "-wal", "-shm", "-journal" };

std::mutex& filesMutex()
{
    static std::mutex m;
    return m;
}

// One entry per open connection: the same file opened twice stays until both close.
QStringList& openFiles()
{
    static QStringList files;
    return files;
}

std::filesystem::path nativePath(const QString& path)
{
#ifdef Q_OS_WIN
    return std::filesystem::path(path.toStdWString());
#else
    return std::filesystem::path(QFile::encodeName(path).toStdString());
#endif
}

bool sameFile(const QString& a, const QString& b)
{
    std::error_code error;
    return std::filesystem::equivalent(nativePath(a), nativePath(b), error) && !error;
}

// The name a new file written at `path` gets: the folder's real path and the file name,
// after the link `path` may be.
QString realName(const QString& path)
{
    QFileInfo info(path);
    for (int hops = 0; info.isSymLink() && hops < 40; ++hops)
        info = QFileInfo(info.symLinkTarget());
    const QString folder = info.absoluteDir().canonicalPath();
    return folder.isEmpty() ? info.absoluteFilePath() : folder + u'/' + info.fileName();
}

} // namespace

void databaseFileOpened(const QString& path)
{
    const std::lock_guard<std::mutex> guard(filesMutex());
    openFiles().append(QFileInfo(path).absoluteFilePath());
}

void databaseFileClosed(const QString& path)
{
    const std::lock_guard<std::mutex> guard(filesMutex());
    openFiles().removeOne(QFileInfo(path).absoluteFilePath());
}

bool isOpenDatabaseFile(const QString& path)
{
    if (path.trimmed().isEmpty())
        return false;
    QStringList files;
    {
        const std::lock_guard<std::mutex> guard(filesMutex());
        files = openFiles();
    }
    const QString target = realName(path);
#ifdef Q_OS_WIN
    const Qt::CaseSensitivity names = Qt::CaseInsensitive;
#else
    const Qt::CaseSensitivity names = Qt::CaseSensitive;
#endif
    for (const QString& database : files) {
        const QString databaseName = realName(database);
        for (const char* side : kSideFiles) {
            const QString file = database + QLatin1String(side);
            if (sameFile(path, file) || target.compare(databaseName + QLatin1String(side), names) == 0)
                return true;
        }
    }
    return false;
}

QString openDatabaseRefusal(const QString& path)
{
    return QStringLiteral("Datoteka %1 je baza podataka s kojom program radi (ili njena pomoćna datoteka) i ne "
                          "smije se prepisati. Izaberite drugu datoteku.")
        .arg(QDir::toNativeSeparators(path));
}

} // namespace knjige::db
