// What this host's memory library tells the host itself, beside what libraries see of it.
#pragma once

#include "TARNHYLBasAlloc.h"

namespace host {

struct HeapUse {
  unsigned long long bytes, blocks;
};

/// What is allocated at the moment.
TARNHYLBASALLOC_EXPORT HeapUse InUse();

/// The most bytes that may be in use at once; more is exhausted memory.
TARNHYLBASALLOC_EXPORT void SetBudget(unsigned long long bytes);

} // namespace host
