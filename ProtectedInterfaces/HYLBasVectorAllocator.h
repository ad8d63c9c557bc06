/// \file
/// The vectors' allocator policy: blocks straight from the memory library's general heap.
#pragma once

#include "TARNHYLBasAlloc.h"
#include "detail/HYLBasExport.h"

/// Blocks from the general heap, never null. Holds no data.
class HYLBASGENERICS_EXPORT HYLBasVectorAllocator {
public:
  HYLBASGENERICS_EXPORT_INLINE HYLBasVectorAllocator() {}

  /// `mem_Malloc_Handled(bytes)`: never null.
  HYLBASGENERICS_EXPORT_INLINE static void* allocate(unsigned int bytes) {
    return mem_Malloc_Handled(bytes);
  }
  /// `mem_Free(p)`; the size is not used.
  HYLBASGENERICS_EXPORT_INLINE static void deallocate(void* p, unsigned int /*bytes*/) {
    mem_Free(p);
  }
};
