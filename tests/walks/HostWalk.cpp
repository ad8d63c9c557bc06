// The library in a host whose services are this program's: starts and stops beside a model of the
// counts, every call that the allocator policies and operators make, and the exported forms of
// operator new. The first calls come before any constructor of the program.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

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
#include "support/SharedLibraries.h"
#include "walks/Choices.h"

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

// --- Starts and stops

enum Layer { library, generics, specific, nothing };

#if !defined(_WIN32) // where it is the loader's alone
template <unsigned int reason>
void Notify(int& /*tally*/) {
  EXPECT_EQ(DllMain(nullptr, reason, nullptr), 1);
}
#endif

struct EntryPoints {
  void (*start)(int&), (*stop)(int&);
  Layer layer;
  int tally; // 0 is the caller's, the others are the library's own
} constexpr entryPoints[] = {
    {HYLBasGenericsLib_initialize, HYLBasGenericsLib_finalize, library, 0},
    {HYLBasGenerics_initialize, HYLBasGenerics_finalize, generics, 0},
    {HYLBasGenericsLib_specific_initialize, HYLBasGenericsLib_specific_finalize, specific, 0},
    {[](int&) { HYLBasGenericsLib_initializeC(); }, [](int&) { HYLBasGenericsLib_finalizeC(); },
     library, 1},
#if !defined(_WIN32)
    {Notify<1>, Notify<0>, library, 2},
    {Notify<2>, Notify<3>, nothing, 2}, // threads that come and go
#endif
};

// Since the library was loaded.
struct {
  int counts[4] = {1, 1, 1, 1}; // of the layers
  int tallies[3] = {0, 0, 103};
  int held[std::size(entryPoints)] = {1}; // starts that these may stop: at first, the loader's
  std::string calls = {};

  void Start(Layer layer, int& tally) {
    if (counts[layer]++ != 0) return;
    ++tally;
    if (layer == generics) calls += "Vector(0) ";
    if (layer != library) return;
    calls += "initialize(" + std::to_string(tally) + ") ";
    tally += 100;
    Start(generics, tally), Start(specific, tally);
  }
  void Stop(Layer layer, int& tally) {
    if (--counts[layer] != 0) return;
    --tally;
    if (layer != library) return;
    Stop(specific, tally), Stop(generics, tally);
    calls += "finalize(" + std::to_string(tally) + ") ";
    tally -= 100;
  }
} model;

void Step(std::size_t k, bool starts) {
  static int tally = 0;
  auto const [start, stop, layer, modelled] = entryPoints[k];
  auto* const pool = &ThePool<HYLBasMemPoolVector>();
  auto* const before = reinterpret_cast<HYLBasMemPoolVector*>(block);
  auto& isActive = reinterpret_cast<bool&>(*pool); // the flag is the first byte
  isActive = false;
  HYLBasVectorTrackingAllocator::m_pool = before;
  (starts ? start : stop)(tally);
  starts ? model.Start(layer, model.tallies[modelled]) : model.Stop(layer, model.tallies[modelled]);
  model.held[k] += starts ? 1 : -1;
  bool const prepares = model.calls.find("Vector") != std::string::npos;
  EXPECT_EQ(Recorded(), std::exchange(model.calls, ""));
  EXPECT_EQ(tally, model.tallies[0]);
  EXPECT_EQ(isActive, prepares);
  EXPECT_EQ(HYLBasVectorTrackingAllocator::m_pool, prepares ? pool : before);
}

} // namespace

WALK(40, 200) {
  EXPECT_EQ(recordedBeforeMain, "initialize(1) Vector(0) ");
  while (choices.More()) {
    unsigned int const k = choices.Below(std::size(entryPoints));
    Step(k, choices.OneIn(2) || model.held[k] == 0);
  }
  for (std::size_t k = 0; k != std::size(entryPoints); ++k)
    while (model.held[k] != (k == 0 ? 1 : 0))
      Step(k, model.held[k] == 0);
  HYLBasVectorTrackingAllocator::Initialize();
  Recorded();
}

namespace {

// --- Policies and operators

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

void ReportsAndThrows(void (*function)(), std::string const& text) {
  testing::internal::CaptureStderr();
  std::string thrown;
  try {
    function();
  } catch (char const* message) {
    thrown = message;
  }
  EXPECT_EQ(thrown, text);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "*** Error: " + text + ".\n");
}

TEST(Policies, ReportAMissingPool) {
  HYLBasVectorTrackingAllocator::Verify();
  poolIsThere = false;
  ReportsAndThrows(HYLBasVectorTrackingAllocator::Initialize,
                   "Initialization of HYLBasVectorTrackingAllocator failed");
  ReportsAndThrows(HYLBasVectorTrackingAllocator::Verify,
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
  int number = 7;
  operator delete(block, &number, e_placement);
  EXPECT_TRUE(operator new(SIZE_MAX, &number, e_placement) == &number&& number == 7);
}

// A form of operator new by the address that the library exports: the compiler may not assume
// anything about it then, and a sanitizer's own replacement does not stand in for it. The name's
// fifth letter is that of the size type.
template <class... More>
void* Exported(std::string name, std::size_t size, More... more) {
  name[4] = sizeof(std::size_t) == 4 ? 'j' : sizeof(long) == 4 ? 'y' : 'm';
  void* const symbol = SymbolOf(LoadedLibrary(HYLBAS_LIBRARY_FILE), name.c_str());
  return reinterpret_cast<void* (*)(std::size_t, More...)>(symbol)(size, more...);
}
// The same for the process's own.
[[maybe_unused]] auto Unknown(void* (*form)(std::size_t)) {
  auto* volatile const unknown = form;
  return unknown;
}
using File = char const*;
static_assert(noexcept(::operator new(1, 1, File(), 7)) && noexcept(::operator new[](1, 1, File(),
                                                                                     7)));

struct Form {
  char const* name;
  void* (*allocate)(std::size_t size);
  bool throws;
} const forms[] = {
    {"debug", [](std::size_t n) { return Exported("_Znw?iPKci", n, 1, File("a.cpp"), 7); }, false},
    {"debug[]", [](std::size_t n) { return Exported("_Zna?iPKci", n, 1, File("a.cpp"), 7); },
     false},
#if HYLBAS_EXPORT_GLOBAL_NEW
    {"plain", [](std::size_t n) { return Exported("_Znw?", n); }, true},
    {"plain[]", [](std::size_t n) { return Exported("_Zna?", n); }, true},
#if !HYLBAS_ADDRESS_SANITIZER // which has its own
    {"process", [](std::size_t n) { return Unknown(::operator new)(n); }, true},
    {"process[]", [](std::size_t n) { return Unknown(::operator new[])(n); }, true},
#endif
#endif
};

TEST(GlobalNew, AllocatesFromTheRuntimeHeapOrCallsTheHandler) {
  std::size_t volatile const tooMuch = SIZE_MAX - 64; // unseen: compilers refuse such requests
  static int handlerCalls;
  for (Form const& form : forms) {
    SCOPED_TRACE(form.name);
    void *const some = form.allocate(100), *const empty = form.allocate(0);
    std::memset(some, 1, 100);
    std::free(some);
    void* const likeMalloc = std::malloc(0);
    EXPECT_EQ(empty == nullptr, likeMalloc == nullptr);
    std::free(empty);
    std::free(likeMalloc);

    EXPECT_EQ(form.allocate(tooMuch), nullptr);
    handlerCalls = 0;
    std::set_new_handler([] {
      if (++handlerCalls == 3) std::set_new_handler(nullptr);
    });
    EXPECT_EQ(form.allocate(tooMuch), nullptr);
    EXPECT_EQ(handlerCalls, 3);
#if defined(_WIN32)
    // The C runtime's own: memory is tried again while it answers other than 0.
    handlerCalls = 0;
    using Handler = int (*)(std::size_t);
    auto* const setHandler = reinterpret_cast<Handler (*)(Handler)>(
        SymbolOf(LoadedLibrary("msvcrt.dll"), "?_set_new_handler@@YAP6AH_K@ZP6AH0@Z@Z"));
    ASSERT_NE(setHandler, nullptr);
    setHandler([](std::size_t) { return ++handlerCalls == 3 ? 0 : 1; });
    EXPECT_EQ(form.allocate(tooMuch), nullptr);
    EXPECT_EQ(handlerCalls, 3);
    setHandler(nullptr);
#endif
    std::set_new_handler([] { throw std::bad_alloc(); });
    EXPECT_EQ(::operator new(tooMuch, std::nothrow), nullptr);
    if (form.throws) {
      EXPECT_THROW(form.allocate(tooMuch), std::bad_alloc);
    } else {
      EXPECT_EQ(form.allocate(tooMuch), nullptr);
    }
    std::set_new_handler(nullptr);
  }
}

} // namespace
