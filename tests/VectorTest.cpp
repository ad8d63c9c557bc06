// The typed vector beside the standard one.
#include <csignal>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "HYLBasVector.h"
#include "support/RecordingMemory.h"

namespace {

// A plain type that the library has no code for.
struct Word {
  unsigned long value;
  Word(unsigned long v = 0) : value(v) {}
  bool operator==(Word const&) const = default;
};

template <class T>
class Vector : public testing::Test {};
using PlainTypes =
    testing::Types<int, unsigned int, float, double, long long, unsigned long long, short, Word>;
TYPED_TEST_SUITE(Vector, PlainTypes);

template <class T>
void ExpectSame(HYLBasVector<T> const& v, std::vector<T> const& expected) {
  ASSERT_LE(v.size(), v.capacity());
  ASSERT_EQ(v.empty(), expected.empty());
  ASSERT_TRUE(std::equal(v.begin(), v.end(), expected.begin(), expected.end()));
  ASSERT_EQ(v.size(), expected.size());
  for (unsigned int i = 0; i != v.size(); ++i)
    ASSERT_TRUE(&v[i] == v.begin() + i && &v.at(i) == &v[i]);
  ASSERT_TRUE(v.empty() || (&v.front() == v.begin() && &v.back() == v.end() - 1));
}

// One operation, the same on either vector; returns the index of the position that it returns.
template <class V, class T = typename V::value_type>
std::ptrdiff_t Act(V& v, V& other, unsigned int action, unsigned int k, unsigned int n, T value) {
  T const source[] = {T(1), T(2), T(3), T(4), T(5), T(6), T(7), T(8), T(9), T(10), T(11), T(12)};
  auto const at = v.begin() + k, last = at + n % (v.size() - k + 1);
  if (action == 0) v.push_back(value);
  if (action == 1 && k) v.push_back(v[k - 1]);
  if (action == 2 && k) v.pop_back();
  if constexpr (std::is_same_v<V, HYLBasVector<T>>) {
    if (action == 3) v.push_back();
    if (action == 4) return v.insert(at) - v.begin();
  } else {
    if (action == 3) v.push_back(T());
    if (action == 4) return v.insert(at, T()) - v.begin();
  }
  if (action == 5) return v.insert(at, value) - v.begin();
  if (action == 6) v.insert(at, n, value);
  if (action == 7) v.insert(at, source, source + n % 13);
  if (action == 8 && k != v.size()) return v.erase(at) - v.begin();
  if (action == 9) return v.erase(at, last) - v.begin();
  if (action == 10) v.assign(n, value);
  if (action == 11) v.resize(n);
  if (action == 12) v.resize(n, value);
  if (action == 13) v.reserve(n);
  if (action == 14 && n < 8) v.clear();
  if (action == 15 && n % 2) v.swap(other);
  if (action == 15 && n % 2 == 0) swap(v, other); // found by its argument
  if (action == 16) return &(v = other) - &v;
  V& self = v;
  if (action == 17) v = self;
  return 0;
}

TYPED_TEST(Vector, FollowsTheStandardVector) {
  using T = TypeParam;
  std::mt19937 random(17);
  auto const below = [&](unsigned int n) { return static_cast<unsigned int>(random() % n); };
  HYLBasVector<T> v, other(3, T(9));
  std::vector<T> expected, expectedOther(3, T(9));
  for (int step = 0; step != 3000 && !testing::Test::HasFailure(); ++step) {
    unsigned int const action = below(18), k = below(v.size() + 1), n = below(30);
    T const value = below(3) ? static_cast<T>(random()) : T();
    unsigned int const capacity = v.capacity();
    ASSERT_EQ(Act(v, other, action, k, n, value),
              Act(expected, expectedOther, action, k, n, value));
    ASSERT_TRUE(action != 13 || v.capacity() == std::max(n, capacity));
    ASSERT_TRUE(action != 14 || v.capacity() == capacity);
    HYLBasVector<T> const copy(v), range(v.begin(), v.end());
    ASSERT_TRUE(copy.capacity() == v.size() && range.capacity() == v.size());
    ExpectSame(v, expected);
    ExpectSame(other, expectedOther);
    ExpectSame(copy, expected);
    ExpectSame(range, expected);
  }
}

TYPED_TEST(Vector, StartsEmptyOrExactlyFilled) {
  using T = TypeParam;
  recording::Reset(nullptr, 0);
  {
    HYLBasVector<T> const none, zero(0), filled(3), copies(2, T(7)), copyOfNone(none);
    for (auto const* v : {&none, &zero, &copyOfNone})
      EXPECT_TRUE(v->begin() == nullptr && v->end() == nullptr && v->capacity() == 0 && v->empty());
    ExpectSame(filled, {T(), T(), T()});
    ExpectSame(copies, {T(7), T(7)});
    EXPECT_EQ(filled.capacity(), 3u);
    EXPECT_EQ(recording::LiveBlocks(), 2u);
    EXPECT_EQ(none.max_size(), 4294967295u / sizeof(T));
    static_assert(std::is_same_v<decltype(none.get_allocator()), HYLBasVectorAllocator>);
  }
  static_assert(std::is_convertible_v<unsigned int, HYLBasVector<T>>);
  auto* const heap = new HYLBasVector<T>(1, T(5));
  EXPECT_EQ(recording::LiveBlocks(), 2u); // the object and its element
  delete heap;
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

TEST(VectorDeathTest, AtChecksItsIndexAndPositionsAreChecked) {
  HYLBasVector<int> v(2, 5);
  v.reserve(8);
  auto const dies = testing::KilledBySignal(SIGABRT);
  char const* const message = "^Error: out-of-bounds violation in HYLBasVector.\n$";
  EXPECT_EXIT(v.at(2), dies, message);
  EXPECT_EXIT(static_cast<HYLBasVector<int> const&>(v).at(unsigned(-1)), dies, message);
  EXPECT_EXIT(v.insert(v.begin() - 1), dies, "^$");
  EXPECT_EXIT(v.insert(v.begin() + 9, 3, 1), dies, "^$");
  EXPECT_EXIT(v.erase(v.end()), dies, "^$");
  EXPECT_EXIT(v.erase(v.begin(), v.end() + 1), dies, "^$");
}

TEST(VectorOfPairs, ServesAsScratch) {
  using Pair = HYLBasPair<int, int>;
  HYLBasVector<Pair> v(2), copies(3, Pair(4, 5));
  for (Pair const& pair : v)
    EXPECT_TRUE(pair.first == 0 && pair.second == 0);
  v.swap(copies);
  EXPECT_TRUE(v.end() - v.begin() == 3 && copies.end() - copies.begin() == 2);
  for (Pair const& pair : v)
    EXPECT_TRUE(pair.first == 4 && pair.second == 5);
}

// What host code that derives from a facade sees.
struct Derived : HYLBasVector<double> {
  using HYLBasVector::fromGeneric;
  using HYLBasVector::Generic;
  using HYLBasVector::HYLBasVector;
  using HYLBasVector::range_check;
  using HYLBasVector::toGeneric;
};

TEST(VectorFacade, IsItsCore) {
  Derived v(3u, 1.5);
  EXPECT_EQ(static_cast<void*>(&v.Generic()), static_cast<void*>(&v));
  EXPECT_EQ(v.Generic().Size(), 3u);
  double const value = 2.5;
  v.Generic().PushBack(&value);
  EXPECT_EQ(v.back(), 2.5);
  EXPECT_EQ(v.capacity(), 10u);
  EXPECT_EQ(v.fromGeneric(v.toGeneric(v.begin())), v.begin());
  v.range_check(3);
}

} // namespace
