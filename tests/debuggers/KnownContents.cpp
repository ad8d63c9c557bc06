// Containers with known contents, for debuggers to show. With external linkage, so that an
// optimised build keeps them too.
#include <HYLBasGenerics.h>

namespace known {

HYLBasReplicatorGeneric ints = HYLBasGetReplicator<int>();
HYLBasVector<int> numbers;
HYLBasVector<double> noNumbers;
HYLBasVectorGeneric core(ints, 0, nullptr);
HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator> records(3u, 2u);
HYLBasMap<int, double> map;
HYLBasMap<int, char> emptyMap, broken, cyclic;
HYLBasTreeGeneric<HYLBasMemTruePool> tree(HYLBasNodeOffsets(32, 40), ints,
                                          HYLBasComparitor<int>::GetComparitor(), nullptr);
HYLBasMap<int, double>::iterator position = map.end(), end = map.end(), emptyEnd = map.end();
HYLBasArray2D<int, 1> array(2, 3, 7);
double lent[2] = {1, 2};
HYLBasArray2D<double, 0> borrowed(0, 0, 0.0);
HYLBasPair<int, int> pair;
HYLBasMicroList<int> list(2);
HYLBasMemPool& pool = omi_Singleton<HYLBasMemPoolMap>::Instance();

} // namespace known

extern "C" [[gnu::noinline]] void Show() { asm volatile("" ::: "memory"); }

int main() {
  using namespace known;
  for (int i : {3, -1, 4}) {
    numbers.push_back(i);
    core.PushBack(&i);
    map[i] = i + 0.5;
    tree.InsertEqual(&i);
  }
  position = map.find(3);
  emptyEnd = HYLBasMap<int, double>::iterator(tree.End());
  array(1, 2) = 8;
  borrowed.BorrowMemory(1, 2, lent);
  pair.second = 2;
  list[0] = list[1] = 5;
  for (int i = 0; i != 7; ++i)
    broken[i] = cyclic[i] = static_cast<char>('a' + i);
  auto* const five = broken.find(5).m_node;
  auto* const parent = five->m_parent;
  five->m_parent = five;
  auto* const six = cyclic.find(6).m_node;
  six->m_right = six;
  Show();
  five->m_parent = parent;
  six->m_right = nullptr;
}
