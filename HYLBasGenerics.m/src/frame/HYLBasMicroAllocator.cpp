#include "HYLBasMicroAllocator.h"

#include "TARNHYLBasAlloc.h"

void* HYLBasMicroAllocator::Alloc(int bytes) {
  return mem_Malloc(static_cast<unsigned int>(bytes));
}

void HYLBasMicroAllocator::Free(void* p) { mem_Free(p); }
