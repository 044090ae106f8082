#include "host/Cli.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <unistd.h>

namespace knjige::host::cli
{

void reportClosedOutputAsWriteError()
{
    std::signal(SIGPIPE, SIG_IGN);
}

bool outputClosedByReader()
{
    if (errno == EPIPE)
        return true;
    // The write end of a pipe without a reader polls as an error.
    pollfd out { STDOUT_FILENO, 0, 0 };
    return ::poll(&out, 1, 0) > 0 && (out.revents & POLLERR);
}

} // namespace knjige::host::cli
