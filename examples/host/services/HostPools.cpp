// The pools of this host's memory library, over its general heap.
#include <algorithm>
#include <new>

#include "HostHeap.h"

// --- Pools with statistics, whose single blocks are released

namespace {

unsigned int Reported(unsigned long long bytes) {
  return static_cast<unsigned int>(std::min(bytes, 4294967295ull));
}

// A block of a pool has its size in front of it, like the heap's own.
constexpr unsigned int header = 16;

char mapPool[] = "host's map pool", vectorPool[] = "host's vector pool";

} // namespace

HYLBasMemPool::HYLBasMemPool(int poolID, char* poolName)
    : m_active(false), m_poolID(poolID), m_poolName(poolName), m_memoryCurrent(0), m_memoryPeak(0) {
}
HYLBasMemPool::~HYLBasMemPool() = default;

void* HYLBasMemPool::Alloc(unsigned int size) {
  unsigned int const whole = size > 4294967295u - header ? 4294967295u : size + header;
  auto* const start = static_cast<char*>(mem_Malloc_Handled(whole));
  *reinterpret_cast<unsigned int*>(start) = size;
  m_memoryCurrent += size;
  m_memoryPeak = std::max(m_memoryPeak, m_memoryCurrent);
  return start + header;
}

unsigned int HYLBasMemPool::Free(void* block) {
  if (block == nullptr) return 0;
  char* const start = static_cast<char*>(block) - header;
  unsigned int const size = *reinterpret_cast<unsigned int*>(start);
  m_memoryCurrent -= size;
  mem_Free(start);
  return size;
}

unsigned int HYLBasMemPool::MemoryCurrent() { return Reported(m_memoryCurrent); }
unsigned int HYLBasMemPool::MemoryPeak() { return Reported(m_memoryPeak); }
int HYLBasMemPool::PoolID() { return m_poolID; }
char* HYLBasMemPool::PoolName() { return m_poolName; }

HYLBasMemPoolMap::HYLBasMemPoolMap() : HYLBasMemPool(1, mapPool) {}
HYLBasMemPoolMap::~HYLBasMemPoolMap() = default;
HYLBasMemPoolVector::HYLBasMemPoolVector() : HYLBasMemPool(2, vectorPool) {}
HYLBasMemPoolVector::~HYLBasMemPoolVector() = default;

// Never destroyed, because containers are, after everything else of the process may be gone.
template <>
HYLBasMemPoolMap& omi_Singleton<HYLBasMemPoolMap>::Instance() {
  alignas(HYLBasMemPoolMap) static char place[sizeof(HYLBasMemPoolMap)];
  static auto& pool = *new (place) HYLBasMemPoolMap;
  return pool;
}
template <>
HYLBasMemPoolVector& omi_Singleton<HYLBasMemPoolVector>::Instance() {
  alignas(HYLBasMemPoolVector) static char place[sizeof(HYLBasMemPoolVector)];
  static auto& pool = *new (place) HYLBasMemPoolVector;
  return pool;
}

// --- The region pool, whose blocks are released together

HYLBasMemTruePool::HYLBasMemTruePool(int poolNumber, char const* poolName,
                                     HYLBasMemCacheManager* cacheManager)
    : m_blocks(nullptr), m_currentBlock(0), m_used(e_blockEnd), m_blockCount(0), m_blockRoom(0),
      m_poolNumber(poolNumber), m_poolName(poolName), m_cacheManager(cacheManager) {}

HYLBasMemTruePool::~HYLBasMemTruePool() {
  std::for_each(m_blocks, m_blocks + m_blockCount, mem_Free);
  mem_Free(m_blocks);
}

// Nothing changes before every request has been met: a new handler may throw.
void HYLBasMemTruePool::Grow() {
  if (m_blockCount == m_blockRoom) {
    unsigned int const room = 2 * m_blockRoom + 8;
    auto** const table =
        static_cast<char**>(mem_Malloc_Handled(room * static_cast<unsigned int>(sizeof(char*))));
    std::copy(m_blocks, m_blocks + m_blockCount, table);
    mem_Free(m_blocks);
    m_blocks = table;
    m_blockRoom = room;
  }
  m_blocks[m_blockCount] = static_cast<char*>(mem_Malloc_Handled(e_blockEnd));
  m_currentBlock = m_blockCount++;
  m_used = 0;
}
