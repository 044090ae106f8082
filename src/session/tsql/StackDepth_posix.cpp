#include "session/tsql/StackDepth.h"

#include <cstdint>
#include <limits>
#include <pthread.h>

namespace knjige::tsql
{
namespace
{

// The lowest address of the thread's stack (stacks grow down on every platform the
// component runs on); null when unknown. Looked up once per thread: on the main
// thread glibc reads /proc/self/maps for it.
const char* stackLow()
{
#if defined(__APPLE__)
    pthread_t self = pthread_self();
    return static_cast<const char*>(pthread_get_stackaddr_np(self)) - pthread_get_stacksize_np(self);
#elif defined(__GLIBC__) || defined(__linux__)
    pthread_attr_t attr;
    if (pthread_getattr_np(pthread_self(), &attr) != 0)
        return nullptr;
    void* addr = nullptr;
    size_t size = 0;
    const int rc = pthread_attr_getstack(&attr, &addr, &size);
    pthread_attr_destroy(&attr);
    return rc == 0 ? static_cast<const char*>(addr) : nullptr;
#else
    return nullptr;
#endif
}

} // namespace

std::size_t stackLeft()
{
    thread_local const char* const low = stackLow();
    // The frame address, not a local's: under AddressSanitizer locals may live on a
    // heap-allocated fake stack.
    const char* here = static_cast<const char*>(__builtin_frame_address(0));
    if (!low)
        return std::numeric_limits<std::size_t>::max();
    return here > low ? std::size_t(here - low) : 0;
}

} // namespace knjige::tsql
