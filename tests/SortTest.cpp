// The sorts of whole arrays and the tests for order, and what they cost at worst.
#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "HYLBasIntrosort.h"
#include "HYLBasIsSortedGeneric.h"
#include "HYLBasSortGenericIx.h"
#include "HYLBasSortSpecial.h"
#include "LUXCORE.h"
#include "SortEngine.h"
#include "support/RecordingMemory.h"
#include "support/SortInputs.h"

namespace {

using Pair = HYLBasPair<int, int>;

// The host's report, which may return here.
std::vector<std::string> reports;
bool reportReturns = true;

} // namespace

void QELFatalError(char const* message, char const* a, char const* b, char const* c,
                   char const* path, int line) {
  bool const isReservedNull = a == nullptr && b == nullptr && c == nullptr;
  reports.push_back(std::string(message) + '|' + path + ':' + std::to_string(line) +
                    (isReservedNull ? "" : " with more"));
  if (!reportReturns) throw reports.back();
}

namespace {

template <class T>
T ElementOf(int value);
template <>
int ElementOf<int>(int value) {
  return value;
}
template <>
long long ElementOf<long long>(int value) { // halves that order differently by themselves
  return (static_cast<long long>(value) >> 3) * 4294967296 + static_cast<unsigned int>(value) * 77u;
}
template <>
Pair ElementOf<Pair>(int value) {
  return Pair(value >> 3, static_cast<int>(static_cast<unsigned int>(value) * 0x30000001u));
}

/// Sorts a range with something on either side, and compares with the standard's sort.
template <class T>
void CheckSort(std::vector<int> const& values, void (*sort)(T*, T*)) {
  std::vector<T> expected;
  for (int const value : values)
    expected.push_back(ElementOf<T>(value));
  expected.insert(expected.begin(), 3, ElementOf<T>(5));
  expected.insert(expected.end(), 3, ElementOf<T>(-5));
  std::vector<T> actual = expected;
  std::sort(expected.begin() + 3, expected.end() - 3);
  sort(actual.data() + 3, actual.data() + actual.size() - 3);
  auto const isSame = [](T const& a, T const& b) { return !(a < b) && !(b < a); };
  ASSERT_TRUE(std::equal(actual.begin(), actual.end(), expected.begin(), isSame)) << values.size();
  // The steps that the engine replaces, on what it sorted, rotated by half.
  std::rotate(actual.begin() + 3, actual.begin() + 3 + std::ssize(values) / 2, actual.end() - 3);
  hylbas_detail::IntrosortSteps<T, std::ptrdiff_t, hylbas_detail::Ascending>::Sort(
      actual.data() + 3, actual.data() + actual.size() - 3, {});
  ASSERT_TRUE(std::equal(actual.begin(), actual.end(), expected.begin(), isSame)) << values.size();
}

void CheckAllSorts(std::vector<int> const& values) {
  recording::Reset(nullptr, 0);
  CheckSort<int>(values, HYLBasSortSpecial);
  CheckSort<long long>(values, HYLBasSortSpecial);
  CheckSort<long long>(values, sortInt64_1);
  CheckSort<Pair>(values, HYLBasSortSpecial);
  CheckSort<Pair>(values, SGIsort<Pair*>);
  EXPECT_TRUE(recording::Events().empty());
}

TEST(SortSpecial, SortsEveryPatternAndAllocatesNothing) {
  std::vector<int> sizes(130);
  std::iota(sizes.begin(), sizes.end(), 0);
  sizes.insert(sizes.end(), {255, 256, 1000, 4097, 30000});
  for (inputs::Pattern const& pattern : inputs::patterns) {
    SCOPED_TRACE(pattern.name);
    for (int const n : sizes)
      CheckAllSorts(inputs::Make(pattern, n));
    if (HasFailure()) return;
  }
  constexpr int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
  CheckAllSorts({0, most, least, -1, 1, least, most, 0});
  long long extremes[] = {5,
                          -1,
                          1ll << 32,
                          std::numeric_limits<long long>::max(),
                          (1ll << 32) - 1,
                          std::numeric_limits<long long>::min()};
  HYLBasSortSpecial(std::begin(extremes), std::end(extremes));
  EXPECT_TRUE(std::is_sorted(std::begin(extremes), std::end(extremes)));
  Pair pairs[] = {Pair(most, least), Pair(0, -5), Pair(-1, 5), Pair(least, most), Pair(0, 5)};
  HYLBasSortSpecial(std::begin(pairs), std::end(pairs));
  EXPECT_TRUE(std::is_sorted(std::begin(pairs), std::end(pairs)));
  HYLBasSortSpecial(static_cast<int*>(nullptr), nullptr);
}

// Networks that sort all sequences of two values sort everything.
TEST(SortSpecial, SortsEverySequenceOfTwoValues) {
  for (int n = 2; n <= 16; ++n)
    for (int bits = 0; bits != 1 << n; ++bits) {
      int values[16];
      for (int i = 0; i != n; ++i)
        values[i] = bits >> i & 1;
      HYLBasSortSpecial(values, values + n);
      ASSERT_TRUE(std::is_sorted(values, values + n)) << n << ' ' << bits;
    }
}

// Values whose comparisons are answered by an adversary, and show how deep the sort is.
struct Item {
  int number;
  static inline inputs::Adversary* adversary;
  static inline std::uintptr_t lowest, highest;

  static bool IsBefore(int a, int b) {
    auto const here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    lowest = std::min(lowest, here);
    highest = std::max(highest, here);
    return adversary->IsBefore(a, b);
  }
};
bool operator<(Item a, Item b) { return Item::IsBefore(a.number, b.number); }

bool IsItemBefore(unsigned int a, unsigned int b, void const*, void const*) {
  return Item::IsBefore(static_cast<int>(a), static_cast<int>(b));
}

void SortIndices(int n) {
  HYLBasVector<unsigned int> indices;
  HYLBasSortGenericIx(nullptr, static_cast<unsigned int>(n), indices,
                      {IsItemBefore, nullptr, nullptr});
}

// Without the look for runs, which an adversary would make succeed.
void SortItems(int n) {
  std::vector<Item> items;
  for (int i = 0; i != n; ++i)
    items.push_back({i});
  hylbas_detail::SortEngine<Item>::SortUnordered(items.data(), items.data() + n);
}

// What the sorts promise for n elements, with 1 KiB of stack for each level of recursion. Against
// this adversary a quicksort without a limit takes some n²/20 comparisons.
void RunAgainst(inputs::Adversary& adversary, int n, int levels, void (*sort)(int n)) {
  Item::adversary = &adversary;
  Item::lowest = std::numeric_limits<std::uintptr_t>::max();
  Item::highest = 0;
  sort(n);
  EXPECT_LE(adversary.comparisons, 4l * n * __lg(n) + 16l * n);
  EXPECT_LE(Item::highest - Item::lowest, (levels + 4ul) * 1024);
}

TEST(SortCost, StaysWithinItsBoundsAgainstAnAdversary) {
  for (int const n : {1000, 30000, 200000}) {
    inputs::Adversary ofIndices(n), ofItems(n);
    RunAgainst(ofIndices, n, 2 * __lg(n), SortIndices);
    RunAgainst(ofItems, n, __lg(n), SortItems);
    CheckAllSorts(ofItems.Values());
  }
}

TEST(SortCost, IsLinearForFewDifferentValues) {
  for (int const pattern : {3, 4}) {
    constexpr int n = 30000;
    inputs::Adversary counter(inputs::Make(inputs::patterns[pattern], n));
    RunAgainst(counter, n, __lg(n), SortItems);
    EXPECT_LE(counter.comparisons, 10 * n);
  }
}

using Ints = std::vector<int>;

void SortTwo(Ints& first, Ints& second) {
  HYLBasSort2Special(first.data(), first.data() + first.size(), second.data(),
                     second.data() + second.size());
}

TEST(Sort2Special, ArrangesTheSecondArrayWithTheFirst) {
  Ints first{3, 1, 2}, second{30, 10, 20};
  SortTwo(first, second);
  EXPECT_EQ(first, (Ints{1, 2, 3}));
  EXPECT_EQ(second, (Ints{10, 20, 30}));
  first = {2, 1, 2};
  second = {9, 5, 4};
  SortTwo(first, second);
  EXPECT_EQ(first, (Ints{1, 2, 2}));
  EXPECT_EQ(second, (Ints{5, 4, 9}));
}

TEST(Sort2Special, IsASortOfPairsInOneBlock) {
  for (inputs::Pattern const& pattern : inputs::patterns)
    for (int const n : {0, 1, 2, 31, 1000}) {
      Ints first = inputs::Make(pattern, n), second = inputs::Make(inputs::patterns[0], n, 2);
      std::vector<std::pair<int, int>> expected;
      for (std::size_t i = 0; i != first.size(); ++i)
        expected.emplace_back(first[i], second[i]);
      std::sort(expected.begin(), expected.end());

      recording::Reset(nullptr, 0);
      SortTwo(first, second);
      for (std::size_t i = 0; i != first.size(); ++i)
        ASSERT_TRUE(expected[i] == std::make_pair(first[i], second[i])) << pattern.name << ' ' << n;
      auto const& events = recording::Events();
      ASSERT_EQ(events.size(), n == 0 ? 0u : 2u);
      if (n != 0) {
        EXPECT_EQ(events[0].n, 8u * static_cast<unsigned int>(n));
      }
      EXPECT_EQ(recording::LiveBlocks(), 0u);
    }
}

TEST(Sort2Special, ReportsDifferentLengths) {
  std::string const report = "AssertionFailed:arraySize == arraySecondEnd - arraySecondBegin|"
                             "HYLBasGenerics.m/src/HYLBasAlgoGeneric:867";
  Ints first{2, 1}, second{20, 10, -5};
  reports.clear();
  SortTwo(first, second); // goes on where both arrays have that many elements
  EXPECT_EQ(first, (Ints{1, 2}));
  EXPECT_EQ(second, (Ints{10, 20, -5}));
  ASSERT_EQ(reports, std::vector{report});

  second.resize(1);
  EXPECT_EXIT(SortTwo(first, second), testing::KilledBySignal(SIGABRT), "");

  reportReturns = false;
  recording::Reset(nullptr, 0);
  EXPECT_THROW(SortTwo(first, second), std::string);
  reportReturns = true;
  EXPECT_EQ(reports, (std::vector{report, report}));
  EXPECT_EQ(first, (Ints{1, 2}));
  EXPECT_TRUE(recording::Events().empty());
}

HYLBasIxComparitor ByValue(Ints const& values) {
  return {[](unsigned int a, unsigned int b, void const* context, void const*) {
            auto const& v = *static_cast<Ints const*>(context);
            return v.at(a) < v.at(b);
          },
          &values, nullptr};
}

TEST(SortGenericIx, ListsTheIndicesInOrder) {
  HYLBasVector<unsigned int> indices(7u, 99u); // its contents do not matter
  for (int const n : {3, 0, 1, 2, 16, 17, 1000, 5})
    for (inputs::Pattern const& pattern : inputs::patterns) {
      Ints const values = n == 3 ? Ints{7, 3, 5} : inputs::Make(pattern, n);
      bool const hasRoom = indices.capacity() >= values.size();
      recording::Events().clear();
      HYLBasSortGenericIx(nullptr, static_cast<unsigned int>(n), indices, ByValue(values));
      EXPECT_EQ(recording::Events().empty(), hasRoom);
      ASSERT_EQ(indices.size(), values.size());
      EXPECT_TRUE(std::is_sorted(indices.begin(), indices.end(), ByValue(values)));
      std::vector<unsigned int> found(indices.begin(), indices.end());
      if (n == 3) {
        EXPECT_EQ(found, (std::vector<unsigned int>{1, 2, 0}));
      }
      std::sort(found.begin(), found.end());
      for (unsigned int i = 0; i != found.size(); ++i)
        ASSERT_EQ(found[i], i);
    }
}

// The steps of the index family on 0, 1, 2, …, comparison by comparison, with both contexts.
TEST(SortGenericIx, ComparesWhatTheStepsCompare) {
  using Comparison = std::tuple<unsigned int, unsigned int, void const*, void const*>;
  static std::vector<Comparison> comparisons;
  static Ints values;
  auto const record = [](unsigned int a, unsigned int b, void const* c, void const* d) {
    comparisons.emplace_back(a, b, c, d);
    return values[a] < values[b];
  };
  int const contexts[2] = {};
  HYLBasIxComparitor const ordering{record, &contexts[0], &contexts[1]};
  for (int const n : {16, 17, 1000}) {
    values = inputs::Make(inputs::patterns[3], n);
    std::vector<unsigned int> expected(values.size());
    std::iota(expected.begin(), expected.end(), 0u);
    comparisons.clear();
    hylbas_detail::IntrosortSteps<unsigned int, std::ptrdiff_t, HYLBasIxComparitor>::Sort(
        expected.data(), expected.data() + n, ordering);
    std::vector<Comparison> const described = comparisons;
    comparisons.clear();
    HYLBasVector<unsigned int> indices;
    HYLBasSortGenericIx(nullptr, static_cast<unsigned int>(n), indices, ordering);
    EXPECT_TRUE(comparisons == described);
    EXPECT_TRUE(std::equal(indices.begin(), indices.end(), expected.begin()));
    EXPECT_EQ(std::get<3>(comparisons.front()), &contexts[1]);
  }
}

struct LessPredicate : HYLBasBinaryPredicateGeneric {
  mutable Ints compared; // operands, as positions
  void const* origin = nullptr;
  bool operator()(void const* a, void const* b) const override {
    for (void const* operand : {a, b})
      compared.push_back(
          static_cast<int>(static_cast<int const*>(operand) - static_cast<int const*>(origin)));
    return *static_cast<int const*>(a) < *static_cast<int const*>(b);
  }
};

TEST(IsSortedGeneric, ComparesEachElementWithItsPredecessor) {
  struct Case {
    Ints values;
    bool isSorted;
    Ints compared;
  };
  Case const cases[] = {{{1, 2, 2, 3}, true, {1, 0, 2, 1, 3, 2}},
                        {{1, 3, 2, 9}, false, {1, 0, 2, 1}},
                        {{2, 1}, false, {1, 0}},
                        {{4}, true, {}},
                        {{}, true, {}}};
  HYLBasReplicatorGeneric const ints(sizeof(int));
  HYLBasComparitorGeneric const less([](void const* a, void const* b) {
    return *static_cast<int const*>(a) < *static_cast<int const*>(b);
  });
  for (Case const& c : cases) {
    int const* const begin = c.values.data();
    int const* const end = begin + c.values.size();
    EXPECT_EQ(HYLBasIsSortedGeneric1(begin, end, ints, less), c.isSorted);
    LessPredicate predicate;
    predicate.origin = begin;
    EXPECT_EQ(HYLBasIsSortedGeneric2(begin, end, ints, predicate), c.isSorted);
    EXPECT_EQ(predicate.compared, c.compared);
  }
  // Elements of another size: pairs, by their second field alone.
  Pair const pairs[] = {{9, 1}, {5, 1}, {7, 2}};
  HYLBasComparitorGeneric const bySecond([](void const* a, void const* b) {
    return static_cast<Pair const*>(a)->second < static_cast<Pair const*>(b)->second;
  });
  HYLBasReplicatorGeneric const replicator = HYLBasGetReplicator<Pair>();
  EXPECT_TRUE(HYLBasIsSortedGeneric1(pairs, pairs + 3, replicator, bySecond));
}

} // namespace
