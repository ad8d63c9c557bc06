/// \file
/// What the memory library does when memory runs out.
#pragma once

#include <cstdlib>

namespace hylbas_detail {

/// The size that callers pass for a product that does not fit 32 bits: never satisfied.
inline constexpr unsigned int unsatisfiable = 4294967295u;

/// `size` bytes from the runtime heap, or null.
inline void* TryAllocate(unsigned int size) {
  return size == unsatisfiable ? nullptr : std::malloc(size != 0 ? size : 1);
}

/// Reports that `size` bytes are not to be had, and ends the process.
[[noreturn]] void ReportExhaustion(unsigned int size);

/// Gives the installed new handler a chance to find memory for a request of `size` bytes. Returns
/// when the request is worth another try, and ends the process with a report when it is not.
/// A handler that throws leaves through here.
void HandleExhaustion(unsigned int size);

} // namespace hylbas_detail
