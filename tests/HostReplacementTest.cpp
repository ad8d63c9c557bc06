// A program that defines the host's services itself: the library must call these definitions, from
// its very first initialisation on, which comes before any constructor of this program.
#include <cstddef>
#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "HYLBasAllocationOperators.h"
#include "HYLBasGenericsAllocator.h"
#include "HYLBasGenericsLib.h"
#include "HYLBasMicroAllocator.h"
#include "HYLBasNodeAllocator.h"
#include "HYLBasNodeTrackingAllocator.h"
#include "HYLBasSmallNodeTrackingAllocator.h"
#include "HYLBasSortSpecial.h"
#include "HYLBasVectorAllocator.h"
#include "HYLBasVectorTrackingAllocator.h"
#include "LUXCORE.h"
#include "TARNHYLBasAlloc.h"

namespace {

struct Call {
  char const* name;
  unsigned int size;
};

constexpr unsigned int mostCalls = 100;
constinit Call calls[mostCalls] = {};
constinit unsigned int callCount = 0;
constinit bool poolIsThere = true;

void Record(char const* name, unsigned int size = 0) {
  if (callCount != mostCalls) calls[callCount++] = {name, size};
}

std::string Recorded() {
  std::string text;
  for (unsigned int i = 0; i != callCount; ++i) {
    text += calls[i].name;
    if (calls[i].size != 0) text += '(' + std::to_string(calls[i].size) + ')';
    text += ' ';
  }
  callCount = 0;
  return text;
}

alignas(16) char block[64]; // what every allocation here returns

template <class Pool>
Pool& TestPool() {
  alignas(Pool) static char place[sizeof(Pool)] = {};
  return reinterpret_cast<Pool&>(place);
}

char poolName[] = "of the test program";

} // namespace

void* mem_Malloc_Handled(unsigned int size) {
  Record("Malloc_Handled", size);
  return block;
}

void* mem_Malloc(unsigned int size) {
  Record("Malloc", size);
  return block;
}

void mem_Free(void* p) { Record(p == nullptr ? "Free(null)" : p == block ? "Free" : "Free(?)"); }

void* mem_OperatorNewThrow(unsigned int size) {
  Record("NewThrow", size);
  return block;
}

void* mem_OperatorNewThrowBuiltin(unsigned int size) {
  Record("NewThrowBuiltin", size);
  return block;
}

void HYLBasAlloc_initialize(int& tally) {
  Record("initialize", static_cast<unsigned int>(tally)); // what was counted before
  tally += 100;
}

void HYLBasAlloc_finalize(int& tally) {
  Record("finalize", static_cast<unsigned int>(-tally));
  tally -= 100;
}

void* HYLBasMemPool::Alloc(unsigned int size) {
  Record(m_active ? "Pool::Alloc" : "Pool::Alloc before Activate", size);
  return block;
}

unsigned int HYLBasMemPool::Free(void* p) {
  Record(p == block ? "Pool::Free" : "Pool::Free(?)");
  return 1;
}

unsigned int HYLBasMemPool::MemoryCurrent() { return 11; }

unsigned int HYLBasMemPool::MemoryPeak() { return 12; }

int HYLBasMemPool::PoolID() { return -13; }

char* HYLBasMemPool::PoolName() { return poolName; }

template <>
HYLBasMemPoolMap& omi_Singleton<HYLBasMemPoolMap>::Instance() {
  Record("Map");
  return TestPool<HYLBasMemPoolMap>();
}

template <>
__attribute__((no_sanitize("undefined"))) HYLBasMemPoolVector&
omi_Singleton<HYLBasMemPoolVector>::Instance() {
  Record("Vector");
  HYLBasMemPoolVector* volatile const pool =
      poolIsThere ? &TestPool<HYLBasMemPoolVector>() : nullptr;
  return *pool;
}

void QELFatalError(char const* message, char const*, char const*, char const*, char const*, int) {
  Record(message);
}

namespace {

std::string const recordedBeforeMain = Recorded();

TEST(HostReplacement, LoadingStartsTheLayersInOrder) {
  EXPECT_EQ(recordedBeforeMain, "initialize(1) Vector ");
  EXPECT_EQ(HYLBasVectorTrackingAllocator::m_pool, &TestPool<HYLBasMemPoolVector>());
}

TEST(HostReplacement, StopAndStartCallTheMemoryLibraryWithTheCallersTally) {
  int tally = 0;
  HYLBasGenericsLib_finalize(tally);
  EXPECT_EQ(tally, -103);
  EXPECT_EQ(Recorded(), "finalize(3) ");
  HYLBasGenericsLib_initialize(tally);
  EXPECT_EQ(tally, 0);
  EXPECT_EQ(Recorded(), "initialize(4294967194) Vector "); // -103 and the whole library's 1
}

TEST(HostReplacement, PoliciesCallTheMemoryLibrary) {
  HYLBasVectorAllocator::deallocate(HYLBasVectorAllocator::allocate(1), 99);
  HYLBasNodeAllocator::deallocate(HYLBasNodeAllocator::allocate(2), 99);
  HYLBasNodeAllocator::allocate(-1);
  HYLBasMicroAllocator::Free(HYLBasMicroAllocator::Alloc(-2));
  EXPECT_EQ(Recorded(), "Malloc_Handled(1) Free Malloc_Handled(2) Free "
                        "Malloc_Handled(4294967295) Malloc(4294967294) Free ");

  HYLBasVectorTrackingAllocator const vectors;
  vectors.deallocate(vectors.allocate(3));
  vectors.deallocate(vectors.allocate(4), 99);
  HYLBasNodeTrackingAllocator const nodes;
  HYLBasNodeTrackingAllocator::deallocate(HYLBasNodeTrackingAllocator::allocate(-5), 99);
  EXPECT_EQ(Recorded(), "Pool::Alloc(3) Pool::Free Pool::Alloc(4) Pool::Free "
                        "Map Pool::Alloc(4294967291) Pool::Free ");
  EXPECT_EQ(HYLBasNodeTrackingAllocator::m_pool, &TestPool<HYLBasMemPoolMap>());
  EXPECT_EQ(HYLBasSmallNodeTrackingAllocator::m_pool, nullptr);
  static_assert(sizeof(HYLBasGenericsAllocator) == 1);

  EXPECT_EQ(vectors.MemoryCurrent(), 11u);
  EXPECT_EQ(vectors.MemoryPeak(), 12u);
  EXPECT_EQ(vectors.PoolID(), -13);
  EXPECT_EQ(vectors.PoolName(), poolName);
}

TEST(HostReplacement, OperatorsCallTheMemoryLibraryWithSizesThatFit32Bits) {
  struct Object : mem_AllocationOperators {
    char bytes[24];
  };
  delete new Object;
  mem_deleteBuiltIn(new (e_builtInAlloc) int[5]);
  mem_deleteBuiltIn(new (e_builtInAlloc) double[6]);
  mem_deleteBuiltIn(static_cast<int*>(nullptr));
  EXPECT_EQ(Recorded(), "NewThrow(24) Free NewThrowBuiltin(20) Free NewThrowBuiltin(48) Free "
                        "Free(null) ");
  if (sizeof(std::size_t) > 4) {
    std::size_t const wrapsTo8 = (static_cast<std::size_t>(1) << (sizeof(std::size_t) * 4)) + 8;
    mem_AllocationOperators::operator new(wrapsTo8);
    ::operator new[](wrapsTo8, e_builtInAlloc);
    EXPECT_EQ(Recorded(), "NewThrow(4294967295) NewThrowBuiltin(4294967295) ");
  }
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

TEST(HostReplacement, MissingVectorPoolIsReportedAndThrown) {
  HYLBasMemPoolVector* const kept = HYLBasVectorTrackingAllocator::m_pool;
  HYLBasVectorTrackingAllocator::Verify();
  poolIsThere = false;
  ReportsAndThrows(HYLBasVectorTrackingAllocator::Initialize,
                   "Initialization of HYLBasVectorTrackingAllocator failed");
  EXPECT_EQ(HYLBasVectorTrackingAllocator::m_pool, nullptr);
  EXPECT_EQ(Recorded(), "Vector ");
  ReportsAndThrows(HYLBasVectorTrackingAllocator::Verify,
                   "HYLBasVectorTrackingAllocator is used before it is initialized");
  poolIsThere = true;
  HYLBasVectorTrackingAllocator::m_pool = kept;
}

TEST(HostReplacement, FatalErrorsReachTheProgram) {
  int one[1] = {};
  HYLBasSort2Special(one, one, one, one + 1);
  EXPECT_EQ(Recorded(), "AssertionFailed:arraySize == arraySecondEnd - arraySecondBegin ");
}

TEST(HostReplacement, RegionPoolAsksNothingOfTheGeneralHeap) {
  HYLBasMemTruePool pool(101, "HYLBasMemRegionAllocator", nullptr);
  std::memset(pool.Alloc(495), 1, 495);
  EXPECT_EQ(Recorded(), "");
}

} // namespace
