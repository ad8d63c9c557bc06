/// \file
/// The one way from the memory library to its heap, and what happens when it is exhausted.
#pragma once

#include <cstddef>

#include "Heap.h"

namespace hylbas_detail {

/// The size that callers pass for a product that does not fit 32 bits: never satisfied.
inline constexpr unsigned int unsatisfiable = 4294967295u;

/// Whether no amount of free memory satisfies a request of `size` bytes behind a header of `header`
/// bytes.
inline constexpr bool IsHopeless(unsigned int size, unsigned int header) {
  return size == unsatisfiable || static_cast<std::size_t>(size) + header < size;
}

/// `header` plus `size` bytes from the heap, or null.
inline void* TryAllocate(unsigned int size, unsigned int header = 0) {
  std::size_t const bytes = static_cast<std::size_t>(size) + header;
  return IsHopeless(size, header) ? nullptr : HeapAllocate(bytes);
}

/// The same, never null: while memory is exhausted, calls the installed new handler and tries
/// again; without a handler, or when no handler can help, reports on the standard error stream and
/// ends the process. What a handler throws leaves through here.
void* AllocateHandled(unsigned int size, unsigned int header = 0);

} // namespace hylbas_detail
