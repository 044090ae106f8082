// The GNU C library's allocator: its trim and map thresholds. Other C libraries keep
// their own ways.
#include "output/widgets/PrintMemory.h"

#include <atomic>
#include <cstdlib> // defines __GLIBC__ where it is that library
#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace knjige::output
{
#if defined(__GLIBC__)
namespace
{

std::atomic<bool> allowed { false };

// The library's defaults; setting them once leaves its own adjustment of them off,
// which is how a process that never printed runs as well, bar the first large block.
constexpr int kDefaultThreshold = 128 * 1024;
// Blocks up to the largest map threshold the library takes (32 MiB on 64 bits) come
// from the heap; the heap's free top is never cut back (a threshold of 32 MiB still
// let a long book's print cut and regrow it on most pages). The peak stays the peak:
// only what was in use at once is ever kept.
constexpr int kLargestMapThreshold = 32 * 1024 * 1024;
constexpr int kNeverTrim = 1 << 30;

} // namespace

void KeptFreedMemory::allowInThisProcess()
{
    allowed = true;
}

KeptFreedMemory::KeptFreedMemory()
    : m_active(allowed)
{
    if (!m_active)
        return;
    mallopt(M_MMAP_THRESHOLD, kLargestMapThreshold);
    mallopt(M_TRIM_THRESHOLD, kNeverTrim);
}

KeptFreedMemory::~KeptFreedMemory()
{
    if (!m_active)
        return;
    mallopt(M_TRIM_THRESHOLD, kDefaultThreshold);
    mallopt(M_MMAP_THRESHOLD, kDefaultThreshold);
    malloc_trim(0);
}
#else
void KeptFreedMemory::allowInThisProcess() { }
KeptFreedMemory::KeptFreedMemory() = default;
KeptFreedMemory::~KeptFreedMemory() = default;
#endif

} // namespace knjige::output
