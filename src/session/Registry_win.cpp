#include "session/Registry.h"

#include <windows.h>

namespace knjige
{

QString registryText(const QString& keyPath, const QString& valueName, quint32 root)
{
    HKEY rootKey = root == 0 ? HKEY_CURRENT_USER : reinterpret_cast<HKEY>(static_cast<ULONG_PTR>(root));
    HKEY key = nullptr;
    if (RegOpenKeyExW(rootKey, reinterpret_cast<LPCWSTR>(keyPath.utf16()), 0, 0x20019, &key) != ERROR_SUCCESS)
        return {};
    wchar_t buffer[1024] = {};
    DWORD bytes = sizeof(buffer);
    DWORD type = 0;
    QString result;
    if (RegQueryValueExW(
            key, reinterpret_cast<LPCWSTR>(valueName.utf16()), nullptr, &type, reinterpret_cast<LPBYTE>(buffer), &bytes)
        == ERROR_SUCCESS) {
        const int chars = int(bytes / sizeof(wchar_t));
        // The returned length counts the terminating zero.
        result = QString::fromWCharArray(buffer, chars > 0 ? chars - 1 : 0);
    }
    RegCloseKey(key);
    return result;
}

bool setRegistryText(const QString& keyPath, const QString& valueName, const QString& value)
{
    HKEY key = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, reinterpret_cast<LPCWSTR>(keyPath.utf16()), 0, nullptr, 0, KEY_WRITE,
            nullptr, &key, nullptr)
        != ERROR_SUCCESS)
        return false;
    const bool ok = RegSetValueExW(key, reinterpret_cast<LPCWSTR>(valueName.utf16()), 0, REG_SZ,
                        reinterpret_cast<const BYTE*>(value.utf16()), DWORD((value.size() + 1) * sizeof(wchar_t)))
        == ERROR_SUCCESS;
    RegCloseKey(key);
    return ok;
}

} // namespace knjige
