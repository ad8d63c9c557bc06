/// \file
/// The micro list's allocator policy: blocks from the memory library's general heap, where
/// exhaustion is the caller's to handle.
#pragma once

#include "detail/HYLBasExport.h"

/// Blocks from the general heap, null when it is exhausted. Holds no data.
class HYLBASGENERICS_EXPORT HYLBasMicroAllocator {
public:
  /// `mem_Malloc(bytes)`: null when memory is exhausted. A negative size counts as its value modulo
  /// 2^32.
  static void* Alloc(int bytes);
  /// `mem_Free(p)`; null is ignored.
  static void Free(void* p);
};
