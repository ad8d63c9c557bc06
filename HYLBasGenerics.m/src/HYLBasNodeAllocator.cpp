#include "HYLBasNodeAllocator.h"

#include "TARNHYLBasAlloc.h"

void* HYLBasNodeAllocator::allocate(int bytes) {
  return mem_Malloc_Handled(static_cast<unsigned int>(bytes));
}

void HYLBasNodeAllocator::deallocate(void* p, int /*bytes*/) { mem_Free(p); }
