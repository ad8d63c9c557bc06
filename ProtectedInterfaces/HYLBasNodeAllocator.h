/// \file
/// The trees' allocator policy: nodes straight from the memory library's general heap.
#pragma once

#include "TARNHYLBasAlloc.h"
#include "detail/HYLBasExport.h"

/// Nodes from the general heap, never null. Holds no data.
class HYLBASGENERICS_EXPORT HYLBasNodeAllocator {
public:
  HYLBASGENERICS_EXPORT_INLINE HYLBasNodeAllocator() {}

  /// `mem_Malloc_Handled(bytes)`: never null. A negative size counts as its value modulo 2^32.
  HYLBASGENERICS_EXPORT_INLINE static void* allocate(int bytes) {
    return mem_Malloc_Handled(static_cast<unsigned int>(bytes));
  }
  /// `mem_Free(p)`; the size is not used.
  HYLBASGENERICS_EXPORT_INLINE static void deallocate(void* p, int /*bytes*/) { mem_Free(p); }
};
