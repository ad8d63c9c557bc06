#include <algorithm>
#include <cstring>

#include "Exhaustion.h"
#include "TARNHYLBasAlloc.h"

namespace {

// A multiple of the strictest alignment, so that every block of a slab starts as aligned as the
// slab.
constexpr unsigned int blockSize = 496;

// Slabs double the pool up to this many blocks, about 128 KB, and then add as many each: few heap
// calls for large pools, no large waste for small ones.
constexpr unsigned int largestSlab = 256;

// Blocks in the slab that starts with block `first`. Since it depends on nothing else, the table of
// blocks is all that is needed to find the slabs again.
unsigned int BlocksOfSlab(unsigned int first) { return std::clamp(first, 1u, largestSlab); }

} // namespace

HYLBasMemTruePool::HYLBasMemTruePool(int poolNumber, char const* poolName,
                                     HYLBasMemCacheManager* cacheManager)
    : m_blocks(nullptr), m_currentBlock(0), m_used(e_blockEnd), m_blockCount(0), m_blockRoom(0),
      m_poolNumber(poolNumber), m_poolName(poolName), m_cacheManager(cacheManager) {
  static_assert(e_blockEnd <= blockSize);
}

HYLBasMemTruePool::~HYLBasMemTruePool() {
  for (unsigned int first = 0; first < m_blockCount; first += BlocksOfSlab(first))
    hylbas_detail::HeapFree(m_blocks[first]);
  hylbas_detail::HeapFree(m_blocks);
}

void HYLBasMemTruePool::Grow() {
  unsigned int const next = m_blockCount == 0 ? 0 : m_currentBlock + 1;
  if (next == m_blockCount) AddSlab();
  m_currentBlock = next;
  m_used = 0;
}

// Each allocation may leave through a new handler's exception: nothing changes before it succeeded.
void HYLBasMemTruePool::AddSlab() {
  unsigned int const added = BlocksOfSlab(m_blockCount);
  if (m_blockRoom - m_blockCount < added) GrowTable();
  auto* const slab = static_cast<char*>(hylbas_detail::AllocateHandled(added * blockSize));
  for (unsigned int i = 0; i != added; ++i)
    m_blocks[m_blockCount + i] = slab + std::size_t{i} * blockSize;
  m_blockCount += added;
}

void HYLBasMemTruePool::GrowTable() {
  unsigned int const room = m_blockRoom == 0 ? 16 : 2 * m_blockRoom;
  bool const fits = room <= hylbas_detail::unsatisfiable / sizeof(char*) && room > m_blockRoom;
  auto** const table = static_cast<char**>(hylbas_detail::AllocateHandled(
      fits ? static_cast<unsigned int>(room * sizeof(char*)) : hylbas_detail::unsatisfiable));
  if (m_blockCount != 0) std::memcpy(table, m_blocks, m_blockCount * sizeof(char*));
  hylbas_detail::HeapFree(m_blocks);
  m_blocks = table;
  m_blockRoom = room;
}
