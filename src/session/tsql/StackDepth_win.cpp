#include "session/tsql/StackDepth.h"

#include <intrin.h>
#include <windows.h>

namespace knjige::tsql
{

std::size_t stackLeft()
{
    thread_local const ULONG_PTR low = [] {
        ULONG_PTR lowLimit = 0, highLimit = 0;
        GetCurrentThreadStackLimits(&lowLimit, &highLimit);
        return lowLimit;
    }();
    const ULONG_PTR here = reinterpret_cast<ULONG_PTR>(_AddressOfReturnAddress());
    return here > low ? std::size_t(here - low) : 0;
}

} // namespace knjige::tsql
