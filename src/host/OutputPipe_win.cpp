#include "host/Cli.h"

#include <cerrno>

namespace knjige::host::cli
{

// Windows sends no signal: the write fails with a broken pipe, which the runtime
// gives as EPIPE.
void reportClosedOutputAsWriteError() { }

bool outputClosedByReader()
{
    return errno == EPIPE;
}

} // namespace knjige::host::cli
