// The memory library of this repository: its heap, pools and region pools beside lists of what was
// handed out. HostTest shows which of its functions the allocator policies call.
#include <cstdint>
#include <cstring>

#include "LUXCORE.h"
#include "TARNHYLBasAlloc.h"
#include "support/Aborted.h"
#include "support/SanitizerOptions.h"
#include "walks/Choices.h"

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

namespace {

constexpr unsigned int unsatisfiable = 4294967295u;

using Allocate = void*(unsigned int bytes);
Allocate* const heap[] = {mem_Malloc_Handled, mem_Malloc, mem_OperatorNewThrow,
                          mem_OperatorNewThrowBuiltin};

// A pool with what it should say of itself.
struct PoolAndModel {
  HYLBasMemPoolVector pool;
  unsigned int current = 0, peak = 0;
};

// Memory of a pool, or else of the heap or of a region, that keeps its own byte.
struct Piece {
  unsigned char* start;
  unsigned int size;
  unsigned char byte;
  PoolAndModel* owner;

  Piece(void* p, unsigned int n, unsigned int number, PoolAndModel* pool = nullptr)
      : start(static_cast<unsigned char*>(p)), size(n), byte(static_cast<unsigned char>(number)),
        owner(pool) {
    std::memset(start, byte, size);
    if (pool != nullptr) pool->peak = std::max(pool->peak, pool->current += size);
  }
  bool IsAligned() const {
    return reinterpret_cast<std::uintptr_t>(start) % alignof(std::max_align_t) == 0;
  }
  void ExpectKept() const { ASSERT_EQ(std::count(start, start + size, byte), size); }
  void Release() const {
    ExpectKept();
    if (owner == nullptr) return mem_Free(start);
    owner->current -= size;
    EXPECT_EQ(owner->pool.Free(start), size);
  }
};

// A region pool with the pieces handed out; a piece that fits lies behind the one before.
struct RegionAndModel {
  HYLBasMemTruePool pool{101, "HYLBasMemRegionAllocator", nullptr};
  std::vector<Piece> pieces;
  unsigned int used = 496;

  void Allocate(unsigned int n, unsigned int number) {
    Piece const piece(number % 2 ? pool.Alloc(n) : pool.allocate(n), n, number);
    bool const fits = used + n < 496;
    ASSERT_TRUE(fits ? piece.start == pieces.back().start + pieces.back().size : piece.IsAligned());
    used = fits ? used + n : n;
    pieces.push_back(piece);
    EXPECT_EQ(pool.deallocate(piece.start, static_cast<int>(n)), 0u);
  }
};

} // namespace

WALK(40, 3000) {
  PoolAndModel pools[2];
  RegionAndModel regions[2];
  std::vector<Piece> pieces; // not of regions
  std::set_new_handler([] { throw std::bad_alloc(); });
  for (unsigned int number = 0; choices.More(); ++number) {
    unsigned int const action = choices.Below(16), n = choices.Below(496);
    unsigned int const size = choices.OneIn(16) ? 200 * n : n;
    PoolAndModel& some = choices.Of(pools);
    RegionAndModel& region = choices.Of(regions);
    Allocate* const allocate = choices.Of(heap);
    if (action < 6) region.Allocate(action < 3 ? n : n % 41, number);
    if (action == 6) std::swap(regions[0].pieces, regions[1].pieces);
    if (action == 6) std::swap(regions[0].used, regions[1].used);
    if (action == 6) regions[0].pool.Swap(regions[1].pool);
    if (action == 7) pieces.emplace_back(some.pool.Alloc(size), size, number, &some);
    if (action == 8) pieces.emplace_back(allocate(size), size, number);
    ASSERT_TRUE(pieces.empty() || pieces.back().IsAligned());
    if (action > 8 && action < 12 && !pieces.empty()) {
      std::swap(pieces[n % pieces.size()], pieces.back());
      pieces.back().Release();
      pieces.pop_back();
    }
    if (action == 12) { // what no memory satisfies changes nothing
      EXPECT_THROW(some.pool.Alloc(unsatisfiable), std::bad_alloc);
      EXPECT_EQ(mem_Malloc(unsatisfiable), nullptr);
      if (allocate != mem_Malloc) {
        EXPECT_THROW(allocate(unsatisfiable), std::bad_alloc);
      }
    }
    mem_Free(nullptr);
    EXPECT_EQ(some.pool.Free(nullptr), 0u);
    EXPECT_EQ(some.pool.MemoryCurrent(), some.current);
    EXPECT_EQ(some.pool.MemoryPeak(), some.peak);
  }
  std::set_new_handler(nullptr);
  for (RegionAndModel const& region : regions)
    for (Piece const& piece : region.pieces)
      piece.ExpectKept();
  for (Piece const& piece : pieces)
    piece.Release();
}

namespace {

HYLBasMemPoolMap& Pool() { return omi_Singleton<HYLBasMemPoolMap>::Instance(); }
void* FromPool(unsigned int bytes) { return Pool().Alloc(bytes); }

TEST(MemoryEnds, TheProcessWithAReportWhereCallersDoNotCope) {
  for (Allocate* const allocate : {mem_Malloc_Handled, FromPool}) {
    EXPECT_DEATH(allocate(unsatisfiable), "out of memory \\(4294967295 bytes");
    // The handler is asked before the process is given up.
    auto const allocateWithHandler = [&] {
      std::set_new_handler([] { std::fputs("handler;", stderr); });
      allocate(unsatisfiable);
    };
    EXPECT_DEATH(allocateWithHandler(), "^handler;\\*\\*\\* Error: out of memory");
  }
  for (unsigned int used : {0u, 480u})
    for (unsigned int size : {496u, 497u, 2147483648u, unsatisfiable - 479, unsatisfiable}) {
      HYLBasMemTruePool pool(101, "HYLBasMemRegionAllocator", nullptr);
      pool.Alloc(used);
      EXPECT_DEATH(pool.Alloc(size), "cannot hold a request of " + std::to_string(size) + " bytes");
      EXPECT_NE(pool.Alloc(495), nullptr);
    }
  EXPECT_EXIT(QELFatalError("message", nullptr, nullptr, nullptr, "path", 7), Aborted(),
              "message\n  at path:7");
}

#if !defined(_WIN32)
// Returns what is the limit then.
rlim_t LimitAddressSpace(rlim_t bytes) {
  rlimit limit;
  getrlimit(RLIMIT_AS, &limit);
  limit.rlim_cur = std::min(bytes, limit.rlim_max);
  setrlimit(RLIMIT_AS, &limit);
  getrlimit(RLIMIT_AS, &limit);
  return limit.rlim_cur;
}

// Under a limit that only the new handler lifts; the process's exit code tells.
[[noreturn]] void AllocateWithTheHandlersHelp() {
  static int calls = 0;
  LimitAddressSpace(256u << 20);
  std::set_new_handler([] {
    ++calls;
    LimitAddressSpace(RLIM_INFINITY);
  });
  for (int i = 0; i != 1000000; ++i) // each gives back what it took
    HYLBasMemTruePool(101, "HYLBasMemRegionAllocator", nullptr).Alloc(1);
  bool const asksInVain = calls != 0;
  void* const block = mem_Malloc_Handled(512u << 20);
  std::_Exit(block != nullptr && calls == 1 && !asksInVain ? 0 : 1);
}

TEST(MemoryEnds, NothingWhereTheHandlerFindsSome) {
  if (HYLBAS_ADDRESS_SANITIZER) GTEST_SKIP() << "which needs the whole address space";
  bool const isKept = LimitAddressSpace(1u << 31) != RLIM_INFINITY;
  LimitAddressSpace(RLIM_INFINITY);
  if (!isKept) GTEST_SKIP() << "this emulator of a processor does not limit the address space";
  EXPECT_EXIT(AllocateWithTheHandlersHelp(), testing::ExitedWithCode(0), "");
}
#endif

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
  void* const blocks[] = {pool.Alloc(size), pool.Alloc(size)};
  for (unsigned int expected : {unsatisfiable, size}) {
    EXPECT_EQ(pool.MemoryCurrent(), expected);
    EXPECT_EQ(pool.Free(blocks[expected == size]), size);
  }
  EXPECT_EQ(pool.MemoryCurrent(), 0u);
  EXPECT_EQ(pool.MemoryPeak(), unsatisfiable);
}

} // namespace
