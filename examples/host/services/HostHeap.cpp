// The general heap of this host's memory library: every block is counted, and a budget says when
// memory is exhausted. Not safe for several threads at once, as little as the host is.
#include "HostHeap.h"

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

// A block's size stands in front of it; as long as the strictest alignment.
constexpr unsigned int header = alignof(std::max_align_t);

host::HeapUse inUse{0, 0};
unsigned long long budget = ~0ull;

void* TryAllocate(unsigned int size) {
  // This size is what callers pass for a product that does not fit: never to be had.
  if (size == 4294967295u || inUse.bytes + size > budget) return nullptr;
  void* const start = std::malloc(std::size_t{size} + header);
  if (start == nullptr) return nullptr;
  *static_cast<unsigned int*>(start) = size;
  inUse.bytes += size;
  ++inUse.blocks;
  return static_cast<char*>(start) + header;
}

// With the help of the new handler; null when there is none.
void* AllocateWithHandler(unsigned int size) {
  for (;;) {
    if (void* const block = TryAllocate(size)) return block;
    std::new_handler const handler = std::get_new_handler();
    if (handler == nullptr) return nullptr;
    handler();
  }
}

} // namespace

host::HeapUse host::InUse() { return inUse; }

void host::SetBudget(unsigned long long bytes) { budget = bytes; }

void* mem_Malloc_Handled(unsigned int size) {
  if (void* const block = AllocateWithHandler(size)) return block;
  std::fprintf(stderr, "host: out of memory at a request of %u bytes\n", size);
  std::abort();
}

void* mem_Malloc(unsigned int size) { return TryAllocate(size); }

void mem_Free(void* block) {
  if (block == nullptr) return;
  void* const start = static_cast<char*>(block) - header;
  inUse.bytes -= *static_cast<unsigned int*>(start);
  --inUse.blocks;
  std::free(start);
}

void* mem_OperatorNewThrow(unsigned int size) {
  if (void* const block = AllocateWithHandler(size)) return block;
  throw std::bad_alloc();
}

void* mem_OperatorNewThrowBuiltin(unsigned int size) { return mem_OperatorNewThrow(size); }

void HYLBasAlloc_initialize(int&) {} // the heap works from the start
void HYLBasAlloc_finalize(int&) {}
