#include "generate/SourceDatabase.h"

#include <pwd.h>
#include <unistd.h>

namespace knjige::generate
{

// The login name of the process's user; the environment only when the user database
// has no entry (a container with a bare numeric user).
QString systemUserName()
{
    if (const passwd* entry = getpwuid(geteuid()); entry && entry->pw_name && *entry->pw_name)
        return QString::fromLocal8Bit(entry->pw_name);
    return qEnvironmentVariable("USER");
}

} // namespace knjige::generate
