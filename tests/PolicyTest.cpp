// Element policies: pure functions and plain records, as far as no walk shows them.
#include <algorithm>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "HYLBasComparitor.h"
#include "HYLBasHashValue.h"
#include "HYLBasReplicator.h"
#include "HYLBasSwap.h"

namespace {

TEST(HashValue, DropsTheTwoLowBitsThenReduces) {
  EXPECT_TRUE(HashValue(13u, 4) == 3 && HashValue(100u, 7) == 4 && HashValue(4294967295u, 7) == 0);
  std::uint64_t const bits = (std::uint64_t{3} << 32) + 4096; // of which the low 32 count
  void* const address = reinterpret_cast<void*>(static_cast<std::uintptr_t>(bits));
  EXPECT_TRUE(HashValue(address, 16) == 0 && HashValue(address, 7) == 1024 % 7);
}

TEST(Comparitor, CharStarTellsWhetherStringsDiffer) {
  char const* const words[] = {"", "a", "ab", "abc", "abd"};
  for (char const* a : words)
    for (char const* b : words)
      EXPECT_EQ(HYLBasCompareConstCharStar(a, std::string(b).c_str(), nullptr), a != b);
}

template <class T>
void ExpectReplicator(std::size_t size, HYLBasReplicatorGeneric::CopyFunction copy,
                      HYLBasReplicatorGeneric::DestroyFunction destroy) {
  HYLBasReplicatorGeneric r = HYLBasGetReplicator<T>(), other(12);
  HYLBasSwap(r, other);
  EXPECT_TRUE(r.m_size == 12 && r.m_copy == nullptr && r.m_destroy == nullptr);
  EXPECT_TRUE(other.m_size == static_cast<int>(size) && other.m_copy == copy);
  EXPECT_EQ(other.m_destroy, destroy);
}

// Runs on either side of the switch to a block move, apart and overlapping.
template <class T>
void ExpectCopies() {
  for (unsigned int count : {0u, 1u, 9u, 10u, 17u})
    for (std::size_t shift : {0u, 1u, 3u, 20u}) {
      T values[40], expected[40];
      for (int i = 0; i != 40; ++i)
        values[i] = expected[i] = static_cast<T>(i);
      std::copy_n(expected + shift, count, expected);
      HYLBasPODCopy<T>(values + shift, values, count);
      EXPECT_TRUE(std::equal(values, values + 40, expected)) << count << ' ' << shift;
    }
}

TEST(Replicator, OfEveryElementType) {
#define PLAIN(T)                                                                                   \
  ExpectCopies<T>();                                                                               \
  ExpectReplicator<T>(sizeof(T), HYLBasPODCopy<T>, nullptr);
#define CLASS(size, ...)                                                                           \
  ExpectReplicator<__VA_ARGS__>(size, HYLBasStandardCopy<__VA_ARGS__>,                             \
                                HYLBasStandardDestroy<__VA_ARGS__>);
#define MAPPED(V) CLASS(sizeof(V) == 8 ? 16 : 8, HYLBasPair<int const, V>)
  HYLBAS_FOR_EACH_PLAIN_TYPE(PLAIN)
  HYLBAS_FOR_EACH_MAPPED_TYPE(MAPPED)
  CLASS(8, HYLBasPair<int, int>)
}

// Elements that own something: copies and destructions balance, first to last.
TEST(Replicator, ConstructsAndDestroysClassElements) {
  static std::string log;
  struct Tracked {
    char name;
    explicit Tracked(char n) : name(n) {}
    Tracked(Tracked const& other) : name(other.name) { log += name; }
    ~Tracked() { log += static_cast<char>(name - 'a' + 'A'); }
  } const source[] = {Tracked('a'), Tracked('b'), Tracked('c')};
  alignas(Tracked) char slots[sizeof source];
  HYLBasReplicatorGeneric const tracked = HYLBasGetReplicator<Tracked>();
  tracked.m_copy(source, slots, 3);
  tracked.m_destroy(slots, 2);
  tracked.m_destroy(slots + 2, 1);
  EXPECT_EQ(log, "abcABC");
}

} // namespace
