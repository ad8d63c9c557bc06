// The typed maps beside type-erased trees that are told the plain steps and call a comparator for
// each: the same elements in nodes linked in the same way, and the same requests for memory.
#include <climits>
#include <iterator>
#include <limits>
#include <type_traits>

#include "HYLBasMap.h"
#include "walks/Choices.h"

namespace {

using Node = HYLBasTreeNodeGeneric;
using Tree = HYLBasTreeGeneric<HYLBasNodeAllocator>;

bool CalledOrder(void const* a, void const* b, void const*) {
  return *static_cast<int const*>(a) < *static_cast<int const*>(b);
}

// Kinds and sizes of the calls since the last time. Releases have no order.
std::vector<std::pair<char, std::size_t>> Calls() {
  std::vector<std::pair<char, std::size_t>> calls;
  for (auto const& event : recording::Events())
    calls.emplace_back(event.kind, event.n);
  recording::Events().clear();
  std::sort(calls.begin(), calls.end());
  return calls;
}

template <class V>
class MapWalk {
  using Map = HYLBasMap<int, V>;
  using Pair = typename Map::value_type;
  using Reading = typename Map::const_iterator;

  static constexpr bool isWide = sizeof(V) == 8;
  static constexpr int valueOffset = sizeof(void*) == 8 ? 32 : isWide ? 24 : 20;

  struct Twin {
    Map map;
    Tree plain = PlainOf({});
  };

  // The steps of some members.
  static V& Subscript(Tree& plain, int key) {
    Pair const zero(key, V());
    Node* x = plain.LowerBound(&key);
    if (x == plain.End() || CalledOrder(&key, plain.Value(x), nullptr))
      x = plain.InsertUniqueAtPosition(x, &zero);
    return static_cast<Pair*>(plain.Value(x))->second;
  }
  static unsigned int Erase(Tree& plain, int key) {
    Node* const x = plain.Find(&key);
    if (x == plain.End()) return 0;
    plain.Erase(x);
    return 1;
  }
  static void Insert(Tree& plain, std::vector<Pair> const& pairs) {
    for (Pair const& pair : pairs)
      plain.InsertUnique(&pair);
  }
  static Tree PlainOf(std::vector<Pair> const& pairs) {
    HYLBasNodeOffsets const offsets(valueOffset, valueOffset + (isWide ? 16 : 8));
    Tree plain(offsets, HYLBasGetReplicator<Pair>(), CalledOrder, nullptr);
    Insert(plain, pairs);
    return plain;
  }

public:
  explicit MapWalk(Choices& choices) : m_choices(choices) {}

  void Step() {
    unsigned int const i = m_choices.Below(2);
    Twin &twin = m_twins[i], &other = m_twins[m_choices.OneIn(4) ? i : 1 - i];
    Map& map = twin.map;
    Tree& plain = twin.plain;
    int const key = Key(), key2 = Key(), keys[] = {key, key2, key};
    V const value = Value();
    Pair const pair(key, value);
    auto const low = map.lower_bound(key), low2 = map.lower_bound(key2);
    Node *const plainLow = plain.LowerBound(&key), *const plainLow2 = plain.LowerBound(&key2);
    std::vector<Pair> pairs;
    for (unsigned int n = m_choices.Below(8); n != 0; --n)
      pairs.emplace_back(Key(), Value());
    auto const from = std::as_const(other.map).lower_bound(key), end = Reading(other.map.end());
    std::vector<Pair> const rest(from, end);
    unsigned int const action = m_choices.Below(16);
    SCOPED_TRACE("action " + std::to_string(action));
    auto it = map.end();
    bool isNew = false;
    if (action == 0)
      Both([&] { map[key], map[key2] = value; },
           [&] { Subscript(plain, key), Subscript(plain, key2) = value; });
    if (action == 1)
      Both([&] { it = map.Insert(key, value); },
           [&] { Expect(twin, it, plain.InsertUnique(&pair).first); });
    if (action == 2)
      Both([&] { it = map.InsertOver(key, value); },
           [&] {
             Subscript(plain, key) = value;
             Expect(twin, it, plain.Find(&key));
           });
    if (action == 3)
      Both(
          [&] {
            auto const result = map.insert(pair);
            it = result.first;
            isNew = result.second;
          },
          [&] {
            HYLBasPairIterBoolGeneric const result = plain.InsertUnique(&pair);
            Expect(twin, it, result.first);
            EXPECT_EQ(isNew, result.second);
          });
    if (action == 4)
      Both([&] { it = map.insert(low2, pair); },
           [&] { Expect(twin, it, plain.InsertUniqueAtPosition(plainLow2, &pair)); });
    if (action == 5)
      Both([&] { map.insert(pairs.data(), pairs.data() + pairs.size()); },
           [&] { Insert(plain, pairs); });
    if (action == 6)
      Both([&] { map = Map(pairs.data(), pairs.data() + pairs.size()); },
           [&] { plain = PlainOf(pairs); });
    if (action == 7) Both([&] { map.insert(from, end); }, [&] { Insert(plain, rest); });
    if (action == 8) Both([&] { map = Map(from, end); }, [&] { plain = PlainOf(rest); });
    if (action == 9) LookUp(twin, map, key), LookUp(twin, std::as_const(map), key);
    if (action == 10 && low != map.end()) map.erase(low), plain.Erase(plainLow);
    if (action == 11 && key <= key2) map.erase(low, low2), plain.Erase(plainLow, plainLow2);
    if (action == 12) { // also by a key that goes with its element
      bool const isThere = low != map.end() && low->first == key;
      EXPECT_EQ(map.erase(isThere ? low->first : key), Erase(plain, key));
    }
    if (action == 13) map.erase(keys, keys + 3), Erase(plain, key), Erase(plain, key2);
    if (action == 14) map.swap(other.map), plain.Swap(&other.plain);
    if (action == 15) Both([&] { map = other.map; }, [&] { plain = other.plain; });
    if (action == 15 && key == 0) map.clear(), plain.Clear();
    for (Twin& each : m_twins)
      Compare(each);
  }

private:
  int Key() {
    int const extremes[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1};
    int const k = static_cast<int>(m_choices.Below(64));
    return k < 4 ? extremes[k] : k - 32;
  }
  V Value() {
    V const some[] = {std::numeric_limits<V>::lowest(), std::numeric_limits<V>::max(), V(42)};
    return m_choices.Of(some);
  }

  // Both do the same, also when a request for memory fails.
  template <class Real, class Plain>
  void Both(Real real, Plain plain) {
    unsigned int const failing = m_choices.FailingRequest();
    Calls();
    bool const done = Completes(failing, real);
    auto const calls = Calls();
    ASSERT_EQ(Completes(failing, plain), done);
    ASSERT_EQ(Calls(), calls);
  }

  template <class Iterator>
  static void Expect(Twin& twin, Iterator it, Node* x) {
    ASSERT_EQ(it == twin.map.end(), x == twin.plain.End());
    ASSERT_TRUE(x == twin.plain.End() || it->first == *static_cast<int*>(twin.plain.Value(x)));
  }
  template <class M>
  static void LookUp(Twin& twin, M& map, int key) {
    Node *const low = twin.plain.LowerBound(&key), *const high = twin.plain.UpperBound(&key);
    Expect(twin, map.find(key), twin.plain.Find(&key));
    EXPECT_EQ(map.count(key), low != high);
    Expect(twin, map.lower_bound(key), low);
    Expect(twin, map.upper_bound(key), high);
    Expect(twin, map.equal_range(key).first, low);
    Expect(twin, map.equal_range(key).second, high);
  }
  static void CompareBelow(Node const* x, Node const* y) {
    ASSERT_EQ(x == nullptr, y == nullptr);
    if (x == nullptr) return;
    ASSERT_EQ(x->m_color, y->m_color);
    Reading const a(HYLBasTreeIteratorGeneric{x}), b(HYLBasTreeIteratorGeneric{y});
    ASSERT_EQ(reinterpret_cast<char const*>(&a->second),
              reinterpret_cast<char const*>(x) + valueOffset + (isWide ? 8 : 4));
    ASSERT_TRUE(a->first == b->first && a->second == b->second);
    CompareBelow(x->m_left, y->m_left);
    CompareBelow(x->m_right, y->m_right);
  }
  static void Compare(Twin& twin) {
    Map const& map = twin.map;
    ASSERT_EQ(map.size(), twin.plain.Size());
    ASSERT_EQ(map.empty(), twin.plain.Empty());
    CompareBelow(map.end().m_node->m_parent, twin.plain.Root());
    auto const& isBefore = [](Pair const& a, Pair const& b) { return a.first < b.first; };
    ASSERT_EQ(std::distance(map.begin(), map.end()), static_cast<std::ptrdiff_t>(map.size()));
    ASSERT_TRUE(std::is_sorted(map.begin(), map.end(), isBefore));
  }

  Choices& m_choices;
  Twin m_twins[2];
};

template <class V>
void WalkMaps(Choices& choices) {
  recording::Reset(nullptr, 0);
  {
    MapWalk<V> walk(choices);
    while (choices.More())
      walk.Step();
  }
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

// Plain values that the library holds no code for: all members of their maps.
struct Plain {
  double x;
  char letter;
};
} // namespace
template class HYLBasMap<int, Plain>;
template class HYLBasMap<int, short>;

WALK(140, 600) {
  void (*const walks[])(Choices&) = {
      WalkMaps<char>,   WalkMaps<int>,       WalkMaps<unsigned int>,       WalkMaps<float>,
      WalkMaps<double>, WalkMaps<long long>, WalkMaps<unsigned long long>, WalkMaps<short>};
  choices.Of(walks)(choices);
}

namespace {

TEST(Map, IteratorsServeStandardAlgorithms) {
  using Map = HYLBasMap<int, double>;
  using Iterator = Map::iterator;
  using Reading = Map::const_iterator;
  static_assert(sizeof(Iterator) == sizeof(void*) && sizeof(Reading) == sizeof(void*));
  static_assert(std::is_convertible_v<Iterator, Reading>);
  static_assert(!std::is_convertible_v<Reading, Iterator>);
  static_assert(std::is_same_v<std::iterator_traits<Reading>::reference, Map::value_type const&>);
  static_assert(std::is_same_v<std::iterator_traits<Iterator>::pointer, Map::value_type*>);
  Map map;
  for (int key : {4, -3, 0})
    map[key] = key + 3;
  for (auto& element : map)
    element.second += 1;
  auto const [least, most] = std::minmax_element(
      map.begin(), map.end(), [](auto& x, auto& y) { return x.second < y.second; });
  EXPECT_TRUE(least->first == -3 && most->second == 8);
  EXPECT_EQ(map.max_size(), 4294967295u);
  Reading reading = map.begin();
  EXPECT_TRUE(reading == map.begin() && map.begin() == reading);
  ++reading;
  EXPECT_TRUE(reading != map.begin() && map.begin() != reading);
  Node* const node = reading.m_node;
  HYLBasTreeIteratorGeneric const generic(node);
  EXPECT_TRUE(Iterator(node) == generic && Iterator(generic) == node && reading == node);
  EXPECT_TRUE(map.begin() != node && map.begin() != generic && map.end() != generic);
  Map other;
  swap(map, other); // found by its argument
  EXPECT_TRUE(map.empty() && other.size() == 3);
}

} // namespace
