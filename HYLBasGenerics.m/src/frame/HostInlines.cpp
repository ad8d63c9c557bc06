// Holds and exports the library's copies of the host's inline members: callers that do not inline
// them bind to these.
#include "TARNHYLBasAlloc.h"

namespace {

[[gnu::used]] constinit auto const activate = &HYLBasMemPool::Activate;
[[gnu::used]] constinit auto const alloc = &HYLBasMemTruePool::Alloc;
[[gnu::used]] constinit auto const allocate = &HYLBasMemTruePool::allocate;
[[gnu::used]] constinit auto const deallocate = &HYLBasMemTruePool::deallocate;

} // namespace
