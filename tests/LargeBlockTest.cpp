// Blocks of more than half of a 32-bit address space, from a host whose memory library has them.
// Nothing touches more than a few pages of them.
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <sys/mman.h>

#include "HYLBasIntrosort.h"
#include "HYLBasIsSortedGeneric.h"
#include "HYLBasVector.h"
#include "HYLBasVectorStruct.h"
#include "TARNHYLBasAlloc.h"

namespace {

constexpr std::size_t mebi = 1024 * 1024;
constexpr unsigned int count = 2100;
char* const block = static_cast<char*>(mmap(nullptr, count* mebi, PROT_READ | PROT_WRITE,
                                            MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0));
int blocksInUse = 0;

} // namespace

void* mem_Malloc_Handled(unsigned int size) {
  EXPECT_TRUE(size == count * mebi && ++blocksInUse == 1);
  return block;
}
void mem_Free(void* p) {
  if (p != nullptr) --blocksInUse;
}

namespace {

// Copies, of which only the places are kept: byte offsets in the block, and counts.
std::vector<std::tuple<std::size_t, std::size_t, unsigned int>> copies;
std::size_t Offset(void const* p) {
  return static_cast<std::size_t>(static_cast<char const*>(p) - block);
}
void RecordCopy(void const* from, void* to, unsigned int n) {
  copies.emplace_back(Offset(from), Offset(to), n);
}

TEST(LargeBlock, IsCountedByVectors) {
  if (block == MAP_FAILED) GTEST_SKIP() << "no 2100 MiB in one piece";
  {
    HYLBasVector<int> v;
    v.reserve(count * (mebi / 4));
    v.resize(1000, 7);
    v.push_back(8);
    EXPECT_TRUE(v.capacity() == count * (mebi / 4) && v.size() == 1001 && v.back() == 8);
  }
  EXPECT_EQ(blocksInUse, 0);
  using Vector = HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>;
  Vector v({static_cast<int>(mebi), RecordCopy, [](void const*, unsigned int) {}}, 0, nullptr);
  v.Reserve(count);
  v.Insert(v.End(), count - 2, block);
  EXPECT_TRUE(v.Capacity() == count && v.Size() == count - 2);
  EXPECT_EQ(Offset(v.Item(count - 3)), (count - 3) * mebi);
  v.RangeCheck(count - 3);

  copies.clear();
  v.Insert(v.Item(count - 4), v.Begin());
  v.Erase(v.Begin());
  v.Erase(v.Item(1), v.Item(count - 4));
  EXPECT_EQ(copies, (decltype(copies){{(count - 3) * mebi, (count - 2) * mebi, 1},
                                      {(count - 4) * mebi, (count - 3) * mebi, 1},
                                      {0, (count - 4) * mebi, 1},
                                      {mebi, 0, count - 2},
                                      {(count - 4) * mebi, mebi, 2}}));
  EXPECT_TRUE(v.Size() == 3 && v.Begin() == block);
}

bool IsLess(void const* a, void const* b) {
  return *static_cast<int const*>(a) < *static_cast<int const*>(b);
}

TEST(LargeBlock, IsCountedBySorts) {
  if (block == MAP_FAILED) GTEST_SKIP() << "no 2100 MiB in one piece";
  auto* const first = reinterpret_cast<unsigned int*>(block);
  std::size_t const n = count * (mebi / 4);
  first[0] = 3; // behind which all is 0
  EXPECT_FALSE(
      HYLBasIsSortedGeneric1(block, block + count * mebi, HYLBasReplicatorGeneric(4), IsLess));
  first[n / 2] = 4;
  using Operands = std::pair<unsigned int, unsigned int>;
  HYLBasIxComparitor const thrower{[](unsigned int a, unsigned int b, void const*,
                                      void const*) -> bool { throw Operands(a, b); },
                                   nullptr, nullptr};
  try {
    __introsort_loop(first, first + n, nullptr, 60, thrower);
    ADD_FAILURE() << "nothing is compared";
  } catch (Operands const& operands) {
    EXPECT_EQ(operands, Operands(3, 4));
  }
}

} // namespace
