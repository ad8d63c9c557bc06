// The allocator policies over the memory library of this repository, and that library's own heap,
// pools and region pool.
#include <algorithm>
#include <cstdint>
#include <cstring>
#include <new>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "HYLBasGenericsAllocator.h"
#include "HYLBasMicroAllocator.h"
#include "HYLBasNodeAllocator.h"
#include "HYLBasNodeTrackingAllocator.h"
#include "HYLBasSmallNodeTrackingAllocator.h"
#include "HYLBasVectorAllocator.h"
#include "HYLBasVectorTrackingAllocator.h"
#include "TARNHYLBasAlloc.h"
#include "support/SanitizerOptions.h"

namespace {

constexpr unsigned int unsatisfiable = 4294967295u;

struct Source {
  char const* name;
  void* (*allocate)(unsigned int bytes);
  void (*release)(void* block);
};

// Every way to handled memory that takes a size and gives a block.
Source const handledSources[] = {
    {"mem_Malloc_Handled", mem_Malloc_Handled, mem_Free},
    {"HYLBasVectorAllocator", HYLBasVectorAllocator::allocate,
     [](void* p) { HYLBasVectorAllocator::deallocate(p, 4711); }},
    {"HYLBasNodeAllocator",
     [](unsigned int n) { return HYLBasNodeAllocator::allocate(static_cast<int>(n)); },
     [](void* p) { HYLBasNodeAllocator::deallocate(p, -1); }},
    {"HYLBasVectorTrackingAllocator",
     [](unsigned int n) { return HYLBasVectorTrackingAllocator().allocate(n); },
     [](void* p) { HYLBasVectorTrackingAllocator().deallocate(p); }},
    {"HYLBasNodeTrackingAllocator",
     [](unsigned int n) {
       HYLBasNodeTrackingAllocator const setsThePool;
       return HYLBasNodeTrackingAllocator::allocate(static_cast<int>(n));
     },
     [](void* p) { HYLBasNodeTrackingAllocator::deallocate(p, 4711); }}};

Source const otherSources[] = {
    {"mem_Malloc", mem_Malloc, mem_Free},
    {"mem_OperatorNewThrow", mem_OperatorNewThrow, mem_Free},
    {"mem_OperatorNewThrowBuiltin", mem_OperatorNewThrowBuiltin, mem_Free},
    {"HYLBasMicroAllocator",
     [](unsigned int n) { return HYLBasMicroAllocator::Alloc(static_cast<int>(n)); },
     HYLBasMicroAllocator::Free}};

void GivesUsableAlignedBlocks(Source const& source) {
  SCOPED_TRACE(source.name);
  std::vector<std::pair<unsigned char*, unsigned int>> blocks;
  for (unsigned int size : {0u, 1u, 15u, 16u, 17u, 495u, 100000u}) {
    auto* const block = static_cast<unsigned char*>(source.allocate(size));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t), 0u);
    std::memset(block, static_cast<int>(blocks.size()), size);
    blocks.emplace_back(block, size);
  }
  for (std::size_t i = 0; i != blocks.size(); ++i) {
    auto const [block, size] = blocks[i];
    EXPECT_EQ(std::count(block, block + size, static_cast<unsigned char>(i)), size);
    source.release(block);
  }
  source.release(nullptr);
}

TEST(Allocation, EverySourceGivesUsableAlignedBlocks) {
  for (Source const& source : handledSources)
    GivesUsableAlignedBlocks(source);
  for (Source const& source : otherSources)
    GivesUsableAlignedBlocks(source);
}

TEST(Allocation, ExhaustionIsNullOrAnExceptionWhereTheCallerCopes) {
  EXPECT_EQ(mem_Malloc(unsatisfiable), nullptr);
  EXPECT_EQ(HYLBasMicroAllocator::Alloc(-1), nullptr);
  EXPECT_THROW(mem_OperatorNewThrow(unsatisfiable), std::bad_alloc);
  EXPECT_THROW(mem_OperatorNewThrowBuiltin(unsatisfiable), std::bad_alloc);
}

TEST(AllocationDeathTest, HandledExhaustionEndsTheProcessWithAReport) {
  for (Source const& source : handledSources) {
    SCOPED_TRACE(source.name);
    EXPECT_DEATH(source.allocate(unsatisfiable), "out of memory \\(4294967295 bytes");
    // The handler is asked before the process is given up.
    EXPECT_DEATH(
        {
          std::set_new_handler([] { std::fputs("handler;", stderr); });
          source.allocate(unsatisfiable);
        },
        "^handler;[^;]*out of memory");
  }
}

TEST(Allocation, HandlersExceptionLeavesAndChangesNothing) {
  std::set_new_handler([] { throw std::bad_alloc(); });
  HYLBasVectorTrackingAllocator const policy;
  unsigned int const current = policy.MemoryCurrent(), peak = policy.MemoryPeak();
  for (Source const& source : handledSources)
    EXPECT_THROW(source.allocate(unsatisfiable), std::bad_alloc) << source.name;
  std::set_new_handler(nullptr);
  EXPECT_EQ(policy.MemoryCurrent(), current);
  EXPECT_EQ(policy.MemoryPeak(), peak);
}

void LimitAddressSpace(rlim_t bytes) {
  rlimit limit;
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_AS, &limit);
}

// Allocates under a limit that only the new handler lifts; the process's exit code tells.
[[noreturn]] void AllocateWithTheHandlersHelp(Source const& source) {
  static int calls = 0;
  LimitAddressSpace(rlim_t{256} << 20);
  std::set_new_handler([] {
    ++calls;
    LimitAddressSpace(RLIM_INFINITY);
  });
  void* const block = source.allocate(512u << 20);
  std::_Exit(block != nullptr && calls == 1 ? 0 : 1);
}

TEST(AllocationDeathTest, HandlerThatFindsMemoryIsFollowedByARetry) {
  if (HYLBAS_ADDRESS_SANITIZER) GTEST_SKIP() << "its address space cannot be limited";
  for (Source const& source : handledSources)
    EXPECT_EXIT(AllocateWithTheHandlersHelp(source), testing::ExitedWithCode(0), "") << source.name;
}

TEST(VectorTracking, ReportsWhatItsCallersHold) {
  HYLBasVectorTrackingAllocator const policy;
  HYLBasVectorTrackingAllocator::Verify();
  unsigned int const before = policy.MemoryCurrent();
  void* const a = policy.allocate(100);
  void* const b = policy.allocate(7);
  EXPECT_EQ(policy.MemoryCurrent(), before + 107);
  EXPECT_GE(policy.MemoryPeak(), before + 107);
  policy.deallocate(a);
  EXPECT_EQ(policy.MemoryCurrent(), before + 7);
  policy.deallocate(b, 4711);
  EXPECT_EQ(policy.MemoryCurrent(), before);
  unsigned int const peak = policy.MemoryPeak();
  EXPECT_GE(peak, before + 107);

  HYLBasMemPoolVector& pool = omi_Singleton<HYLBasMemPoolVector>::Instance();
  EXPECT_EQ(HYLBasVectorTrackingAllocator::m_pool, &pool);
  EXPECT_EQ(pool.Free(pool.Alloc(peak + 1 - before)), peak + 1 - before);
  EXPECT_EQ(policy.MemoryPeak(), peak + 1);
  EXPECT_EQ(policy.PoolID(), pool.PoolID());
  EXPECT_EQ(policy.PoolName(), pool.PoolName());
}

TEST(VectorTracking, InitializeSetsThePoolAndFinalizeKeepsIt) {
  HYLBasMemPoolVector* const pool = std::exchange(HYLBasVectorTrackingAllocator::m_pool, nullptr);
  testing::internal::CaptureStderr();
  std::string thrown;
  try {
    HYLBasVectorTrackingAllocator::Verify();
  } catch (char const* text) {
    thrown = text;
  }
  EXPECT_EQ(thrown, "HYLBasVectorTrackingAllocator is used before it is initialized");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "*** Error: " + thrown + ".\n");

  HYLBasVectorTrackingAllocator::Initialize();
  HYLBasVectorTrackingAllocator::Finalize();
  HYLBasVectorTrackingAllocator::Verify();
  EXPECT_EQ(HYLBasVectorTrackingAllocator::m_pool, pool);
}

TEST(NodeTracking, ConstructionFetchesTheMapPool) {
  HYLBasMemPoolMap& pool = omi_Singleton<HYLBasMemPoolMap>::Instance();
  HYLBasNodeTrackingAllocator::m_pool = nullptr;
  HYLBasNodeTrackingAllocator const policy;
  EXPECT_EQ(HYLBasNodeTrackingAllocator::m_pool, &pool);
  unsigned int const before = pool.MemoryCurrent();
  void* const node = HYLBasNodeTrackingAllocator::allocate(40);
  EXPECT_EQ(pool.MemoryCurrent(), before + 40);
  HYLBasNodeTrackingAllocator::deallocate(node, 4711);
  EXPECT_EQ(pool.MemoryCurrent(), before);

  HYLBasMemPoolVector& other = omi_Singleton<HYLBasMemPoolVector>::Instance();
  EXPECT_NE(pool.PoolID(), other.PoolID());
  EXPECT_STRNE(pool.PoolName(), other.PoolName());
  EXPECT_EQ(HYLBasSmallNodeTrackingAllocator::m_pool, nullptr);
}

// A pool as its layout is promised to hosts: the active flag is its first byte.
TEST(Pool, ActivateSetsTheFirstByte) {
  HYLBasMemPoolMap pool;
  unsigned char flag;
  std::memcpy(&flag, static_cast<void*>(&pool), 1);
  EXPECT_EQ(flag, 0);
  pool.Activate();
  std::memcpy(&flag, static_cast<void*>(&pool), 1);
  EXPECT_EQ(flag, 1);
}

TEST(Pool, StatisticsStopAtWhat32BitsHold) {
  if (sizeof(void*) == 4) GTEST_SKIP() << "the address space ends before";
  HYLBasMemPoolVector pool;
  constexpr unsigned int size = 3u << 30; // reserved, never touched but for its header
  void* const a = pool.Alloc(size);
  void* const b = pool.Alloc(size);
  EXPECT_EQ(pool.MemoryCurrent(), unsatisfiable);
  EXPECT_EQ(pool.Free(a), size);
  EXPECT_EQ(pool.MemoryCurrent(), size);
  EXPECT_EQ(pool.Free(b), size);
  EXPECT_EQ(pool.MemoryCurrent(), 0u);
  EXPECT_EQ(pool.MemoryPeak(), unsatisfiable);
  EXPECT_EQ(pool.Free(nullptr), 0u);
}

char* Take(HYLBasMemTruePool& pool, unsigned int bytes) {
  return static_cast<char*>(pool.Alloc(bytes));
}

TEST(RegionPool, StartsANewBlockWhereARequestWouldEndAtByte496) {
  for (unsigned int last : {15u, 16u}) {
    HYLBasMemTruePool pool(101, "HYLBasMemRegionAllocator", nullptr);
    char* const first = Take(pool, 480);
    EXPECT_EQ(pool.deallocate(first, 480), 0u);
    char* const second = static_cast<char*>(pool.allocate(last));
    EXPECT_EQ(second == first + 480, last == 15);
  }
}

// Fills every allocation with its own number; afterwards all of them must have kept it, and each
// must lie behind the one before exactly when the block still had room.
TEST(RegionPool, KeepsEveryAllocationInPlace) {
  struct Piece {
    char* start;
    unsigned int size;
  };
  std::mt19937 random(7);
  for (unsigned int largest : {1u, 40u, 495u}) {
    HYLBasMemTruePool pool(101, "HYLBasMemRegionAllocator", nullptr);
    std::vector<Piece> pieces;
    unsigned int used = 496;
    for (int i = 0; i != 20000; ++i) {
      unsigned int const size = static_cast<unsigned int>(random() % (largest + 1));
      char* const start = Take(pool, size);
      ASSERT_NE(start, nullptr);
      bool const fits = used + size < 496;
      ASSERT_TRUE(fits ? start == pieces.back().start + pieces.back().size
                       : reinterpret_cast<std::uintptr_t>(start) % 16 == 0);
      used = fits ? used + size : size;
      std::memset(start, i % 251, size);
      pieces.push_back({start, size});
    }
    for (std::size_t i = 0; i != pieces.size(); ++i)
      ASSERT_EQ(
          std::count(pieces[i].start, pieces[i].start + pieces[i].size, static_cast<char>(i % 251)),
          pieces[i].size);
  }
}

TEST(RegionPool, SwapExchangesTheBlocks) {
  HYLBasMemTruePool a(101, "HYLBasMemRegionAllocator", nullptr);
  char* const inA = Take(a, 100);
  {
    HYLBasMemTruePool b(102, "other", nullptr);
    char* const inB = Take(b, 50);
    a.Swap(b);
    EXPECT_EQ(Take(a, 1), inB + 50);
    EXPECT_EQ(Take(b, 1), inA + 100);
    HYLBasMemTruePool empty(103, "empty", nullptr);
    empty.Swap(a);
    std::memset(inB, 1, 50);
    EXPECT_NE(Take(a, 1), inB + 51);
  }
}

TEST(RegionPoolDeathTest, RequestThatNoBlockHoldsEndsTheProcess) {
  for (unsigned int used : {0u, 480u})
    for (unsigned int size : {496u, 497u, 2147483648u, unsatisfiable - 479, unsatisfiable}) {
      HYLBasMemTruePool pool(101, "HYLBasMemRegionAllocator", nullptr);
      Take(pool, used);
      EXPECT_DEATH(pool.Alloc(size), "cannot hold a request of " + std::to_string(size) + " bytes");
      EXPECT_NE(Take(pool, 495), nullptr);
    }
}

TEST(GenericsAllocator, HoldsNothing) {
  HYLBasGenericsAllocator const policy;
  EXPECT_EQ(sizeof policy, 1u);
}

} // namespace
