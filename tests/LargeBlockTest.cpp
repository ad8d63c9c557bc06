// Blocks of more than half of a 32-bit address space, from a host whose memory library has them.
// Nothing touches more than a few pages of them.
#include <cstring>
#include <map>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>

#include "HYLBasVector.h"
#include "HYLBasVectorStruct.h"
#include "TARNHYLBasAlloc.h"

namespace {
std::map<void*, unsigned int> blocks;
}

void* mem_Malloc_Handled(unsigned int size) {
  void* const block = mmap(nullptr, size, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  if (block == MAP_FAILED) throw size;
  blocks[block] = size;
  return block;
}
void mem_Free(void* block) {
  if (block == nullptr) return;
  EXPECT_EQ(munmap(block, blocks.at(block)), 0);
  blocks.erase(block);
}

namespace {

constexpr unsigned int mebi = 1024 * 1024, count = 2100;

// An address space without so much room in one piece.
#define SKIP_WITHOUT_ROOM()                                                                        \
  try {                                                                                            \
    mem_Free(mem_Malloc_Handled(count* mebi));                                                     \
  } catch (unsigned int) {                                                                         \
    GTEST_SKIP() << "no 2100 MiB in one piece";                                                    \
  }

TEST(LargeBlock, IsCountedByTypedVectors) {
  SKIP_WITHOUT_ROOM();
  HYLBasVector<int> v;
  v.reserve(count * (mebi / 4));
  EXPECT_EQ(v.capacity(), count * (mebi / 4));
  v.resize(1000, 7);
  v.push_back(8);
  EXPECT_TRUE(v.size() == 1001 && v.back() == 8 && blocks.size() == 1);
}

// Copies, of which only the addresses are kept: byte offsets in the block, and counts.
using Copies = std::vector<std::tuple<std::size_t, std::size_t, unsigned int>>;
Copies copies;
std::size_t Offset(void const* p) {
  return static_cast<std::size_t>(static_cast<char const*>(p) -
                                  static_cast<char*>(blocks.begin()->first));
}
void RecordCopy(void const* from, void* to, unsigned int n) {
  copies.emplace_back(Offset(from), Offset(to), n);
}

TEST(LargeBlock, IsCountedByRecordVectors) {
  SKIP_WITHOUT_ROOM();
  using Vector = HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>;
  Vector v({static_cast<int>(mebi), RecordCopy, [](void const*, unsigned int) {}}, 0, nullptr);
  v.Reserve(count);
  void* const block = v.Begin();
  EXPECT_EQ(v.Capacity(), count);
  v.Insert(v.End(), count - 2, block);
  EXPECT_EQ(v.Size(), count - 2);
  EXPECT_EQ(Offset(v.Item(count - 3)), std::size_t{count - 3} * mebi);
  v.RangeCheck(count - 3);

  copies.clear();
  v.Insert(v.Item(count - 4), v.Begin());
  v.Erase(v.Begin());
  v.Erase(v.Item(1), v.Item(count - 4));
  std::size_t const s = mebi;
  EXPECT_EQ(copies, (Copies{{(count - 3) * s, (count - 2) * s, 1},
                            {(count - 4) * s, (count - 3) * s, 1},
                            {0, (count - 4) * s, 1},
                            {s, 0, count - 2},
                            {(count - 4) * s, s, 2}}));
  EXPECT_EQ(v.Size(), 3u);
  EXPECT_EQ(v.Begin(), block);
}

} // namespace
