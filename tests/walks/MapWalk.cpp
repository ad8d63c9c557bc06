// The typed maps beside the standard library's, which take memory in the same way: the same
// elements, results and requests, also where requests fail.
#include <climits>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <memory_resource>
#include <type_traits>

#include "HYLBasMap.h"
#include "TARNHYLBasAlloc.h"
#include "walks/Choices.h"

namespace {

struct HostMemory : std::pmr::memory_resource {
  void* do_allocate(std::size_t size, std::size_t) override {
    return mem_Malloc_Handled(static_cast<unsigned int>(size));
  }
  void do_deallocate(void* block, std::size_t, std::size_t) override { mem_Free(block); }
  bool do_is_equal(memory_resource const&) const noexcept override { return true; }
};

template <class V>
struct PlainMap : std::pmr::map<int, V> {
  using PlainMap::map::erase;
  using PlainMap::map::map;
  std::pmr::vector<char> header{'h'};

  PlainMap(PlainMap const&) = default;
  PlainMap& operator=(PlainMap const& other) {
    if (&other != this) PlainMap(other).swap(*this);
    return *this;
  }
  auto Insert(int key, V value) { return this->insert({key, value}).first; }
  auto InsertOver(int key, V value) { return this->insert_or_assign(key, value).first; }
  void erase(int const* first, int const* last) {
    for (; first != last; ++first)
      erase(*first);
  }
};

template <class M>
std::ptrdiff_t Index(M const& map, typename M::const_iterator position) {
  return std::distance(map.begin(), position);
}
using Result = std::vector<std::ptrdiff_t>;
template <class M>
Result LookUp(M& map, int key) {
  auto const [low, high] = map.equal_range(key);
  return {Index(map, map.find(key)),
          Index(map, map.lower_bound(key)),
          Index(map, map.upper_bound(key)),
          Index(map, low),
          Index(map, high),
          map.count(key) != 0};
}

// Both do the same, also where that request for memory fails.
void Both(unsigned int failing, unsigned int nodeSize, std::function<Result()> const& real,
          std::function<Result()> const& plain) {
  Result result, expected;
  TakeCalls();
  bool const isDone = Completes(failing, [&] { result = real(); });
  for (auto const& event : recording::Events())
    ASSERT_TRUE(event.kind == 'F' || event.n == nodeSize);
  std::string const calls = TakeCalls();
  ASSERT_EQ(Completes(failing, [&] { expected = plain(); }), isDone);
  ASSERT_EQ(calls, TakeCalls());
  ASSERT_EQ(result, expected);
}

template <class V>
class MapWalk {
  using Map = HYLBasMap<int, V>;
  struct Twin {
    Map map;
    PlainMap<V> plain;
  };
  static constexpr bool isWide = sizeof(V) == 8;
  static constexpr unsigned int valueOffset = sizeof(void*) == 8 ? 32 : isWide ? 24 : 20;
  static constexpr unsigned int nodeSize = valueOffset + sizeof(typename Map::value_type);

public:
  explicit MapWalk(Choices& choices) : m_choices(choices) {}

  void Step() {
    Twin &twin = m_choices.Of(m_twins), &other = m_choices.Of(m_twins);
    m_keys[0] = m_keys[2] = Key(), m_keys[1] = Key();
    m_value = Value();
    std::vector<typename Map::value_type> real(1, {m_keys[1], m_value});
    for (unsigned int n = m_choices.Below(8); n != 0; --n)
      real.emplace_back(Key(), Value());
    std::vector<std::pair<int const, V>> plain;
    for (auto const& [first, second] : real)
      plain.emplace_back(first, second);
    m_action = m_choices.Below(17);
    SCOPED_TRACE("action " + std::to_string(m_action));
    Both(
        m_choices.FailingRequest(), nodeSize, [&] { return Do(twin.map, other.map, real); },
        [&] { return Do(twin.plain, other.plain, plain); });
    for (Twin const& each : m_twins)
      Compare(each.map, each.plain);
  }

private:
  // The action with a map, the other map, and elements.
  template <class M, class List>
  Result Do(M& m, M& n, List const& list) {
    int const key = m_keys[0], key2 = m_keys[1];
    auto const *const first = &list.front(), *const last = &list.back() + 1;
    M const &constM = m, &constN = n;
    auto const is = [this](unsigned int action) { return m_action == action; };
    if (is(0)) {
      V* const found = &m[key];
      m[key2] = m_value;
      return {found == &m.find(key)->second};
    }
    if (is(1)) return {Index(m, m.Insert(key, m_value))};
    if (is(2)) return {Index(m, m.InsertOver(key, m_value))};
    if (is(3)) {
      auto const [position, isNew] = m.insert(*first);
      return {Index(m, position), isNew};
    }
    if (is(4)) return {Index(m, m.insert(m.lower_bound(key), *first))};
    if (is(5)) m.insert(first, last);
    if (is(6)) m = {first, last};
    if (is(7)) m.insert(constN.lower_bound(key), constN.end());
    if (is(8)) m = {constN.lower_bound(key), constN.end()};
    if (is(9)) return LookUp(m, key);
    if (is(10)) return LookUp(constM, key);
    if (is(11) && m.count(key) != 0) m.erase(m.find(key));
    if (is(12) && key <= key2) m.erase(m.lower_bound(key), m.lower_bound(key2));
    if (is(13) && !m.empty()) // a key that goes with its element
      return {m.erase(m.begin()->first) == 1, m.erase(key) != 0};
    if (is(14)) m.erase(m_keys, m_keys + 3);
    if (is(15)) m.swap(n);
    if (is(16)) m = n;
    if (is(16) && key < -16) m.clear();
    return {};
  }

  int Key() {
    int const extremes[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1};
    int const k = static_cast<int>(m_choices.Below(64));
    return k < 4 ? extremes[k] : k - 32;
  }
  V Value() {
    V const some[] = {std::numeric_limits<V>::lowest(), std::numeric_limits<V>::max(), V(42)};
    return m_choices.Of(some);
  }

  static void Compare(Map const& map, PlainMap<V> const& plain) {
    ASSERT_EQ(map.size(), plain.size());
    ASSERT_EQ(map.empty(), plain.empty());
    auto expected = plain.begin();
    for (auto it = map.begin(); it != map.end(); ++it, ++expected) {
      ASSERT_TRUE(it->first == expected->first && it->second == expected->second);
      auto const* const value = reinterpret_cast<char const*>(it.m_node) + valueOffset;
      ASSERT_EQ(reinterpret_cast<char const*>(&it->first), value);
      ASSERT_EQ(reinterpret_cast<char const*>(&it->second), value + (isWide ? 8 : 4));
    }
  }

  Choices& m_choices;
  Twin m_twins[2];
  unsigned int m_action;
  int m_keys[3];
  V m_value;
};

template <class V>
void WalkMaps(Choices& choices) {
  HostMemory memory;
  std::pmr::set_default_resource(&memory);
  recording::Reset(nullptr, 0);
  {
    MapWalk<V> walk(choices);
    while (choices.More())
      walk.Step();
  }
  EXPECT_EQ(recording::LiveBlocks(), 0u);
  std::pmr::set_default_resource(nullptr);
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

TEST(Map, IteratorsOfBothKindsAndSwap) {
  using Map = HYLBasMap<int, double>;
  static_assert(sizeof(Map::iterator) == sizeof(void*) &&
                sizeof(Map::const_iterator) == sizeof(void*));
  static_assert(!std::is_convertible_v<Map::const_iterator, Map::iterator>);
  Map map, other;
  map[4] = map[-3] = 1;
  for (auto& element : map)
    element.second += element.first;
  swap(map, other); // found by its argument
  EXPECT_TRUE(map.empty() && other[4] == 5 && other[-3] == -2);
  EXPECT_EQ(map.max_size(), 4294967295u);
  Map::iterator const x = other.begin(), end = other.end();
  HYLBasTreeIteratorGeneric const generic(x.m_node);
  Map::const_iterator reading = x;
  EXPECT_TRUE(reading == x && x == reading && x == generic.m_node && x == generic);
  EXPECT_FALSE(reading != x || x != reading || x != generic.m_node || x != generic);
  ++reading;
  EXPECT_FALSE(reading == x || x == reading || reading == generic.m_node || end == generic);
  EXPECT_TRUE(reading != x && x != reading && reading != generic.m_node && end != generic);
}
