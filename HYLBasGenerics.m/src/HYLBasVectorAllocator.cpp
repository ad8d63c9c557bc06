#include "HYLBasVectorAllocator.h"

#include "TARNHYLBasAlloc.h"

void* HYLBasVectorAllocator::allocate(unsigned int bytes) { return mem_Malloc_Handled(bytes); }

void HYLBasVectorAllocator::deallocate(void* p, unsigned int /*bytes*/) { mem_Free(p); }
