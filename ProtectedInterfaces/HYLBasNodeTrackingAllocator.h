/// \file
/// The trees' tracking allocator policy: nodes from the memory library's process-wide map pool,
/// which keeps usage statistics.
#pragma once

#include "detail/HYLBasExport.h"

class HYLBasMemPoolMap;

/// Nodes from the map pool. Holds no data of its own; all objects, and all trees over the policy,
/// share the pool. It needs no start: the first construction of the policy, or of a tree over it,
/// sets the pool, and the allocation functions assume that there has been one, unchecked.
class HYLBASGENERICS_EXPORT HYLBasNodeTrackingAllocator {
public:
  /// Fetches the process-wide pool and activates it.
  HYLBasNodeTrackingAllocator();
  HYLBASGENERICS_EXPORT_INLINE ~HYLBasNodeTrackingAllocator() {}

  /// `bytes` bytes from the pool: never null. A negative size counts as its value modulo 2^32.
  static void* allocate(int bytes);
  /// Gives a block back to the pool; the size is not used.
  static void deallocate(void* p, unsigned int bytes);

  /// Null until the first construction.
  static HYLBASGENERICS_EXPORT_ADDRESS HYLBasMemPoolMap* m_pool;
};
