#include "Exhaustion.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace hylbas_detail {

namespace {

[[noreturn]] void ReportExhaustion(unsigned int size) {
  std::fprintf(stderr, "*** Error: out of memory (%u bytes requested).\n", size);
  std::fflush(stderr);
  std::abort();
}

} // namespace

void* AllocateHandled(unsigned int size, unsigned int header) {
  for (;;) {
    if (void* const block = TryAllocate(size, header)) return block;
    std::new_handler const handler = std::get_new_handler();
    if (handler == nullptr) ReportExhaustion(size);
    handler();
    // A handler that always finds something to free would be called for ever.
    if (IsHopeless(size, header)) ReportExhaustion(size);
  }
}

} // namespace hylbas_detail
