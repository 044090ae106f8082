#pragma once

#include <QString>

namespace knjige
{

// Reads a text value from the per-user system registry: the Windows registry on
// Windows, the per-user settings store elsewhere. `root` is a registry root key
// handle value (0: the current user's). Anything that cannot be read gives an empty
// text; a value is cut to 1023 characters, as the registry buffer holds.
QString registryText(const QString& keyPath, const QString& valueName, quint32 root = 0);

// Writes the same place; tests and the host's set-up use it.
bool setRegistryText(const QString& keyPath, const QString& valueName, const QString& value);

} // namespace knjige
