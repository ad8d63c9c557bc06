/// \file
/// The host's memory library, as far as this library calls it: general heap, pools with usage
/// statistics, the region pool, and its own initialise and finalise.
///
/// All sizes are bytes in 32 bits on every platform. A request of 4294967295 bytes, the size that
/// callers pass for a product that does not fit 32 bits, is always treated as exhausted memory.
/// A host, or a test program, may define any of the out-of-line functions itself; its definition
/// is then the one that is called.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <utility>

#if defined(_WIN32)
#if defined(TARNHYLBASALLOC_BUILD)
#define TARNHYLBASALLOC_EXPORT __declspec(dllexport)
#else
#define TARNHYLBASALLOC_EXPORT
#endif
#define TARNHYLBASALLOC_EXPORT_INLINE
#define TARNHYLBASALLOC_LOCAL
#else
#define TARNHYLBASALLOC_EXPORT __attribute__((visibility("default")))
/// For inline members that the libraries using them may export.
#define TARNHYLBASALLOC_EXPORT_INLINE TARNHYLBASALLOC_EXPORT
/// Keeps a private helper of an exported class out of the export table.
#define TARNHYLBASALLOC_LOCAL __attribute__((visibility("hidden")))
#endif

/// \name General heap
/// @{

/// Allocates `size` bytes, aligned for any scalar type; never returns null. While memory is
/// exhausted it calls the installed new handler and tries again; without a handler it reports on
/// the standard error stream and ends the process. So it does after one call of the handler where
/// nothing that is freed could help: where 4294967295 bytes are asked for, which is what the
/// library asks for when a count of bytes does not fit 32 bits.
TARNHYLBASALLOC_EXPORT void* mem_Malloc_Handled(unsigned int size);

/// Allocates `size` bytes; returns null when memory is exhausted.
TARNHYLBASALLOC_EXPORT void* mem_Malloc(unsigned int size);

/// Releases a block obtained from any function of this group; null is ignored.
TARNHYLBASALLOC_EXPORT void mem_Free(void* block);

/// Allocates `size` bytes for one object; throws `std::bad_alloc` when memory is exhausted.
TARNHYLBASALLOC_EXPORT void* mem_OperatorNewThrow(unsigned int size);

/// Allocates `size` bytes for an array of a built-in type; throws `std::bad_alloc` when memory is
/// exhausted.
TARNHYLBASALLOC_EXPORT void* mem_OperatorNewThrowBuiltin(unsigned int size);

/// @}

/// \name Start and stop
/// Reference-counted. Each adds 1 to (subtracts 1 from) the caller's `tally` when it really starts
/// (stops) the memory library, and leaves it alone otherwise.
/// @{
TARNHYLBASALLOC_EXPORT void HYLBasAlloc_initialize(int& tally);
TARNHYLBASALLOC_EXPORT void HYLBasAlloc_finalize(int& tally);
/// @}

/// A named pool with usage statistics, counted in the bytes that callers asked for.
/// Not safe for use by several threads at once.
class TARNHYLBASALLOC_EXPORT HYLBasMemPool {
public:
  HYLBasMemPool(HYLBasMemPool const&) = delete;
  HYLBasMemPool& operator=(HYLBasMemPool const&) = delete;

  /// Marks the pool as in use.
  TARNHYLBASALLOC_EXPORT_INLINE void Activate() { m_active = true; }

  /// Allocates `size` bytes, aligned for any scalar type; never returns null, exhaustion is
  /// handled as by `mem_Malloc_Handled`.
  void* Alloc(unsigned int size);

  /// Releases a block that this pool returned (null is ignored); returns its size in bytes.
  unsigned int Free(void* block);

  /// Bytes handed out and not yet released; at most 4294967295 is reported.
  unsigned int MemoryCurrent();
  /// Largest value that `MemoryCurrent()` has had.
  unsigned int MemoryPeak();
  /// A number that tells the process's pools apart.
  int PoolID();
  /// The pool's name, for display.
  char* PoolName();

protected:
  /// `poolName` is not copied.
  HYLBasMemPool(int poolID, char* poolName);
  ~HYLBasMemPool();

private:
  bool m_active; // first member: the flag's place is part of the contract
  int m_poolID;
  char* m_poolName;
  unsigned long long m_memoryCurrent;
  unsigned long long m_memoryPeak;
};

/// The pool of tree nodes.
class TARNHYLBASALLOC_EXPORT HYLBasMemPoolMap : public HYLBasMemPool {
public:
  HYLBasMemPoolMap();
  ~HYLBasMemPoolMap();
};

/// The pool of vector blocks.
class TARNHYLBASALLOC_EXPORT HYLBasMemPoolVector : public HYLBasMemPool {
public:
  HYLBasMemPoolVector();
  ~HYLBasMemPoolVector();
};

/// Access to the process-wide object of a type: the same one on every call.
template <class T>
class omi_Singleton {
public:
  static T& Instance();
};

template <>
TARNHYLBASALLOC_EXPORT HYLBasMemPoolMap& omi_Singleton<HYLBasMemPoolMap>::Instance();
template <>
TARNHYLBASALLOC_EXPORT HYLBasMemPoolVector& omi_Singleton<HYLBasMemPoolVector>::Instance();

/// Reserved for hosts that share cached blocks among region pools; this library passes null.
class HYLBasMemCacheManager;

/// A region pool: hands out bytes from small blocks one after the other and releases all of them
/// at once when it is destroyed. Single allocations are never given back.
class TARNHYLBASALLOC_EXPORT HYLBasMemTruePool {
public:
  /// An empty pool; takes no memory until the first allocation.
  HYLBasMemTruePool(int poolNumber, char const* poolName, HYLBasMemCacheManager* cacheManager);
  /// Releases every block.
  ~HYLBasMemTruePool();
  HYLBasMemTruePool(HYLBasMemTruePool const&) = delete;
  HYLBasMemTruePool& operator=(HYLBasMemTruePool const&) = delete;

  /// Hands out `bytes` bytes (at most 495), directly after the previous ones while they end before
  /// byte 496 of the block and from a fresh block otherwise; adds no alignment. A request that no
  /// block can hold is reported on the standard error stream and ends the process.
  TARNHYLBASALLOC_EXPORT_INLINE void* Alloc(unsigned int bytes) {
    // In 64 bits, because the end of a huge request would wrap around to a small one.
    if (static_cast<unsigned long long>(m_used) + bytes >= e_blockEnd) {
      if (bytes >= e_blockEnd) RequestTooLarge(bytes);
      Grow();
    }
    void* result = m_blocks[m_currentBlock] + m_used;
    m_used += bytes;
    return result;
  }

  /// The same as `Alloc`.
  TARNHYLBASALLOC_EXPORT_INLINE void* allocate(unsigned int bytes) { return Alloc(bytes); }

  /// Releases nothing; returns 0.
  TARNHYLBASALLOC_EXPORT_INLINE unsigned int deallocate(void*, int) { return 0; }

  /// Makes a fresh block current, with 0 bytes used.
  void Grow();

  /// Exchanges everything that the two pools hold; allocations stay valid and belong to the other
  /// pool. Constant time.
  void Swap(HYLBasMemTruePool& other) {
    std::swap(m_blocks, other.m_blocks);
    std::swap(m_currentBlock, other.m_currentBlock);
    std::swap(m_used, other.m_used);
    std::swap(m_blockCount, other.m_blockCount);
    std::swap(m_blockRoom, other.m_blockRoom);
    std::swap(m_poolNumber, other.m_poolNumber);
    std::swap(m_poolName, other.m_poolName);
    std::swap(m_cacheManager, other.m_cacheManager);
  }

private:
  // A block never hands out the byte at this distance from its start, nor any after it.
  enum : unsigned int { e_blockEnd = 496 };

  [[noreturn, gnu::cold, gnu::noinline]] TARNHYLBASALLOC_LOCAL static void
  RequestTooLarge(unsigned int bytes) {
    std::fprintf(stderr, "*** Error: a region pool cannot hold a request of %u bytes.\n", bytes);
    std::fflush(stderr);
    std::abort();
  }

  TARNHYLBASALLOC_LOCAL void AddSlab();
  TARNHYLBASALLOC_LOCAL void GrowTable();

  char** m_blocks;             // start of each block
  unsigned int m_currentBlock; // index of the current block
  unsigned int m_used;       // bytes handed out from the current block; at its end in an empty pool
  unsigned int m_blockCount; // entries of m_blocks in use
  unsigned int m_blockRoom;  // entries that m_blocks has room for
  int m_poolNumber;
  char const* m_poolName;
  HYLBasMemCacheManager* m_cacheManager;
};
