// The memory library of this repository: its heap, pools and region pools beside lists of what was
// handed out. HostTest shows which of its functions the allocator policies call.
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>

#include "TARNHYLBasAlloc.h"
#include "support/SanitizerOptions.h"
#include "walks/Choices.h"

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

namespace {

constexpr unsigned int unsatisfiable = 4294967295u;

bool IsAligned(void const* block) {
  return reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t) == 0;
}

// A piece of memory that keeps its own byte.
struct Piece {
  unsigned char* start;
  unsigned int size;
  unsigned char byte;

  Piece(void* p, unsigned int n, unsigned int number)
      : start(static_cast<unsigned char*>(p)), size(n), byte(static_cast<unsigned char>(number)) {
    std::memset(start, byte, size);
  }
  void ExpectKept() const { ASSERT_EQ(std::count(start, start + size, byte), size); }
};

// A pool with what it should say of itself.
struct PoolAndModel {
  HYLBasMemPoolVector pool;
  std::vector<Piece> pieces;
  unsigned int current = 0, peak = 0;

  void Allocate(unsigned int n, unsigned int number) {
    pieces.emplace_back(pool.Alloc(n), n, number);
    ASSERT_TRUE(IsAligned(pieces.back().start));
    current += n;
    peak = std::max(peak, current);
  }
  void Release(std::size_t k) {
    pieces[k].ExpectKept();
    current -= pieces[k].size;
    EXPECT_EQ(pool.Free(pieces[k].start), pieces[k].size);
    pieces.erase(pieces.begin() + static_cast<std::ptrdiff_t>(k));
  }
  void Compare() {
    EXPECT_EQ(pool.MemoryCurrent(), current);
    EXPECT_EQ(pool.MemoryPeak(), peak);
    EXPECT_EQ(pool.Free(nullptr), 0u);
  }
};

// A region pool with the pieces handed out; a piece that fits lies behind the one before.
struct RegionAndModel {
  HYLBasMemTruePool pool{101, "HYLBasMemRegionAllocator", nullptr};
  std::vector<Piece> pieces;
  unsigned int used = 496;

  void Allocate(unsigned int n, unsigned int number) {
    void* const start = number % 2 ? pool.Alloc(n) : pool.allocate(n);
    bool const fits = used + n < 496;
    ASSERT_TRUE(fits ? start == pieces.back().start + pieces.back().size : IsAligned(start));
    used = fits ? used + n : n;
    pieces.emplace_back(start, n, number);
    EXPECT_EQ(pool.deallocate(start, static_cast<int>(n)), 0u);
  }
};

using Allocate = void*(unsigned int bytes);
Allocate* const heap[] = {mem_Malloc_Handled, mem_Malloc, mem_OperatorNewThrow,
                          mem_OperatorNewThrowBuiltin};

} // namespace

WALK(40, 3000) {
  PoolAndModel pools[2];
  RegionAndModel regions[2];
  std::vector<Piece> pieces; // of the heap
  std::set_new_handler([] { throw std::bad_alloc(); });
  for (unsigned int number = 0; choices.More(); ++number) {
    unsigned int const action = choices.Below(16), n = choices.Below(496);
    unsigned int const size = choices.OneIn(16) ? 200 * n : n;
    PoolAndModel& some = choices.Of(pools);
    RegionAndModel& region = choices.Of(regions);
    Allocate* const allocate = choices.Of(heap);
    if (action < 6) region.Allocate(action < 3 ? n : n % 41, number);
    if (action == 6) some.Allocate(size, number);
    if (action == 7 && !some.pieces.empty()) some.Release(n % some.pieces.size());
    if (action == 8) {
      pieces.emplace_back(allocate(size), size, number);
      ASSERT_TRUE(IsAligned(pieces.back().start));
    }
    if (action == 9 && !pieces.empty()) {
      std::swap(pieces[n % pieces.size()], pieces.back());
      pieces.back().ExpectKept();
      mem_Free(pieces.back().start);
      pieces.pop_back();
      mem_Free(nullptr);
    }
    if (action == 10) { // what no memory satisfies changes nothing
      EXPECT_THROW(some.pool.Alloc(unsatisfiable), std::bad_alloc);
      EXPECT_EQ(mem_Malloc(unsatisfiable), nullptr);
      if (allocate != mem_Malloc) {
        EXPECT_THROW(allocate(unsatisfiable), std::bad_alloc);
      }
    }
    if (action == 11) {
      regions[0].pool.Swap(regions[1].pool);
      std::swap(regions[0].pieces, regions[1].pieces);
      std::swap(regions[0].used, regions[1].used);
    }
    for (PoolAndModel& each : pools)
      each.Compare();
  }
  std::set_new_handler(nullptr);
  for (RegionAndModel const& region : regions)
    for (Piece const& piece : region.pieces)
      piece.ExpectKept();
  for (PoolAndModel& each : pools)
    while (!each.pieces.empty())
      each.Release(each.pieces.size() - 1);
  for (Piece const& piece : pieces) {
    piece.ExpectKept();
    mem_Free(piece.start);
  }
}

namespace {

HYLBasMemPoolMap& Pool() { return omi_Singleton<HYLBasMemPoolMap>::Instance(); }
void* FromPool(unsigned int bytes) { return Pool().Alloc(bytes); }

TEST(MemoryEnds, TheProcessWithAReportWhereCallersDoNotCope) {
  for (Allocate* const allocate : {mem_Malloc_Handled, FromPool}) {
    EXPECT_DEATH(allocate(unsatisfiable), "out of memory \\(4294967295 bytes");
    // The handler is asked before the process is given up.
    EXPECT_DEATH(
        {
          std::set_new_handler([] { std::fputs("handler;", stderr); });
          allocate(unsatisfiable);
        },
        "^handler;\\*\\*\\* Error: out of memory");
  }
}

TEST(MemoryEnds, TheProcessAtARequestThatNoRegionHolds) {
  for (unsigned int used : {0u, 480u})
    for (unsigned int size : {496u, 497u, 2147483648u, unsatisfiable - 479, unsatisfiable}) {
      HYLBasMemTruePool pool(101, "HYLBasMemRegionAllocator", nullptr);
      pool.Alloc(used);
      EXPECT_DEATH(pool.Alloc(size), "cannot hold a request of " + std::to_string(size) + " bytes");
      EXPECT_NE(pool.Alloc(495), nullptr);
    }
}

constexpr unsigned long long noLimit = ~0ull;

#if defined(_WIN32)
void LimitAddressSpace(unsigned long long /*bytes*/) {}
bool AddressSpaceCanBeLimited() { return false; }
#else
void LimitAddressSpace(unsigned long long bytes) {
  rlimit limit;
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = static_cast<rlim_t>(std::min<unsigned long long>(bytes, limit.rlim_max));
  setrlimit(RLIMIT_AS, &limit);
}

// The address sanitizer needs all of it; emulators of a processor take a limit without keeping to
// it.
bool AddressSpaceCanBeLimited() {
  if (HYLBAS_ADDRESS_SANITIZER) return false;
  LimitAddressSpace(1ull << 31);
  rlimit limit;
  getrlimit(RLIMIT_AS, &limit);
  LimitAddressSpace(noLimit);
  return limit.rlim_cur != RLIM_INFINITY;
}
#endif

// Allocates under a limit that only the new handler lifts; the process's exit code tells.
[[noreturn]] void AllocateWithTheHandlersHelp() {
  static int calls = 0;
  LimitAddressSpace(256u << 20);
  std::set_new_handler([] {
    ++calls;
    LimitAddressSpace(noLimit);
  });
  void* const block = mem_Malloc_Handled(512u << 20);
  std::_Exit(block != nullptr && calls == 1 ? 0 : 1);
}

TEST(MemoryEnds, NothingWhereTheHandlerFindsSome) {
  if (!AddressSpaceCanBeLimited()) GTEST_SKIP() << "the address space cannot be limited here";
  EXPECT_EXIT(AllocateWithTheHandlersHelp(), testing::ExitedWithCode(0), "");
}

TEST(Pool, TellsItsNameAndHasTheFlagInItsFirstByte) {
  HYLBasMemPoolVector pool;
  EXPECT_NE(pool.PoolID(), Pool().PoolID());
  EXPECT_STRNE(pool.PoolName(), Pool().PoolName());
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

} // namespace
