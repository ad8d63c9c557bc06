#include <new>

#include "Exhaustion.h"
#include "TARNHYLBasAlloc.h"

void* mem_Malloc_Handled(unsigned int size) {
  if (void* const block = hylbas_detail::TryAllocate(size)) return block;
  return hylbas_detail::AllocateHandled(size);
}

void* mem_Malloc(unsigned int size) { return hylbas_detail::TryAllocate(size); }

void mem_Free(void* block) { hylbas_detail::HeapFree(block); }

void* mem_OperatorNewThrow(unsigned int size) {
  if (void* const block = hylbas_detail::TryAllocate(size)) return block;
  throw std::bad_alloc();
}

void* mem_OperatorNewThrowBuiltin(unsigned int size) { return mem_OperatorNewThrow(size); }
