#include "generate/SourceDatabase.h"

#include <windows.h>

namespace knjige::generate
{

QString systemUserName()
{
    wchar_t buffer[257] = {};
    DWORD chars = DWORD(sizeof(buffer) / sizeof(buffer[0]));
    if (!GetUserNameW(buffer, &chars) || chars == 0)
        return qEnvironmentVariable("USERNAME");
    // The count includes the terminating zero.
    return QString::fromWCharArray(buffer, int(chars) - 1);
}

} // namespace knjige::generate
