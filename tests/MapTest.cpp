// The typed maps beside std::map, and the exact memory that they ask for.
#include <algorithm>
#include <climits>
#include <iterator>
#include <limits>
#include <map>
#include <random>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "HYLBasMap.h"
#include "support/RecordingMemory.h"
#include "support/SameShape.h"

namespace {

template <class V>
struct Map : testing::Test {
  void SetUp() override { recording::Reset(nullptr, 0); }
  void TearDown() override { EXPECT_EQ(recording::LiveBlocks(), 0u); }
};
using MappedTypes =
    testing::Types<char, int, unsigned int, float, double, long long, unsigned long long>;
TYPED_TEST_SUITE(Map, MappedTypes);

template <class V>
struct Walk {
  using Ours = HYLBasMap<int, V>;
  using Pair = typename Ours::value_type;
  using Peer = std::map<int, V>;

  explicit Walk(unsigned int seed) : random(seed) {}

  int Key() {
    int const extremes[] = {INT_MIN, INT_MIN + 1, INT_MAX, INT_MAX - 1, -1, 0};
    unsigned int const r = random() % 64u;
    return r < 6 ? extremes[r] : static_cast<int>(r) - 32;
  }
  V Mapped() {
    V const some[] = {std::numeric_limits<V>::lowest(), std::numeric_limits<V>::max(), V(42), V()};
    return some[random() % 4];
  }
  std::vector<Pair> Pairs() {
    std::vector<Pair> pairs;
    for (auto n = random() % 8; n != 0; --n)
      pairs.emplace_back(Key(), Mapped());
    return pairs;
  }

  // Both positions stand on the same element, or at the end.
  template <class I, class J>
  static void ExpectSame(Ours& m, I it, Peer& p, J peer) {
    ASSERT_EQ(it == m.end(), peer == p.end());
    if (peer == p.end()) return;
    ASSERT_EQ(it->first, peer->first);
    ASSERT_EQ((*it).second, peer->second);
  }

  void Step(Ours& m, Peer& p, Ours& other, Peer& otherPeer) {
    int const key = Key(), key2 = Key();
    V const value = Mapped();
    Pair const pair(key, value);
    Ours const& constant = m;
    auto const low = p.lower_bound(key), high = p.upper_bound(key);
    switch (random() % 15) {
    case 0:
      ASSERT_EQ(m[key], p[key]);
      m[key2] = value, p[key2] = value;
      break;
    case 1:
      ExpectSame(m, m.Insert(key, value), p, p.insert({key, value}).first);
      break;
    case 2:
      ExpectSame(m, m.InsertOver(key, value), p, p.insert_or_assign(key, value).first);
      break;
    case 3: {
      auto const ours = m.insert(pair);
      ASSERT_EQ(ours.second, low == high);
      ExpectSame(m, ours.first, p, p.insert({key, value}).first);
      break;
    }
    case 4:
      ExpectSame(m, m.insert(m.lower_bound(key2), pair), p, p.insert({key, value}).first);
      break;
    case 5: {
      std::vector<Pair> const pairs = Pairs();
      if (random() % 2 == 0) {
        m.insert(pairs.data(), pairs.data() + pairs.size());
      } else {
        m = Ours(pairs.data(), pairs.data() + pairs.size());
        p.clear();
      }
      for (Pair const& x : pairs)
        p.insert({x.first, x.second});
      break;
    }
    case 6:
      m.insert(other.begin(), other.lower_bound(key));
      p.insert(otherPeer.begin(), otherPeer.lower_bound(key));
      break;
    case 7: {
      ExpectSame(m, m.find(key), p, p.find(key));
      ExpectSame(m, constant.find(key), p, p.find(key));
      ASSERT_EQ(constant.count(key), p.count(key));
      auto const range = m.equal_range(key);
      auto const constRange = constant.equal_range(key);
      ExpectSame(m, range.first, p, low);
      ExpectSame(m, range.second, p, high);
      ASSERT_TRUE(constRange.first == range.first && !(constRange.second != range.second));
      ASSERT_TRUE(constant.lower_bound(key) == range.first);
      ASSERT_TRUE(constant.upper_bound(key) == range.second);
      break;
    }
    case 8:
      if (low != p.end()) m.erase(m.find(low->first)), p.erase(low);
      break;
    case 9:
      if (key <= key2 && random() % 4 == 0) {
        m.erase(m.lower_bound(key), m.lower_bound(key2));
        p.erase(low, p.lower_bound(key2));
      }
      break;
    case 10:
      ASSERT_EQ(m.erase(key), p.erase(key));
      break;
    case 11: {
      int const keys[] = {key, key2, key};
      m.erase(keys, keys + 3);
      p.erase(key), p.erase(key2);
      break;
    }
    case 12:
      m.swap(other), p.swap(otherPeer);
      break;
    case 13:
      if (random() % 4 == 0) m = other, p = otherPeer;
      break;
    case 14: {
      Ours const copy(m), part(copy.lower_bound(key), copy.end());
      m.clear();
      ASSERT_TRUE(m.empty());
      m = part;
      p.erase(p.begin(), low);
      break;
    }
    }
    ExpectSameContents(m, p);
  }

  static void ExpectSameContents(Ours const& m, Peer const& p) {
    ASSERT_EQ(m.size(), p.size());
    ASSERT_EQ(m.empty(), p.empty());
    auto const same = [](Pair const& x, auto const& y) {
      return x.first == y.first && x.second == y.second;
    };
    ASSERT_TRUE(std::equal(m.begin(), m.end(), p.begin(), p.end(), same));
  }

  std::mt19937 random;
};

TYPED_TEST(Map, DoesWhatTheStandardMapDoes) {
  for (unsigned int seed = 1; seed != 6 && !this->HasFailure(); ++seed) {
    Walk<TypeParam> walk(seed);
    HYLBasMap<int, TypeParam> maps[2];
    std::map<int, TypeParam> peers[2];
    for (unsigned int step = 0; step != 1500 && !this->HasFailure(); ++step)
      walk.Step(maps[step % 2], peers[step % 2], maps[1 - step % 2], peers[1 - step % 2]);
  }
}

bool CalledIntOrder(void const* a, void const* b, void const*) {
  return *static_cast<int const*>(a) < *static_cast<int const*>(b);
}

// What the map does inline beside a tree that calls its comparator for every step.
TYPED_TEST(Map, InlineWaysMakeTheTreeOfThePlainSteps) {
  using Ours = HYLBasMap<int, TypeParam>;
  using Pair = typename Ours::value_type;
  constexpr int offset = hylbas_detail::valueOffset<Pair>;
  HYLBasTreeGeneric<HYLBasNodeAllocator> plain({offset, hylbas_detail::nodeSize<Pair>},
                                               HYLBasGetReplicator<Pair>(), CalledIntOrder,
                                               nullptr);
  Ours m;
  std::mt19937 random(3);
  for (int i = 0; i != 6000; ++i) {
    int const key = i < 1000 ? i : static_cast<int>(random() % 4000) - 2000;
    Pair const element(key, static_cast<TypeParam>(i % 100));
    auto const action = i < 3000 ? random() % 2 : random() % 4;
    if (action == 0) {
      m[key];
      Pair const zero(key, TypeParam());
      auto* const low = plain.LowerBound(&key);
      if (low == plain.End() || CalledIntOrder(&key, plain.Value(low), nullptr))
        plain.InsertUniqueAtPosition(low, &zero);
    } else if (action == 1) {
      ASSERT_EQ(m.insert(element).second, plain.InsertUnique(&element).second);
    } else if (auto const it = m.find(key); it != m.end()) {
      plain.Erase(plain.Find(&key));
      m.erase(it->first); // a key that goes with its element
    }
  }
  ASSERT_GT(m.size(), 500u);
  EXPECT_TRUE(plain.VerifyTree());
  EXPECT_TRUE(SameShape(m.end().m_node->m_parent, plain.Root(), [](auto* x, auto* y) {
    auto const a = typename Ours::const_iterator(x), b = typename Ours::const_iterator(y);
    return a->first == b->first && a->second == b->second;
  }));
}

TYPED_TEST(Map, AsksForOneExactBlockPerElement) {
  bool const isWide = sizeof(TypeParam) == 8;
  std::size_t const narrowNode = sizeof(void*) == 4 ? 28 : 40;
  std::size_t const wideNode = sizeof(void*) == 4 ? 40 : 48;
  HYLBasMap<int, TypeParam> m;
  m[1] = 1;
  m.Insert(2, TypeParam(2));
  m.Insert(2, TypeParam(3));
  EXPECT_EQ(m[2], TypeParam(2));
  EXPECT_EQ(m.max_size(), 4294967295u);
  recording::Event const request = {'A', {-1, 0}, {-1, 0}, isWide ? wideNode : narrowNode};
  EXPECT_TRUE(recording::Events() == std::vector<recording::Event>(3, request)); // and the header
  auto const it = m.begin();
  EXPECT_EQ(reinterpret_cast<char const*>(&it->second) - reinterpret_cast<char const*>(&*it),
            isWide ? 8 : 4);
  EXPECT_EQ(recording::Locate(&*it).offset, sizeof(void*) == 8 ? 32 : isWide ? 24 : 20);
}

TYPED_TEST(Map, IteratorsServeStandardAlgorithms) {
  using Ours = HYLBasMap<int, TypeParam>;
  using Iterator = typename Ours::iterator;
  using Reading = typename Ours::const_iterator;
  static_assert(sizeof(Iterator) == sizeof(void*) && sizeof(Reading) == sizeof(void*));
  static_assert(std::is_convertible_v<Iterator, Reading>);
  static_assert(!std::is_convertible_v<Reading, Iterator>);
  static_assert(std::is_same_v<typename std::iterator_traits<Reading>::reference,
                               typename Ours::value_type const&>);
  static_assert(std::is_same_v<decltype((*std::declval<Reading>().operator->())),
                               typename Ours::value_type const&>);
  Ours m;
  for (int key : {4, -3, 0, -1})
    m[key] = static_cast<TypeParam>(key + 3);
  for (auto& element : m)
    element.second = static_cast<TypeParam>(element.second + 1);
  Ours const& constant = m;
  EXPECT_EQ(std::distance(m.begin(), m.end()), 4);
  EXPECT_EQ(std::next(constant.begin(), 3)->first, 4);
  auto const [least, most] =
      std::minmax_element(m.begin(), m.end(), [](auto& x, auto& y) { return x.second < y.second; });
  EXPECT_TRUE(least->first == -3 && most->first == 4);
  EXPECT_TRUE(std::all_of(constant.begin(), constant.end(), [](auto const& x) {
    return x.second == static_cast<TypeParam>(x.first + 4);
  }));
  Reading reading = m.begin();
  EXPECT_TRUE(reading == m.begin() && m.begin() == reading);
  ++reading;
  EXPECT_TRUE(reading != m.begin() && m.begin() != reading);
  HYLBasTreeNodeGeneric* const node = reading.m_node;
  HYLBasTreeIteratorGeneric const generic(node);
  EXPECT_TRUE(Iterator(node) == generic && Iterator(generic) == node && reading == node);
  EXPECT_TRUE(m.begin() != node && m.begin() != generic && m.end() != generic);
  Ours other;
  swap(m, other);
  EXPECT_TRUE(m.empty() && other.size() == 4);
}

struct Plain {
  double x;
  char letter;
};

} // namespace

// All members of maps that the library holds no code of.
template class HYLBasMap<int, Plain>;
template class HYLBasMap<int, short>;
