// The memory library over a heap of its own, beside which the process keeps the C heap.
#include <malloc.h>

#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "TARNHYLBasAlloc.h"

namespace {

constexpr unsigned int size = 1000;
constexpr std::size_t count = 1000;

struct Allocation {
  char const* name;
  bool fromCHeap;
  void* (*allocate)();
  void (*release)(void* block);
};

void* FromMapPool() { return omi_Singleton<HYLBasMemPoolMap>::Instance().Alloc(size); }
void ToMapPool(void* block) { omi_Singleton<HYLBasMemPoolMap>::Instance().Free(block); }

Allocation const allocations[] = {
    {"mem_Malloc", false, [] { return mem_Malloc(size); }, mem_Free},
    {"mem_Malloc_Handled", false, [] { return mem_Malloc_Handled(size); }, mem_Free},
    {"mem_OperatorNewThrow", false, [] { return mem_OperatorNewThrow(size); }, mem_Free},
    {"pool", false, FromMapPool, ToMapPool},
    {"malloc", true, [] { return std::malloc(size); }, std::free},
    {"operator new", true, [] { return ::operator new(size); },
     [](void* block) { ::operator delete(block); }},
};

std::size_t CHeapInUse() {
  struct mallinfo2 const info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

TEST(Heap, IsTheMemoryLibrarysAlone) {
  for (Allocation const& a : allocations) {
    SCOPED_TRACE(a.name);
    std::vector<void*> blocks(count);
    std::size_t const before = CHeapInUse();
    for (void*& block : blocks)
      block = a.allocate();
    std::size_t const taken = CHeapInUse() - before;
    for (void* const block : blocks)
      a.release(block);
    EXPECT_TRUE(a.fromCHeap ? taken >= count * size : taken == 0) << taken;
  }
}

} // namespace
