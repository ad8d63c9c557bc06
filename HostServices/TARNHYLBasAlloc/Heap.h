/// \file
/// The heap that the memory library's blocks come from, as the build option HYLBAS_HEAP chose it.
/// Nothing else here names a heap's functions.
#pragma once

#include <cstddef>
#include <cstdlib>

namespace hylbas_detail {

#if HYLBAS_HEAP_IS_JEMALLOC

// Names that the build gave to `malloc` and `free` of the heap inside this library.
extern "C" {
[[gnu::visibility("hidden")]] void* hylbas_heap_malloc(std::size_t bytes);
[[gnu::visibility("hidden")]] void hylbas_heap_free(void* block);
}

/// `bytes` bytes aligned for any scalar type, or null.
inline void* HeapAllocate(std::size_t bytes) {
  // Its blocks of fewer bytes than the strictest alignment are aligned for what fits them only.
  constexpr std::size_t least = alignof(std::max_align_t);
  return hylbas_heap_malloc(bytes < least ? least : bytes);
}

inline void HeapFree(void* block) { hylbas_heap_free(block); }

#else

/// `bytes` bytes aligned for any scalar type, or null.
inline void* HeapAllocate(std::size_t bytes) { return std::malloc(bytes != 0 ? bytes : 1); }

inline void HeapFree(void* block) { std::free(block); }

#endif

} // namespace hylbas_detail
