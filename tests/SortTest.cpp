// The sorts of whole arrays and the tests for order, and what they cost at worst.
#include <algorithm>
#include <cstddef>
#include <cstdint>
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
#include "sorting/SortEngine.h"
#include "support/Aborted.h"
#include "support/RecordingMemory.h"
#include "support/SortInputs.h"

namespace {

using Ints = std::vector<int>;
using Pair = HYLBasPair<int, int>;

// The host's reports, which may return here.
std::vector<std::string> reports;
bool reportReturns = true;

} // namespace

void QELFatalError(char const* message, char const* a, char const* b, char const* c,
                   char const* path, int line) {
  EXPECT_TRUE(a == nullptr && b == nullptr && c == nullptr);
  reports.push_back(std::string(message) + '|' + path + ':' + std::to_string(line));
  if (!reportReturns) throw reports.back();
}

namespace {

/// The library's sort, and what it chooses from as far as this processor can.
template <class T>
std::vector<void (*)(T*, T*)> Sorts() {
  using namespace hylbas_detail;
  std::vector<void (*)(T*, T*)> sorts{HYLBasSortSpecial, SortEngine<T, ScalarWays>::Sort};
#ifdef HYLBAS_SORTS_VECTORS
  if (avx2::IsSupported()) sorts.push_back(SortEngine<T, avx2::Ways>::Sort);
  if (avx512::IsSupported()) sorts.push_back(SortEngine<T, avx512::Ways>::Sort);
#endif
  return sorts;
}

/// Sorts ranges with something on either side, and compares with the standard's sort.
template <class T>
void CheckSorts(std::vector<T> expected) {
  static std::size_t misalignment = 0;
  std::size_t const before = misalignment++ % 17, after = 16;
  expected.insert(expected.begin(), before, inputs::ElementOf<T>(5));
  expected.insert(expected.end(), after, inputs::ElementOf<T>(-5));
  std::vector<T> const unsorted = expected;
  std::sort(expected.begin() + before, expected.end() - after);
  for (auto* const sort : Sorts<T>()) {
    std::vector<T> actual = unsorted;
    sort(actual.data() + before, actual.data() + actual.size() - after);
    ASSERT_FALSE(actual < expected || expected < actual) << actual.size(); // pairs have no ==
  }
}

void CheckAllSorts(Ints const& values) {
  recording::Reset(nullptr, 0);
  CheckSorts(values);
  CheckSorts(inputs::Elements<long long>(values));
  CheckSorts(inputs::Elements<Pair>(values));
  EXPECT_TRUE(recording::Events().empty());
}

TEST(SortSpecial, SortsEveryPatternAndAllocatesNothing) {
  Ints sizes(300);
  std::iota(sizes.begin(), sizes.end(), 0);
  sizes.insert(sizes.end(), {1000, 4097, 30000});
  for (inputs::Pattern const& pattern : inputs::patterns) {
    SCOPED_TRACE(pattern.name);
    for (int const n : sizes)
      CheckAllSorts(inputs::Make(pattern, n));
    if (HasFailure()) return;
  }
  HYLBasSortSpecial(static_cast<int*>(nullptr), nullptr);
}

TEST(SortSpecial, OrdersByTheWholeValue) {
  constexpr int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
  using Int64 = std::numeric_limits<long long>;
  CheckSorts<int>({0, most, least, -1, 1, least, most, 0});
  CheckSorts<long long>({5, -1, 1ll << 32, Int64::max(), (1ll << 32) - 1, Int64::min()});
  CheckSorts<Pair>({{most, least}, {0, -5}, {-1, 5}, {least, most}, {0, 5}});
}

// Networks that sort all sequences of two values sort everything.
template <class T>
void CheckSequencesOfTwoValues() {
  for (auto* const sort : Sorts<T>())
    for (int n = 2; n <= 16; ++n)
      for (int bits = 0; bits != 1 << n; ++bits) {
        T values[16];
        for (int i = 0; i != n; ++i)
          values[i] = bits >> i & 1;
        sort(values, values + n);
        ASSERT_TRUE(std::is_sorted(values, values + n)) << n << ' ' << bits;
      }
}

TEST(SortSpecial, SortsEverySequenceOfTwoValues) {
  CheckSequencesOfTwoValues<int>();
  CheckSequencesOfTwoValues<long long>();
}

struct Item {
  int number;
  static inline inputs::Adversary* adversary;
};
bool operator<(Item a, Item b) { return Item::adversary->IsBefore(a.number, b.number); }

using ItemEngine = hylbas_detail::SortEngine<Item>;

void SortItems(inputs::Adversary& adversary, int n, void (*sort)(Item*, Item*)) {
  Item::adversary = &adversary;
  std::vector<Item> items;
  for (int i = 0; i != n; ++i)
    items.push_back({i});
  sort(items.data(), items.data() + n);
  Ints values;
  for (Item const item : items)
    values.push_back(adversary.Values().at(static_cast<std::size_t>(item.number)));
  EXPECT_TRUE(std::is_sorted(values.begin(), values.end()));
}

// What the sorts promise for n elements, with 1 KiB of stack for each level of recursion. Against
// this adversary a quicksort without a limit takes some n²/20 comparisons.
void CheckCost(inputs::Adversary const& adversary, int n, int levels) {
  EXPECT_LE(adversary.comparisons, 4l * n * __lg(n) + 16l * n);
  EXPECT_LE(adversary.StackUsed(), (levels + 4ul) * 1024);
}

TEST(SortCost, StaysWithinItsBoundsAgainstAnAdversary) {
  for (int const n : {1000, 30000, 200000}) {
    inputs::Adversary ofIndices(n), ofItems(n);
    ofIndices.SortIndices();
    CheckCost(ofIndices, n, 2 * __lg(n));
    // Without the look for order, which an adversary would make succeed.
    SortItems(ofItems, n, ItemEngine::SortUnordered);
    CheckCost(ofItems, n, __lg(n));
    CheckAllSorts(ofItems.Values());
  }
}

TEST(SortCost, IsLinearForFewDifferentValuesAndNearlyInOrder) {
  constexpr int n = 30000;
  for (int i = 0; i != static_cast<int>(std::size(inputs::patterns)); ++i) {
    if (i < inputs::firstInOrder && i != 3 && i != 5) continue;
    inputs::Adversary counter(inputs::Make(inputs::patterns[i], n));
    SortItems(counter, n, ItemEngine::Sort);
    EXPECT_LE(counter.comparisons, 10 * n) << inputs::patterns[i].name;
  }
}

void SortTwo(Ints& first, Ints& second) {
  HYLBasSort2Special(first.data(), first.data() + first.size(), second.data(),
                     second.data() + second.size());
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
  EXPECT_EXIT(SortTwo(first, second), Aborted(), "");

  reportReturns = false;
  recording::Reset(nullptr, 0);
  EXPECT_THROW(SortTwo(first, second), std::string);
  reportReturns = true;
  EXPECT_EQ(reports, (std::vector{report, report}));
  EXPECT_EQ(first, (Ints{1, 2}));
  EXPECT_TRUE(recording::Events().empty());
}

TEST(Sort2Special, AsksForMoreThanThereIsWhereItCannotCount) {
  if constexpr (sizeof(void*) > 4) {
    int place;
    int* const first = &place;
    int* const last = reinterpret_cast<int*>(reinterpret_cast<std::uintptr_t>(first) +
                                             (std::uint64_t{4294967297u} << 2));
    EXPECT_EXIT(HYLBasSort2Special(first, last, first, last), Aborted(), "4294967295 bytes");
  }
}

// The same list, comparisons and contexts as those of the steps that anyone may call.
TEST(SortGenericIx, ListsTheIndicesInOrder) {
  using Comparison = std::tuple<unsigned int, unsigned int, void const*, void const*>;
  static std::vector<Comparison> comparisons;
  static Ints values;
  auto const isBefore = [](unsigned int a, unsigned int b, void const* c, void const* d) {
    comparisons.emplace_back(a, b, c, d);
    return values.at(a) < values.at(b);
  };
  int const contexts[2] = {};
  HYLBasIxComparitor const ordering{isBefore, &contexts[0], &contexts[1]};
  HYLBasVector<unsigned int> indices(7u, 99u); // its contents do not matter
  for (int const n : {3, 0, 1, 2, 16, 17, 1000, 5})
    for (inputs::Pattern const& pattern : inputs::patterns) {
      SCOPED_TRACE(pattern.name + (", elements: " + std::to_string(n)));
      values = inputs::Make(pattern, n);
      bool const hasRoom = indices.capacity() >= values.size();
      recording::Events().clear();
      comparisons.clear();
      HYLBasSortGenericIx(nullptr, static_cast<unsigned int>(n), indices, ordering);
      EXPECT_EQ(recording::Events().empty(), hasRoom);
      std::vector<Comparison> const made = std::move(comparisons);

      std::vector<unsigned int> expected(values.size());
      std::iota(expected.begin(), expected.end(), 0u);
      comparisons.clear();
      SGIsort<unsigned int*, HYLBasIxComparitor>(expected.data(), expected.data() + n, ordering);
      EXPECT_TRUE(made == comparisons);
      EXPECT_TRUE(std::equal(indices.begin(), indices.end(), expected.begin(), expected.end()));
      EXPECT_TRUE(std::is_sorted(indices.begin(), indices.end(), ordering));
    }
}

// Whatever comparison throws, the list holds every index.
TEST(SortGenericIx, LosesNoIndexWhenTheOrderingThrows) {
  using Sort = void (*)(unsigned int*, unsigned int*, HYLBasIxComparitor);
  Sort const sorts[] = {SGIsort<unsigned int*, HYLBasIxComparitor>,
                        [](auto* first, auto* last, auto ordering) {
                          partial_sort(first, last - 40, last, ordering);
                        }};
  for (Sort const sort : sorts)
    for (int count = 1, left = 0; left == 0; ++count) {
      left = count;
      unsigned int indices[100];
      std::iota(indices, indices + 100, 0u);
      HYLBasIxComparitor const ordering{
          [](unsigned int a, unsigned int b, void const* counter, void const*) {
            if (--*const_cast<int*>(static_cast<int const*>(counter)) == 0) throw counter;
            return a * 37 % 101 < b * 37 % 101;
          },
          &left, nullptr};
      try {
        sort(indices, indices + 100, ordering);
      } catch (void const*) {
      }
      std::sort(indices, indices + 100);
      for (unsigned int i = 0; i != 100; ++i)
        ASSERT_EQ(indices[i], i) << "thrown by comparison " << count;
    }
}

bool IsLess(void const* a, void const* b) {
  return static_cast<Pair const*>(a)->second < static_cast<Pair const*>(b)->second;
}

struct LessPredicate : HYLBasBinaryPredicateGeneric {
  Pair const* origin;
  mutable Ints compared; // operands, as positions
  explicit LessPredicate(Pair const* begin) : origin(begin) {}
  bool operator()(void const* a, void const* b) const override {
    for (void const* operand : {a, b})
      compared.push_back(static_cast<int>(static_cast<Pair const*>(operand) - origin));
    return IsLess(a, b);
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
  HYLBasReplicatorGeneric const replicator(sizeof(Pair));
  for (Case const& c : cases) {
    std::vector<Pair> pairs;
    for (int const value : c.values)
      pairs.emplace_back(-value, value);
    Pair const* const begin = pairs.data();
    Pair const* const end = begin + pairs.size();
    EXPECT_EQ(HYLBasIsSortedGeneric1(begin, end, replicator, IsLess), c.isSorted);
    LessPredicate const predicate(begin);
    EXPECT_EQ(HYLBasIsSortedGeneric2(begin, end, replicator, predicate), c.isSorted);
    EXPECT_EQ(predicate.compared, c.compared);
  }
}

} // namespace
