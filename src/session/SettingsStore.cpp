#include "session/SettingsStore.h"

#include <QSettings>

namespace knjige::settings
{
namespace
{

QString organization()
{
#ifdef Q_OS_WIN
    // Where the books' settings have always lived on Windows workstations, so that
    // an upgrade keeps every window position and option.
    return QStringLiteral("VB and VBA Program Settings");
#else
    return QStringLiteral("ArbosaPOSKnjige17");
#endif
}

QString path(const QString& section, const QString& key)
{
    return section + u'/' + key;
}

} // namespace

QString text(const QString& application, const QString& section, const QString& key, const QString& fallback)
{
    QSettings store(QSettings::NativeFormat, QSettings::UserScope, organization(), application);
    return store.value(path(section, key), fallback).toString();
}

void setText(const QString& application, const QString& section, const QString& key, const QString& value)
{
    QSettings store(QSettings::NativeFormat, QSettings::UserScope, organization(), application);
    store.setValue(path(section, key), value);
}

bool flag(const QString& application, const QString& section, const QString& key, bool fallback)
{
    const QString t = text(application, section, key).trimmed();
    if (t.isEmpty())
        return fallback;
    if (t.compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0 || t == QStringLiteral("1")
        || t == QStringLiteral("-1"))
        return true;
    if (t.compare(QStringLiteral("False"), Qt::CaseInsensitive) == 0 || t == QStringLiteral("0"))
        return false;
    return fallback;
}

void setFlag(const QString& application, const QString& section, const QString& key, bool value)
{
    setText(application, section, key, value ? QStringLiteral("True") : QStringLiteral("False"));
}

int number(const QString& application, const QString& section, const QString& key, int fallback)
{
    bool ok = false;
    const int n = text(application, section, key).trimmed().toInt(&ok);
    return ok ? n : fallback;
}

void setNumber(const QString& application, const QString& section, const QString& key, int value)
{
    setText(application, section, key, QString::number(value));
}

} // namespace knjige::settings
