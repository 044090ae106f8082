#include "session/Registry.h"

#include <QSettings>

namespace knjige
{

static constexpr int kBufferChars = 1024;

static QString settingsKey(const QString& keyPath, const QString& valueName)
{
    QString path = keyPath;
    path.replace(u'\\', u'/');
    return path + u'/' + valueName;
}

QString registryText(const QString& keyPath, const QString& valueName, quint32 root)
{
    if (root != 0 && root != 0x80000001u) // only the current user's root exists here
        return {};
    QSettings store(
        QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("ArbosaPOSKnjige17"), QStringLiteral("Registry"));
    const QVariant v = store.value(settingsKey(keyPath, valueName));
    if (!v.isValid())
        return {};
    return v.toString().left(kBufferChars - 1);
}

bool setRegistryText(const QString& keyPath, const QString& valueName, const QString& value)
{
    QSettings store(
        QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("ArbosaPOSKnjige17"), QStringLiteral("Registry"));
    store.setValue(settingsKey(keyPath, valueName), value);
    store.sync();
    return store.status() == QSettings::NoError;
}

} // namespace knjige
