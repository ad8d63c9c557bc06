// The memory library of this repository: its heap, pools and region pool. HostReplacementTest shows
// which of its functions the allocator policies call.
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

#include "TARNHYLBasAlloc.h"
#include "support/SanitizerOptions.h"

namespace {

constexpr unsigned int unsatisfiable = 4294967295u;

HYLBasMemPoolMap& Pool() { return omi_Singleton<HYLBasMemPoolMap>::Instance(); }

struct Source {
  char const* name;
  bool handled; // exhaustion ends the process
  void* (*allocate)(unsigned int bytes);
  void (*release)(void* block);
};

Source const sources[] = {
    {"mem_Malloc_Handled", true, mem_Malloc_Handled, mem_Free},
    {"pool", true, [](unsigned int n) { return Pool().Alloc(n); }, [](void* p) { Pool().Free(p); }},
    {"mem_Malloc", false, mem_Malloc, mem_Free},
    {"mem_OperatorNewThrow", false, mem_OperatorNewThrow, mem_Free},
    {"mem_OperatorNewThrowBuiltin", false, mem_OperatorNewThrowBuiltin, mem_Free}};

TEST(Allocation, EverySourceGivesUsableAlignedBlocks) {
  for (Source const& source : sources) {
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
}

TEST(Allocation, ExhaustionIsNullOrAnExceptionWhereTheCallerCopes) {
  EXPECT_EQ(mem_Malloc(unsatisfiable), nullptr);
  EXPECT_THROW(mem_OperatorNewThrow(unsatisfiable), std::bad_alloc);
  EXPECT_THROW(mem_OperatorNewThrowBuiltin(unsatisfiable), std::bad_alloc);
}

TEST(AllocationDeathTest, HandledExhaustionEndsTheProcessWithAReport) {
  for (Source const& source : sources) {
    if (!source.handled) continue;
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
  unsigned int const current = Pool().MemoryCurrent(), peak = Pool().MemoryPeak();
  EXPECT_THROW(mem_Malloc_Handled(unsatisfiable), std::bad_alloc);
  EXPECT_THROW(Pool().Alloc(unsatisfiable), std::bad_alloc);
  std::set_new_handler(nullptr);
  EXPECT_EQ(Pool().MemoryCurrent(), current);
  EXPECT_EQ(Pool().MemoryPeak(), peak);
}

void LimitAddressSpace(rlim_t bytes) {
  rlimit limit;
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_AS, &limit);
}

// Allocates under a limit that only the new handler lifts; the process's exit code tells.
[[noreturn]] void AllocateWithTheHandlersHelp() {
  static int calls = 0;
  LimitAddressSpace(rlim_t{256} << 20);
  std::set_new_handler([] {
    ++calls;
    LimitAddressSpace(RLIM_INFINITY);
  });
  void* const block = mem_Malloc_Handled(512u << 20);
  std::_Exit(block != nullptr && calls == 1 ? 0 : 1);
}

TEST(AllocationDeathTest, HandlerThatFindsMemoryIsFollowedByARetry) {
  if (HYLBAS_ADDRESS_SANITIZER) GTEST_SKIP() << "its address space cannot be limited";
  EXPECT_EXIT(AllocateWithTheHandlersHelp(), testing::ExitedWithCode(0), "");
}

TEST(Pool, ReportsWhatItsCallersHold) {
  HYLBasMemPoolVector pool;
  void* const a = pool.Alloc(100);
  void* const b = pool.Alloc(7);
  EXPECT_EQ(pool.MemoryCurrent(), 107u);
  EXPECT_EQ(pool.Free(a), 100u);
  EXPECT_EQ(pool.Free(pool.Alloc(1)), 1u);
  EXPECT_EQ(pool.MemoryCurrent(), 7u);
  EXPECT_EQ(pool.MemoryPeak(), 107u);
  EXPECT_EQ(pool.Free(b), 7u);
  EXPECT_EQ(pool.Free(nullptr), 0u);
  EXPECT_EQ(pool.MemoryCurrent(), 0u);
  EXPECT_NE(pool.PoolID(), Pool().PoolID());
  EXPECT_STRNE(pool.PoolName(), Pool().PoolName());

  // The active flag is promised to be the first byte.
  auto const* const flag = reinterpret_cast<unsigned char const volatile*>(&pool);
  EXPECT_EQ(*flag, 0);
  pool.Activate();
  EXPECT_EQ(*flag, 1);
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
}

char* Take(HYLBasMemTruePool& pool, unsigned int bytes) {
  return static_cast<char*>(pool.Alloc(bytes));
}

// Fills every allocation with its own number; afterwards all of them must have kept it, and each
// must lie behind the one before exactly when the block still had room.
TEST(RegionPool, KeepsEveryAllocationInPlace) {
  std::mt19937 random(7);
  for (unsigned int largest : {1u, 40u, 495u}) {
    HYLBasMemTruePool pool(101, "HYLBasMemRegionAllocator", nullptr);
    std::vector<std::pair<char*, unsigned int>> pieces;
    unsigned int used = 496;
    for (int i = 0; i != 20000; ++i) {
      unsigned int const size = static_cast<unsigned int>(random() % (largest + 1));
      char* const start = Take(pool, size);
      EXPECT_EQ(pool.deallocate(start, 1), 0u);
      bool const fits = used + size < 496;
      ASSERT_TRUE(fits ? start == pieces.back().first + pieces.back().second
                       : reinterpret_cast<std::uintptr_t>(start) % 16 == 0);
      used = fits ? used + size : size;
      std::memset(start, i % 251, size);
      pieces.emplace_back(start, size);
    }
    for (std::size_t i = 0; i != pieces.size(); ++i) {
      auto const [start, size] = pieces[i];
      ASSERT_EQ(std::count(start, start + size, static_cast<char>(i % 251)), size);
    }
  }
}

TEST(RegionPool, SwapExchangesTheBlocks) {
  HYLBasMemTruePool a(101, "HYLBasMemRegionAllocator", nullptr);
  char* const inA = static_cast<char*>(a.allocate(100));
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

} // namespace
