#include "support/Sandbox.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace knjige::test
{

static QTemporaryDir& root()
{
    static QTemporaryDir dir;
    return dir;
}

void sandboxSettings()
{
    const QString dir = root().path() + QStringLiteral("/settings");
    QDir().mkpath(dir);
    qputenv("XDG_CONFIG_HOME", dir.toLocal8Bit());
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, dir);
    QStandardPaths::setTestModeEnabled(true);
}

void clearSettings()
{
    QDir(root().path() + QStringLiteral("/settings")).removeRecursively();
    QDir().mkpath(root().path() + QStringLiteral("/settings"));
}

QString scratchDir()
{
    static int counter = 0;
    const QString dir = root().path() + QStringLiteral("/scratch%1").arg(++counter);
    QDir().mkpath(dir);
    return dir;
}

} // namespace knjige::test
