// Comparators, pairs, hash values, exchange and replicators: pure functions and plain records.
#include <climits>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "HYLBasComparitor.h"
#include "HYLBasHashValue.h"
#include "HYLBasPair.h"
#include "HYLBasReplicator.h"
#include "HYLBasSwap.h"

namespace {

TEST(HashValue, DropsTheTwoLowBitsThenReduces) {
  EXPECT_EQ(HashValue(13u, 4), 3u);
  EXPECT_EQ(HashValue(4294967295u, 7), 0u);
  EXPECT_EQ(HashValue(100u, 7), 4u);
  void* const address = reinterpret_cast<void*>(std::uintptr_t{4096});
  EXPECT_EQ(HashValue(address, 16), 0u);
  EXPECT_EQ(HashValue(address, 7), (4096u >> 2) % 7);
  if constexpr (sizeof(void*) > 4) { // the low 32 bits count
    EXPECT_EQ(HashValue(static_cast<char*>(address) + (std::uint64_t{3} << 32), 7), 1024u % 7);
  }
}

TEST(Pair, OrdersByFirstThenSecondSigned) {
  using P = HYLBasPair<int, int>;
  P const ordered[] = {
      P(INT_MIN, INT_MAX), P(-1, 0),           P(0, -9), P(0, 9), P(1, 0), P(1, 5), P(1, 7),
      P(INT_MAX, INT_MIN), P(INT_MAX, INT_MAX)};
  for (P const& a : ordered)
    for (P const& b : ordered)
      EXPECT_EQ(a < b, &a < &b);
  P const zero;
  EXPECT_TRUE(zero.first == 0 && zero.second == 0);
}

TEST(Comparitor, AnswersStrictlyBeforeWhateverTheContext) {
  int const ordered[] = {INT_MIN, -1, 0, INT_MAX};
  auto const before = HYLBasComparitor<int>::GetComparitor();
  for (int const& a : ordered)
    for (int const& b : ordered) {
      EXPECT_EQ(before(&a, &b, nullptr), &a < &b);
      EXPECT_EQ(before(&a, &b, &ordered), &a < &b);
    }
}

TEST(Comparitor, CharStarTellsWhetherStringsDiffer) {
  char const* const words[] = {"", "a", "ab", "abc", "abd"};
  for (char const* a : words)
    for (char const* b : words)
      EXPECT_EQ(HYLBasCompareConstCharStar(a, std::string(b).c_str(), nullptr), a != b);
}

TEST(Comparitor, IxPassesBothContexts) {
  int const contexts[2] = {};
  HYLBasIxComparitor const ix{[](unsigned int a, unsigned int b, void const* c1, void const* c2) {
                                return a == 7 && b == 9 && static_cast<int const*>(c1) + 1 == c2;
                              },
                              contexts, contexts + 1};
  EXPECT_TRUE(ix(7, 9));
  EXPECT_FALSE(ix(9, 7));
}

TEST(Swap, ExchangesAlsoAnObjectWithItself) {
  HYLBasReplicatorGeneric a(12), b = HYLBasGetReplicator<HYLBasPair<int, int>>();
  HYLBasSwap(a, b);
  EXPECT_EQ(a.m_size, 8);
  EXPECT_EQ(a.m_copy, (HYLBasStandardCopy<HYLBasPair<int, int>>));
  EXPECT_EQ(a.m_destroy, (HYLBasStandardDestroy<HYLBasPair<int, int>>));
  EXPECT_TRUE(b.m_size == 12 && b.m_copy == nullptr && b.m_destroy == nullptr);
  HYLBasSwap(a, a);
  EXPECT_EQ(a.m_size, 8);
}

// Copies runs of every length across the switch to a block move, disjoint and overlapping with the
// destination before the source, against the plain meaning of a copy.
template <class T>
void PlainReplicator() {
  HYLBasReplicatorGeneric const r = HYLBasGetReplicator<T>();
  EXPECT_EQ(r.m_copy, HYLBasPODCopy<T>);
  EXPECT_EQ(r.m_destroy, nullptr);
  ASSERT_EQ(r.m_size, static_cast<int>(sizeof(T)));
  constexpr unsigned int slots = 40;
  for (unsigned int count : {0u, 1u, 9u, 10u, 11u, 17u})
    for (unsigned int shift : {1u, 3u, 20u}) {
      alignas(16) unsigned char bytes[slots * sizeof(T)];
      for (unsigned int i = 0; i != sizeof bytes; ++i)
        bytes[i] = static_cast<unsigned char>(i * 37);
      std::vector<unsigned char> expected(bytes, bytes + sizeof bytes);
      std::memmove(&expected[0], &expected[shift * sizeof(T)], count * sizeof(T));
      r.m_copy(bytes + shift * sizeof(T), bytes, count);
      EXPECT_EQ(std::memcmp(bytes, expected.data(), sizeof bytes), 0) << count << ' ' << shift;
    }
}

template <class V>
void PairReplicator() {
  using P = HYLBasPair<int const, V>;
  HYLBasReplicatorGeneric const r = HYLBasGetReplicator<P>();
  EXPECT_EQ(r.m_size, sizeof(V) == 8 ? 16 : 8);
  EXPECT_EQ(r.m_copy, HYLBasStandardCopy<P>);
  EXPECT_EQ(r.m_destroy, HYLBasStandardDestroy<P>);
}

TEST(Replicator, EveryElementType) {
#define PLAIN(T) PlainReplicator<T>();
#define MAPPED(V) PairReplicator<V>();
  HYLBAS_FOR_EACH_PLAIN_TYPE(PLAIN)
  HYLBAS_FOR_EACH_MAPPED_TYPE(MAPPED)
#undef MAPPED
#undef PLAIN
}

// Elements that own something: copies and destructions must balance, first to last.
TEST(Replicator, ClassElementsAreConstructedAndDestroyed) {
  struct Tracked {
    explicit Tracked(int n) : number(n) {}
    Tracked(Tracked const& other) : number(other.number) {
      Log() += static_cast<char>('0' + number);
    }
    ~Tracked() { Log() += static_cast<char>('a' + number); }
    static std::string& Log() {
      static std::string log;
      return log;
    }
    int number;
  };
  Tracked const source[] = {Tracked(1), Tracked(2), Tracked(3)};
  alignas(Tracked) unsigned char slots[sizeof source];
  HYLBasReplicatorGeneric const tracked = HYLBasGetReplicator<Tracked>();
  tracked.m_copy(source, slots, 3);
  tracked.m_destroy(slots, 2);
  tracked.m_destroy(slots + 2 * sizeof(Tracked), 1);
  EXPECT_EQ(Tracked::Log(), "123bcd");
}

} // namespace
