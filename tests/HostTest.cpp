// The library in a host whose services are this program's: every call that starts and stops,
// allocator policies and operators make, and the exported forms of operator new. The first calls
// come before any constructor of the program.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "HYLBasAllocationOperators.h"
#include "HYLBasGenericsAllocator.h"
#include "HYLBasGenericsLib.h"
#include "HYLBasMicroAllocator.h"
#include "HYLBasNodeAllocator.h"
#include "HYLBasNodeTrackingAllocator.h"
#include "HYLBasSmallNodeTrackingAllocator.h"
#include "HYLBasVectorAllocator.h"
#include "HYLBasVectorTrackingAllocator.h"
#include "TARNHYLBasAlloc.h"
#include "support/SanitizerOptions.h"

#if defined(_WIN32)
#include <windows.h>
#endif

namespace {

constinit char calls[400] = "";
constinit bool poolIsThere = true;
alignas(16) char block[64]; // what every allocation here returns
char poolName[] = "of the test program";

void Record(char const* name, long long number) {
  std::size_t const used = std::strlen(calls);
  std::snprintf(calls + used, sizeof calls - used, "%s(%lld) ", name, number);
}
void* Give(char const* name, unsigned int size) {
  Record(name, size);
  return block;
}
std::string Recorded() {
  std::string const recorded = calls;
  calls[0] = '\0';
  return recorded;
}

template <class Pool>
Pool& ThePool() {
  alignas(Pool) static char place[sizeof(Pool)] = {};
  return reinterpret_cast<Pool&>(place);
}

} // namespace

void* mem_Malloc_Handled(unsigned int size) { return Give("Malloc_Handled", size); }
void* mem_Malloc(unsigned int size) { return Give("Malloc", size); }
void* mem_OperatorNewThrow(unsigned int size) { return Give("NewThrow", size); }
void* mem_OperatorNewThrowBuiltin(unsigned int size) { return Give("NewThrowBuiltin", size); }
void mem_Free(void* p) { Record("Free", p == block ? 1 : p == nullptr ? 0 : 2); }

void HYLBasAlloc_initialize(int& tally) {
  Record("initialize", tally);
  tally += 100;
}
void HYLBasAlloc_finalize(int& tally) {
  Record("finalize", tally);
  tally -= 100;
}

void* HYLBasMemPool::Alloc(unsigned int size) {
  return Give(m_active ? "Pool::Alloc" : "Pool::Alloc before Activate", size);
}
unsigned int HYLBasMemPool::Free(void* p) {
  Record("Pool::Free", p == block);
  return 1;
}
unsigned int HYLBasMemPool::MemoryCurrent() { return 11; }
unsigned int HYLBasMemPool::MemoryPeak() { return 12; }
int HYLBasMemPool::PoolID() { return -13; }
char* HYLBasMemPool::PoolName() { return poolName; }

template <>
HYLBasMemPoolMap& omi_Singleton<HYLBasMemPoolMap>::Instance() {
  Record("Map", 0);
  return ThePool<HYLBasMemPoolMap>();
}
template <>
__attribute__((no_sanitize("undefined"))) HYLBasMemPoolVector&
omi_Singleton<HYLBasMemPoolVector>::Instance() {
  Record("Vector", 0);
  HYLBasMemPoolVector* volatile const pool =
      poolIsThere ? &ThePool<HYLBasMemPoolVector>() : nullptr;
  return *pool;
}

namespace {

std::string const recordedBeforeMain = Recorded();

template <unsigned int reason>
void Notify(int& /*tally*/) {
#if !defined(_WIN32) // where it is the loader's alone
  EXPECT_EQ(DllMain(nullptr, reason, nullptr), 1);
#endif
}
void InitializeC(int& /*tally*/) { HYLBasGenericsLib_initializeC(); }
void FinalizeC(int& /*tally*/) { HYLBasGenericsLib_finalizeC(); }

struct {
  void (*call)(int& tally);
  int tally; // after the call
  char const* calls = "";
} const steps[] = {
    {HYLBasGenericsLib_initialize, 0}, // while the loader holds everything
    {HYLBasGenericsLib_finalize, 0},
    {HYLBasGenerics_initialize, 0},
    {HYLBasGenerics_finalize, 0},
    {HYLBasGenericsLib_specific_initialize, 0},
    {HYLBasGenericsLib_specific_finalize, 0},
    {InitializeC, 0},
    {FinalizeC, 0},
    {HYLBasGenericsLib_finalize, -103, "finalize(-3) "},
    {HYLBasGenericsLib_specific_initialize, -102}, // layers by themselves
    {HYLBasGenericsLib_specific_initialize, -102},
    {HYLBasGenerics_initialize, -101, "Vector(0) "},
    {HYLBasGenerics_initialize, -101},
    {HYLBasGenericsLib_initialize, 0, "initialize(-100) "}, // the other layers only
    {HYLBasGenericsLib_initialize, 0},
    {HYLBasGenericsLib_finalize, 0},
    {HYLBasGenericsLib_finalize, -101, "finalize(-1) "},
    {HYLBasGenerics_finalize, -101},
    {HYLBasGenerics_finalize, -102},
    {HYLBasGenericsLib_specific_finalize, -102},
    {HYLBasGenericsLib_specific_finalize, -103},
    {InitializeC, -103, "initialize(1) Vector(0) "}, // with tallies of the library's own
    {FinalizeC, -103, "finalize(100) "},
#if !defined(_WIN32)
    {Notify<2>, -103}, // threads that come and go
    {Notify<3>, -103},
    {Notify<1>, -103, "initialize(104) Vector(0) "},
    {Notify<2>, -103},
    {Notify<3>, -103},
    {Notify<0>, -103, "finalize(203) "},
#endif
    {HYLBasGenericsLib_initialize, 0, "initialize(-102) Vector(0) "},
};

TEST(Lifecycle, StartsAndStopsTheLayersInOrder) {
  EXPECT_EQ(recordedBeforeMain, "initialize(1) Vector(0) ");
  auto& pool = ThePool<HYLBasMemPoolVector>();
  auto& isActive = reinterpret_cast<bool&>(pool); // the flag is the first byte
  auto* const before = reinterpret_cast<HYLBasMemPoolVector*>(block);
  int tally = 0;
  for (auto const& step : steps) {
    SCOPED_TRACE(&step - steps);
    bool const fetches = std::strstr(step.calls, "Vector") != nullptr;
    HYLBasVectorTrackingAllocator::m_pool = before;
    isActive = false;
    step.call(tally);
    EXPECT_EQ(Recorded(), step.calls);
    EXPECT_EQ(tally, step.tally);
    EXPECT_EQ(HYLBasVectorTrackingAllocator::m_pool, fetches ? &pool : before);
    EXPECT_EQ(isActive, fetches);
  }
}

TEST(Policies, CallTheMemoryLibrary) {
  HYLBasVectorAllocator::deallocate(HYLBasVectorAllocator::allocate(1), 99);
  HYLBasNodeAllocator::deallocate(HYLBasNodeAllocator::allocate(2), 99);
  HYLBasNodeAllocator::allocate(-1);
  HYLBasMicroAllocator::Free(HYLBasMicroAllocator::Alloc(-2));
  EXPECT_EQ(Recorded(), "Malloc_Handled(1) Free(1) Malloc_Handled(2) Free(1) "
                        "Malloc_Handled(4294967295) Malloc(4294967294) Free(1) ");

  HYLBasVectorTrackingAllocator const vectors;
  vectors.deallocate(vectors.allocate(3));
  vectors.deallocate(vectors.allocate(4), 99);
  HYLBasNodeTrackingAllocator const nodes;
  HYLBasNodeTrackingAllocator::deallocate(HYLBasNodeTrackingAllocator::allocate(-5), 99);
  EXPECT_EQ(Recorded(), "Pool::Alloc(3) Pool::Free(1) Pool::Alloc(4) Pool::Free(1) "
                        "Map(0) Pool::Alloc(4294967291) Pool::Free(1) ");
  EXPECT_EQ(HYLBasNodeTrackingAllocator::m_pool, &ThePool<HYLBasMemPoolMap>());
  EXPECT_EQ(HYLBasSmallNodeTrackingAllocator::m_pool, nullptr);
  static_assert(sizeof(HYLBasGenericsAllocator) == 1);
  EXPECT_TRUE(vectors.MemoryCurrent() == 11 && vectors.MemoryPeak() == 12);
  EXPECT_TRUE(vectors.PoolID() == -13 && vectors.PoolName() == poolName);
}

void ExpectFailure(void (*function)(), std::string const& text) {
  testing::internal::CaptureStderr();
  try {
    function();
    ADD_FAILURE() << "nothing is thrown";
  } catch (char const* thrown) {
    EXPECT_EQ(thrown, text);
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "*** Error: " + text + ".\n");
}

TEST(Policies, ReportAMissingPool) {
  HYLBasVectorTrackingAllocator::Verify();
  poolIsThere = false;
  ExpectFailure(HYLBasVectorTrackingAllocator::Initialize,
                "Initialization of HYLBasVectorTrackingAllocator failed");
  ExpectFailure(HYLBasVectorTrackingAllocator::Verify,
                "HYLBasVectorTrackingAllocator is used before it is initialized");
  poolIsThere = true;
  HYLBasVectorTrackingAllocator::Initialize();
  EXPECT_EQ(Recorded(), "Vector(0) Vector(0) ");
}

TEST(Operators, CallTheMemoryLibraryWithSizesThatFit32Bits) {
  struct Object : mem_AllocationOperators {
    char bytes[24];
  };
  delete new Object;
  mem_deleteBuiltIn(new (e_builtInAlloc) int[5]);
  mem_deleteBuiltIn(new (e_builtInAlloc) double[6]);
  mem_deleteBuiltIn(static_cast<int*>(nullptr));
  EXPECT_EQ(Recorded(), "NewThrow(24) Free(1) NewThrowBuiltin(20) Free(1) NewThrowBuiltin(48) "
                        "Free(1) Free(0) ");
  if (sizeof(std::size_t) > 4) {
    std::size_t const wrapsTo8 = (static_cast<std::size_t>(1) << (sizeof(std::size_t) * 4)) + 8;
    mem_AllocationOperators::operator new(wrapsTo8);
    ::operator new[](wrapsTo8, e_builtInAlloc);
    EXPECT_EQ(Recorded(), "NewThrow(4294967295) NewThrowBuiltin(4294967295) ");
  }
  void* volatile const place = block;
  operator delete(place, place, e_placement);
  EXPECT_EQ(operator new(SIZE_MAX, place, e_placement), place);
  EXPECT_EQ(Recorded(), "");
}

static_assert(noexcept(::operator new(1, 1, "a.cpp", 7)));
static_assert(noexcept(::operator new[](1, 1, "a.cpp", 7)));

// Called through pointers of which compilers know nothing: they take for granted that some throw.
struct {
  char const* name;
  void* (*volatile allocate)(std::size_t size);
} const forms[] = {
    {"debug", [](std::size_t size) { return ::operator new(size, 1, "a.cpp", 7); }},
    {"debug[]", [](std::size_t size) { return ::operator new[](size, 1, "a.cpp", 7); }},
#if HYLBAS_EXPORT_GLOBAL_NEW && !HYLBAS_ADDRESS_SANITIZER // which has its own
    {"plain", [](std::size_t size) { return ::operator new(size); }},
    {"plain[]", [](std::size_t size) { return ::operator new[](size); }},
#endif
};

TEST(GlobalNew, AllocatesFromTheRuntimeHeapOrCallsTheHandler) {
  std::size_t volatile const tooMuch = SIZE_MAX - 64; // unseen: compilers refuse such requests
  static int handlerCalls;
  for (auto const& [name, allocate] : forms) {
    SCOPED_TRACE(name);
    void *const some = allocate(100), *const empty = allocate(0);
    std::memset(some, 1, 100);
    std::free(some);
    void* const likeMalloc = std::malloc(0);
    EXPECT_EQ(empty == nullptr, likeMalloc == nullptr);
    std::free(empty);
    std::free(likeMalloc);

    EXPECT_EQ(allocate(tooMuch), nullptr);
    handlerCalls = 0;
    std::set_new_handler([] {
      if (++handlerCalls == 3) std::set_new_handler(nullptr);
    });
    EXPECT_EQ(allocate(tooMuch), nullptr);
    EXPECT_EQ(handlerCalls, 3);
#if defined(_WIN32)
    // The C runtime's own: memory is tried again while it answers other than 0.
    handlerCalls = 0;
    using Handler = int (*)(std::size_t);
    void* const found = reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("msvcrt.dll"), "?_set_new_handler@@YAP6AH_K@ZP6AH0@Z@Z"));
    auto* const setHandler = reinterpret_cast<Handler (*)(Handler)>(found);
    ASSERT_NE(setHandler, nullptr);
    setHandler([](std::size_t) { return ++handlerCalls == 3 ? 0 : 1; });
    EXPECT_EQ(allocate(tooMuch), nullptr);
    EXPECT_EQ(handlerCalls, 3);
    setHandler(nullptr);
#endif
    std::set_new_handler([] { throw std::bad_alloc(); });
    EXPECT_EQ(::operator new(tooMuch, std::nothrow), nullptr);
    if (name[0] == 'p') {
      EXPECT_THROW(allocate(tooMuch), std::bad_alloc);
    } else {
      EXPECT_EQ(allocate(tooMuch), nullptr);
    }
    std::set_new_handler(nullptr);
  }
}

} // namespace
