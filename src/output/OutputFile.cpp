#include "output/OutputFile.h"

#include "session/db/DatabaseFiles.h"

#include <QFileInfo>

namespace knjige::output
{

OutputFile::OutputFile(const QString& path)
    : m_path(path)
{
    const QFileInfo info(path);
    if (isStandardOutput(path)) {
        m_special = std::make_unique<QFile>();
    } else if (info.exists() && !info.isFile() && !info.isDir()) {
        m_special = std::make_unique<QFile>(path);
    } else {
        m_whole = std::make_unique<QSaveFile>(path);
        // Where the folder takes no new files but the file itself may be rewritten.
        m_whole->setDirectWriteFallback(true);
    }
}

bool OutputFile::open()
{
    // A printout or an export written over the database would replace the books.
    if (isStandardOutput(m_path))
        return m_special->open(stdout, QIODevice::WriteOnly, QFileDevice::DontCloseHandle);
    if (db::isOpenDatabaseFile(m_path)) {
        m_error = db::openDatabaseRefusal(m_path);
        return false;
    }
    return m_special ? m_special->open(QIODevice::WriteOnly) : m_whole->open(QIODevice::WriteOnly);
}

QIODevice& OutputFile::device()
{
    if (m_special)
        return *m_special;
    return *m_whole;
}

bool OutputFile::commit()
{
    // The last buffered bytes are written by the flush; the save file's commit does
    // not always report it when they do not fit on the disk.
    QFileDevice& file = m_special ? static_cast<QFileDevice&>(*m_special) : *m_whole;
    if (!file.flush() || file.error() != QFileDevice::NoError) {
        m_error = file.errorString();
        cancel();
        return false;
    }
    if (m_special) {
        m_special->close();
        return true;
    }
    if (!m_whole->commit()) {
        m_error = m_whole->errorString();
        return false;
    }
    return true;
}

void OutputFile::cancel()
{
    if (m_whole)
        m_whole->cancelWriting();
    else
        m_special->close();
}

bool OutputFile::cancelLeavesNoTrace() const
{
    return m_whole && QFileInfo(QFileInfo(m_path).absolutePath()).isWritable();
}

QString OutputFile::errorString() const
{
    if (!m_error.isEmpty())
        return m_error;
    return m_special ? m_special->errorString() : m_whole->errorString();
}

} // namespace knjige::output
