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

template <class T>
class Vector : public testing::Test {};
using PlainTypes = testing::Types<int, unsigned int, float, double, long long, unsigned long long>;
TYPED_TEST_SUITE(Vector, PlainTypes);

template <class T>
void ExpectSame(HYLBasVector<T> const& v, std::vector<T> const& expected) {
  ASSERT_EQ(v.size(), expected.size());
  ASSERT_LE(v.size(), v.capacity());
  ASSERT_EQ(v.empty(), expected.empty());
  ASSERT_TRUE(std::equal(v.begin(), v.end(), expected.begin(), expected.end()));
  for (unsigned int i = 0; i != v.size(); ++i) {
    ASSERT_EQ(v[i], expected[i]);
    ASSERT_EQ(&v.at(i), &v[i]);
  }
  if (!expected.empty()) {
    ASSERT_EQ(&v.front(), v.begin());
    ASSERT_EQ(&v.back(), v.end() - 1);
  }
}

TYPED_TEST(Vector, FollowsTheStandardVector) {
  using T = TypeParam;
  std::mt19937 random(17);
  auto const below = [&](unsigned int n) { return static_cast<unsigned int>(random() % n); };
  T const source[12] = {T(1), T(2), T(3), T(4), T(5), T(6), T(7), T(8), T(9), T(10), T(11), T(12)};
  HYLBasVector<T> v, other(3, T(9));
  std::vector<T> expected, expectedOther(3, T(9));
  for (int step = 0; step != 3000; ++step) {
    unsigned int const k = below(v.size() + 1), n = below(30);
    auto const at = expected.begin() + k;
    T const value = below(3) ? static_cast<T>(random()) : T();
    unsigned int const capacity = v.capacity();
    switch (below(18)) {
    case 0:
      v.push_back(value), expected.push_back(value);
      break;
    case 1:
      v.push_back(), expected.push_back(T());
      break;
    case 2:
      if (k) v.push_back(v[k - 1]), expected.push_back(T(expected[k - 1]));
      break;
    case 3:
      if (k) v.pop_back(), expected.pop_back();
      break;
    case 4:
      ASSERT_EQ(*v.insert(v.begin() + k, value), value);
      expected.insert(at, value);
      break;
    case 5:
      ASSERT_EQ(*v.insert(v.begin() + k), T());
      expected.insert(at, T());
      break;
    case 6:
      v.insert(v.begin() + k, n, value), expected.insert(at, n, value);
      break;
    case 7:
      v.insert(v.begin() + k, source, source + n % 13);
      expected.insert(at, source, source + n % 13);
      break;
    case 8:
      if (k == v.size()) break;
      ASSERT_EQ(v.erase(v.begin() + k), v.begin() + k);
      expected.erase(at);
      break;
    case 9: {
      unsigned int const count = below(v.size() - k + 1);
      ASSERT_EQ(v.erase(v.begin() + k, v.begin() + k + count), v.begin() + k);
      expected.erase(at, at + count);
      break;
    }
    case 10:
      v.assign(n, value), expected.assign(n, value);
      break;
    case 11:
      v.resize(n), expected.resize(n);
      break;
    case 12:
      v.resize(n, value), expected.resize(n, value);
      break;
    case 13:
      v.reserve(n);
      ASSERT_EQ(v.capacity(), n > capacity ? n : capacity);
      break;
    case 14:
      if (below(4)) break;
      v.clear(), expected.clear();
      ASSERT_EQ(v.capacity(), capacity);
      break;
    case 15:
      v.swap(other), expected.swap(expectedOther);
      break;
    case 16:
      ASSERT_EQ(&(v = other), &v);
      expected = expectedOther;
      break;
    case 17: {
      HYLBasVector<T>& self = v;
      v = self;
      HYLBasVector<T> const copy(v), range(v.begin(), v.end());
      ExpectSame(copy, expected);
      ExpectSame(range, expected);
      ASSERT_EQ(copy.capacity(), v.size());
      ASSERT_EQ(range.capacity(), v.size());
      break;
    }
    }
    ExpectSame(v, expected);
    ExpectSame(other, expectedOther);
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
    EXPECT_EQ(none.max_size(), sizeof(T) == 4 ? 1073741823u : 536870911u);
    static_assert(std::is_same_v<decltype(none.get_allocator()), HYLBasVectorAllocator>);
  }
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
  HYLBasVector<Pair> zeros(2), copies(3, Pair(4, 5));
  EXPECT_EQ(zeros.end() - zeros.begin(), 2);
  for (Pair const& pair : zeros)
    EXPECT_TRUE(pair.first == 0 && pair.second == 0);
  zeros.swap(copies);
  EXPECT_EQ(zeros.end() - zeros.begin(), 3);
  for (Pair const& pair : zeros)
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
