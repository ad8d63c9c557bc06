/// \file
/// The vectors' tracking allocator policy: blocks from the memory library's process-wide vector
/// pool, which keeps usage statistics.
#pragma once

#include "detail/HYLBasExport.h"

class HYLBasMemPoolVector;

/// Blocks from the vector pool. Holds no data of its own; all objects share the pool. Everything
/// but start and stop needs the pool to be set, which loading the library does; unchecked. The pool
/// is not guarded: one thread at a time among all users of the policy in the process, also where
/// each has vectors of its own. Constant time on top of the pool's.
class HYLBASGENERICS_EXPORT HYLBasVectorTrackingAllocator {
public:
  HYLBASGENERICS_EXPORT_INLINE HYLBasVectorTrackingAllocator() {}
  HYLBASGENERICS_EXPORT_INLINE ~HYLBasVectorTrackingAllocator() {}

  /// \name Start and stop
  /// A failure is written to the standard error stream as "*** Error: %s.\n", and its text is
  /// thrown as `char const*`.
  /// @{

  /// Fetches the process-wide pool and activates it. Fails when the memory library has none.
  static void Initialize();
  /// Fails when the pool was never set. Users of the policy call it first.
  static void Verify();
  /// Does nothing: the pool stays usable.
  static void Finalize();
  /// @}

  /// `bytes` bytes from the pool: never null.
  void* allocate(unsigned int bytes) const;
  /// Gives a block back to the pool; the size is not used.
  void deallocate(void* p) const;
  void deallocate(void* p, unsigned int bytes) const;

  /// \name The pool's statistics, in bytes, and identity
  /// @{
  unsigned int MemoryCurrent() const;
  unsigned int MemoryPeak() const;
  int PoolID() const;
  char* PoolName() const;
  /// @}

  /// Null until `Initialize`.
  static HYLBASGENERICS_EXPORT_ADDRESS HYLBasMemPoolVector* m_pool;
};
