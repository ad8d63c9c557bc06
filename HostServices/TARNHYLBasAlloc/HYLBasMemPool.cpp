#include <algorithm>
#include <cstddef>
#include <new>

#include "Exhaustion.h"
#include "TARNHYLBasAlloc.h"

namespace {

// A block's size stands in front of it; the header is as long as the strictest alignment, so that
// the block behind it is aligned like the whole.
constexpr unsigned int headerSize = 16;
static_assert(headerSize % alignof(std::max_align_t) == 0);

char mapPoolName[] = "HYLBasMemPoolMap";
char vectorPoolName[] = "HYLBasMemPoolVector";

unsigned int Reported(unsigned long long bytes) {
  return static_cast<unsigned int>(std::min(bytes, 4294967295ull));
}

// Never destroyed: blocks are still released while the process's libraries are unloaded.
template <class Pool>
Pool& ProcessWide() {
  alignas(Pool) static unsigned char place[sizeof(Pool)];
  static Pool& pool = *new (place) Pool;
  return pool;
}

} // namespace

HYLBasMemPool::HYLBasMemPool(int poolID, char* poolName)
    : m_active(false), m_poolID(poolID), m_poolName(poolName), m_memoryCurrent(0), m_memoryPeak(0) {
}

HYLBasMemPool::~HYLBasMemPool() = default;

void* HYLBasMemPool::Alloc(unsigned int size) {
  auto* const block = static_cast<char*>(hylbas_detail::AllocateHandled(size, headerSize));
  new (block) unsigned int(size);
  m_memoryCurrent += size;
  m_memoryPeak = std::max(m_memoryPeak, m_memoryCurrent);
  return block + headerSize;
}

unsigned int HYLBasMemPool::Free(void* block) {
  if (block == nullptr) return 0;
  char* const start = static_cast<char*>(block) - headerSize;
  unsigned int const size = *std::launder(reinterpret_cast<unsigned int*>(start));
  m_memoryCurrent -= size;
  hylbas_detail::HeapFree(start);
  return size;
}

unsigned int HYLBasMemPool::MemoryCurrent() { return Reported(m_memoryCurrent); }

unsigned int HYLBasMemPool::MemoryPeak() { return Reported(m_memoryPeak); }

int HYLBasMemPool::PoolID() { return m_poolID; }

char* HYLBasMemPool::PoolName() { return m_poolName; }

HYLBasMemPoolMap::HYLBasMemPoolMap() : HYLBasMemPool(1, mapPoolName) {}

HYLBasMemPoolMap::~HYLBasMemPoolMap() = default;

HYLBasMemPoolVector::HYLBasMemPoolVector() : HYLBasMemPool(2, vectorPoolName) {}

HYLBasMemPoolVector::~HYLBasMemPoolVector() = default;

template <>
HYLBasMemPoolMap& omi_Singleton<HYLBasMemPoolMap>::Instance() {
  return ProcessWide<HYLBasMemPoolMap>();
}

template <>
HYLBasMemPoolVector& omi_Singleton<HYLBasMemPoolVector>::Instance() {
  return ProcessWide<HYLBasMemPoolVector>();
}
