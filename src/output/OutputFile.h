#pragma once

#include <QFile>
#include <QSaveFile>
#include <QString>
#include <memory>

namespace knjige::output
{

// The file an export or a printout is written to, whole or not at all: a regular file
// is replaced only once the new one is complete, so a failure halfway (a full disk)
// leaves the old one as it was and is reported, never taken for success. A device or
// a pipe that already stands at the path (/dev/null, a named pipe a program reads) is
// written into as it is, never replaced by a regular file. A database this process holds
// open is never written, under any of its names. "-" names the standard output, for a
// command whose file goes down a pipe.
class OutputFile
{
public:
    explicit OutputFile(const QString& path);
    static bool isStandardOutput(const QString& path) { return path == QLatin1String("-"); }

    // False with the reason in errorString() when the file cannot be made.
    bool open();
    QIODevice& device();
    // Makes the file final; false with the reason when any byte did not reach it.
    bool commit();
    // Drops what was written (a regular file keeps its old contents).
    void cancel();
    // True when cancel() leaves the path as it was: the new file grows beside the old
    // one. Not so for a device or pipe, which has taken the bytes already, nor where
    // the folder takes no new file and the file itself is rewritten.
    bool cancelLeavesNoTrace() const;
    QString errorString() const;

private:
    QString m_path;
    std::unique_ptr<QSaveFile> m_whole;
    std::unique_ptr<QFile> m_special;
    QString m_error;
};

} // namespace knjige::output
