#include "WatchedMemory.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "TARNHYLBasAlloc.h"

namespace watched_memory {

int liveBlocks = 0;
void* lastBlock = nullptr;
unsigned int lastRequest = 0;
int requestsServed = -1;
unsigned int largestBlock = 1u << 20;

} // namespace watched_memory

using namespace watched_memory;

namespace {

void* Serve(unsigned int size) {
  if (requestsServed == 0) throw std::bad_alloc();
  if (requestsServed > 0) --requestsServed;
  void* const block = std::malloc(std::min(size, largestBlock));
  if (block == nullptr) std::abort();
  ++liveBlocks;
  return block;
}

} // namespace

void* mem_Malloc_Handled(unsigned int size) {
  lastRequest = size;
  lastBlock = Serve(size);
  return lastBlock;
}

void* mem_OperatorNewThrow(unsigned int size) { return Serve(size); }

void mem_Free(void* block) {
  if (block != nullptr) --liveBlocks;
  std::free(block);
}
