#include "Exhaustion.h"

#include <cstdio>
#include <new>

namespace hylbas_detail {

void ReportExhaustion(unsigned int size) {
  std::fprintf(stderr, "*** Error: out of memory (%u bytes requested).\n", size);
  std::fflush(stderr);
  std::abort();
}

void HandleExhaustion(unsigned int size) {
  std::new_handler const handler = std::get_new_handler();
  if (handler == nullptr) ReportExhaustion(size);
  handler();
  // No handler can help here, and one that frees what it has on each call would be called for ever.
  if (size == unsatisfiable) ReportExhaustion(size);
}

} // namespace hylbas_detail
