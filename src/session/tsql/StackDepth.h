#pragma once

#include <cstddef>

namespace knjige::tsql
{

// Bytes of the calling thread's stack still free below the caller's frame. Recursive
// readers of untrusted text (the T-SQL parser) stop before the stack runs out, on
// whatever stack the host gives the thread (Windows threads often have 1 MiB). A
// very large number when the platform cannot tell.
std::size_t stackLeft();

} // namespace knjige::tsql
