#pragma once

#include <QString>

namespace knjige::settings
{

// The per-user settings store: application, section, key, text value. Booleans are
// kept as the texts "True" and "False".
QString text(const QString& application, const QString& section, const QString& key, const QString& fallback = {});
void setText(const QString& application, const QString& section, const QString& key, const QString& value);
bool flag(const QString& application, const QString& section, const QString& key, bool fallback);
void setFlag(const QString& application, const QString& section, const QString& key, bool value);
int number(const QString& application, const QString& section, const QString& key, int fallback);
void setNumber(const QString& application, const QString& section, const QString& key, int value);

// The application name of the options shared by all books.
inline QString sharedApplication()
{
    return QStringLiteral("Arbosa");
}
inline QString section()
{
    return QStringLiteral("Settings");
}

} // namespace knjige::settings
