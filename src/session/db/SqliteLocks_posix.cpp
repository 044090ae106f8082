#include "session/db/SqliteLocks.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <map>
#include <mutex>
#include <set>
#include <sqlite3.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace knjige::db
{

#if defined(F_OFD_SETLK) && defined(F_OFD_GETLK) && defined(F_OFD_SETLKW)

namespace
{

// SQLite shares one lock state between all connections of the process on the same
// file (its inode records) and so counts on the locks belonging to the process, not to
// a descriptor. Each file SQLite locks therefore gets one private open file description
// of its own, opened again through /proc, and every lock of that file is taken on it as
// an open-file-description lock: within the process the locks behave as before (one
// owner per file), but no close of another descriptor can drop them. The private
// description is closed with the last descriptor SQLite closes on the file, as the
// process's locks went with the last close before.

using FcntlCall = int (*)(int, int, ...);
using CloseCall = int (*)(int);

FcntlCall realFcntl = nullptr;
CloseCall realClose = nullptr;

struct Holder {
    int fd = -1; // the private description the locks are taken on
    std::set<int> users; // SQLite's descriptors of the file that asked for a lock
};

std::mutex& holdersMutex()
{
    static std::mutex m;
    return m;
}

std::map<std::pair<dev_t, ino_t>, Holder>& holders()
{
    static std::map<std::pair<dev_t, ino_t>, Holder> h;
    return h;
}

// The private description for SQLite's descriptor; -1 with errno set when there is none.
int lockDescription(int fd)
{
    struct stat st {
    };
    if (fstat(fd, &st) != 0)
        return -1;
    auto& map = holders();
    const auto key = std::make_pair(st.st_dev, st.st_ino);
    auto it = map.find(key);
    if (it == map.end()) {
        const int flags = realFcntl(fd, F_GETFL);
        if (flags < 0)
            return -1;
        char path[40];
        std::snprintf(path, sizeof path, "/proc/self/fd/%d", fd);
        const int own = ::open(path, (flags & O_ACCMODE) | O_CLOEXEC | O_NOCTTY);
        if (own < 0)
            return -1;
        it = map.emplace(key, Holder { own, {} }).first;
    }
    it->second.users.insert(fd);
    return it->second.fd;
}

int quietFcntl(int fd, int cmd, ...)
{
    va_list ap;
    va_start(ap, cmd);
    void* arg = va_arg(ap, void*);
    va_end(ap);
    int ofd = 0;
    switch (cmd) {
    case F_SETLK:
        ofd = F_OFD_SETLK;
        break;
    case F_GETLK:
        ofd = F_OFD_GETLK;
        break;
    case F_SETLKW:
        ofd = F_OFD_SETLKW;
        break;
    default:
        return realFcntl(fd, cmd, arg);
    }
    auto* lock = static_cast<struct flock*>(arg);
    lock->l_pid = 0; // required by open-file-description locks
    int own = -1;
    {
        const std::lock_guard<std::mutex> guard(holdersMutex());
        own = lockDescription(fd);
        if (own < 0)
            return -1;
        if (ofd != F_OFD_SETLKW)
            return realFcntl(own, ofd, lock);
    }
    return realFcntl(own, ofd, lock);
}

int quietClose(int fd)
{
    {
        const std::lock_guard<std::mutex> guard(holdersMutex());
        auto& map = holders();
        struct stat st {
        };
        if (!map.empty() && fstat(fd, &st) == 0) {
            const auto it = map.find(std::make_pair(st.st_dev, st.st_ino));
            if (it != map.end() && it->second.users.erase(fd) && it->second.users.empty()) {
                realClose(it->second.fd);
                map.erase(it);
            }
        }
    }
    return realClose(fd);
}

// POSIX locks that this process holds now: they were taken the old way and could be
// neither released nor told apart once the calls change under them.
bool processHoldsPosixLocks()
{
    std::ifstream locks("/proc/locks");
    if (!locks)
        return true;
    const std::string self = std::to_string(getpid());
    std::string line;
    while (std::getline(locks, line)) {
        std::istringstream fields(line);
        std::string number, kind, mode, access, pid;
        fields >> number >> kind;
        if (kind == "->")
            fields >> kind; // a waiting request
        fields >> mode >> access >> pid;
        if (kind == "POSIX" && pid == self)
            return true;
    }
    return false;
}

// Whether the kernel takes open-file-description locks (Linux 3.15 and later) and a
// descriptor can be opened again through /proc.
bool platformCanDoIt()
{
    const int fd = ::open("/proc/self/exe", O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    char path[40];
    std::snprintf(path, sizeof path, "/proc/self/fd/%d", fd);
    const int again = ::open(path, O_RDONLY | O_CLOEXEC);
    struct flock probe {
    };
    probe.l_type = F_RDLCK;
    probe.l_whence = SEEK_SET;
    const bool ok = again >= 0 && ::fcntl(again, F_OFD_GETLK, &probe) == 0;
    if (again >= 0)
        ::close(again);
    ::close(fd);
    return ok;
}

} // namespace

void keepSqliteLocksThroughForeignCloses()
{
    static std::once_flag once;
    std::call_once(once, [] {
        sqlite3_vfs* vfs = sqlite3_vfs_find("unix");
        if (!vfs || vfs->iVersion < 3 || !vfs->xSetSystemCall || !vfs->xGetSystemCall)
            return;
        if (!platformCanDoIt() || processHoldsPosixLocks())
            return;
        realFcntl = reinterpret_cast<FcntlCall>(vfs->xGetSystemCall(vfs, "fcntl"));
        realClose = reinterpret_cast<CloseCall>(vfs->xGetSystemCall(vfs, "close"));
        if (!realFcntl || !realClose)
            return;
        // The system call table is shared by every unix VFS of the library.
        if (vfs->xSetSystemCall(vfs, "close", reinterpret_cast<sqlite3_syscall_ptr>(&quietClose)) != SQLITE_OK)
            return;
        if (vfs->xSetSystemCall(vfs, "fcntl", reinterpret_cast<sqlite3_syscall_ptr>(&quietFcntl)) != SQLITE_OK)
            vfs->xSetSystemCall(vfs, "close", reinterpret_cast<sqlite3_syscall_ptr>(realClose));
    });
}

#else

// No open-file-description locks here (not Linux): SQLite keeps its own locking.
void keepSqliteLocksThroughForeignCloses() { }

#endif

} // namespace knjige::db
