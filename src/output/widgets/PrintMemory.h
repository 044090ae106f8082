#pragma once

namespace knjige::output
{

// While it lives, memory the process frees stays with it rather than going back to
// the system. Qt's PDF writer takes a few hundred kilobytes for every page (the page's
// text and its compressor) and gives them back when the page is written; handed back
// to the system each time, they are zeroed and mapped again for the next page, which
// cost a long book a tenth of its printing time. Everything kept is returned at the end.
// The allocator's settings belong to the whole process, so this is off until the
// process allows it: the knjige program and the benchmarks do; a host application
// that loads the component keeps its allocator as it set it.
class KeptFreedMemory
{
public:
    static void allowInThisProcess();

    KeptFreedMemory();
    ~KeptFreedMemory();
    KeptFreedMemory(const KeptFreedMemory&) = delete;
    KeptFreedMemory& operator=(const KeptFreedMemory&) = delete;

private:
    bool m_active = false;
};

} // namespace knjige::output
