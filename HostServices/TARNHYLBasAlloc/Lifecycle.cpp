#include "TARNHYLBasAlloc.h"

namespace {

// Initialisations minus finalisations. Nothing hangs on it: every service works from the moment the
// library is loaded until the process ends, because other libraries' load-time constructors use it.
int initializations = 0;

} // namespace

void HYLBasAlloc_initialize(int& tally) {
  if (initializations++ == 0) ++tally;
}

void HYLBasAlloc_finalize(int& tally) {
  if (--initializations == 0) --tally;
}
