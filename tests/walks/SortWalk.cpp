// The sorts and their steps beside plain ones: arrays and what surrounds them to the bit, each
// comparison of indices, requests for memory, and what the sorts cost at worst.
#include <cstring>
#include <limits>
#include <numeric>
#include <random>
#include <tuple>

#include "HYLBasIntrosort.h"
#include "HYLBasIsSortedGeneric.h"
#include "HYLBasSortGenericIx.h"
#include "HYLBasSortSpecial.h"
#include "LUXCORE.h"
#include "sorting/SortEngine.h"
#include "support/Aborted.h"
#include "walks/Choices.h"
#include "walks/PlainIntrosort.h"

namespace {

using Ints = std::vector<int>;
using Pair = HYLBasPair<int, int>;
using hylbas_detail::SortEngine;

std::vector<std::string> reports;
bool reportReturns = true;
constexpr int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();

} // namespace

void QELFatalError(char const* message, char const* a, char const* b, char const* c,
                   char const* path, int line) {
  EXPECT_TRUE(a == nullptr && b == nullptr && c == nullptr);
  reports.push_back(std::string(message) + '|' + path + ':' + std::to_string(line));
  if (!reportReturns) throw reports.back();
}

namespace {

// The value at place i of n, where r is random. One or two passes must do from `firstLinear` on.
constexpr unsigned int firstLinear = 5;
constexpr int (*shapes[])(int i, int n, int r) = {
    [](int, int, int r) { return r - (1 << 30); },
    [](int i, int n, int) { return std::min(i, n - i); },
    [](int i, int, int r) { return r % 8 != 0    ? i
                                   : r % 16 != 0 ? least
                                                 : most; },
    [](int, int, int r) { return r % 2; },
    // Ordered wherever the sorts look before they choose a way.
    [](int i, int n, int r) { return (3 * i + n / 8) % n < n / 2 || i > n - 64 ? i : r % n; },
    [](int, int, int r) { return r % 16; },
    [](int i, int, int) { return i / 3; },
    [](int i, int n, int) { return n - i; },
    [](int i, int n, int) { return i == n - 1 ? -1 : i; },
    [](int i, int n, int r) { return r % 100 == 0 ? r / 100 % 1024 * n / 1024 : i; },
    [](int i, int n, int r) { return r % 100 == 0 || i == n - 1 ? n / 3 : n - i; },
    [](int i, int n, int) { return i % 64 < 2 ? n + i : i; },
    [](int i, int, int) { return i + i % 5; },
    [](int i, int n, int) { return (i + n / 3) % n; },
    [](int i, int n, int) { return n - (i + n / 3) % n; },
    [](int i, int n, int) { return i < n / 2 ? n / 2 - i : i; },
    [](int i, int n, int) { return i < n / 2 ? i : n + n / 2 - i; },
    [](int i, int n, int r) { return i < n - n / 32 ? i : r % 1024 * n / 1024; },
};

Ints Make(unsigned int shape, int n, unsigned int seed) {
  std::mt19937 random(seed);
  Ints values;
  for (int i = 0; i != n; ++i)
    values.push_back(shapes[shape](i, n, static_cast<int>(random() >> 1)));
  return values;
}

// What the sorts order by: values of items, of which some may only be decided when a sort asks, so
// that every pivot is among the least (after M. D. McIlroy, "A Killer Adversary for Quicksort",
// 1999). Remembers what is asked, and from how deep in the stack.
struct Keys {
  static constexpr int undecided = most - 1; // which no shape has
  Ints values;
  int decided = 0;
  unsigned int candidate = 0;
  std::size_t throwsAt = 0;
  std::vector<std::pair<unsigned int, unsigned int>> calls = {};
  std::uintptr_t lowest = std::numeric_limits<std::uintptr_t>::max(), highest = 0;

  bool IsBefore(unsigned int a, unsigned int b) {
    auto const here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    lowest = std::min(lowest, here);
    highest = std::max(highest, here);
    calls.emplace_back(a, b);
    if (calls.size() == throwsAt) throw this;
    int &x = values.at(a), &y = values.at(b);
    if (x == undecided && y == undecided) (a == candidate ? x : y) = decided++;
    if (x == undecided) candidate = a;
    if (y == undecided) candidate = b;
    return x < y;
  }
  HYLBasIxComparitor Comparitor() {
    return {[](unsigned int a, unsigned int b, void const* self, void const* context) {
              auto* const keys = static_cast<Keys*>(const_cast<void*>(self));
              return context == keys->values.data() && keys->IsBefore(a, b);
            },
            this, values.data()};
  }
  // In at most 1 KiB of stack for each level.
  void CheckCost(int levels) const {
    std::size_t const n = values.size();
    EXPECT_LE(calls.size(), 4 * n * static_cast<unsigned int>(__lg(static_cast<int>(n))) + 16 * n);
    EXPECT_LE(highest - lowest, (static_cast<unsigned int>(levels) + 4) * 1024);
  }
};

Ints Killer(int n) {
  Keys keys{Ints(static_cast<std::size_t>(n), Keys::undecided)};
  HYLBasVector<unsigned int> indices;
  HYLBasSortGenericIx(nullptr, static_cast<unsigned int>(n), indices, keys.Comparitor());
  keys.CheckCost(2 * __lg(n));
  return keys.values;
}

// Different values stay different and in order, the extremes extremes. Many differ in the lower
// half alone, in 64-bit numbers by the topmost bit of that half.
template <class E>
E ElementOf(int value) {
  bool const isExtreme = value == least || value == most;
  if constexpr (std::is_same_v<E, Pair>)
    return isExtreme ? Pair(value, value) : Pair(value >> 3, (value & 7) - 4);
  else if constexpr (sizeof(E) == 8)
    return isExtreme ? value * (1ll << 32) + (value > 0 ? ~0u : 0) : value * (1ll << 29);
  else
    return static_cast<E>(value);
}

// Carries out steps and models of steps on the same elements, between others of which those before
// them are the least and stop what is unguarded.
template <class E>
struct Stage {
  std::ptrdiff_t n, front;
  unsigned int throwsAt;
  Keys keys;
  std::vector<E> elements = {};

  Stage(Choices& choices, Ints const& values)
      : n(std::ssize(values)), front(1 + choices.Below(17)),
        throwsAt(choices.Below(999)), keys{values} {
    keys.values.insert(keys.values.begin(), static_cast<std::size_t>(front), least);
    keys.values.insert(keys.values.end(), 16, -3);
    for (int i = 0; i != std::ssize(keys.values); ++i) // equal keys have different indices
      elements.push_back(
          ElementOf<E>(std::is_unsigned_v<E> ? i : keys.values.at(static_cast<std::size_t>(i))));
  }

  template <class Step>
  auto Run(Step step, std::size_t failing = 0) {
    keys.calls.clear();
    keys.throwsAt = failing;
    std::vector<E> range = elements;
    E* const first = range.data() + front;
    std::ptrdiff_t result = 0;
    try {
      if constexpr (std::is_void_v<decltype(step(first, first))>)
        step(first, first + n);
      else
        result = step(first, first + n) - first;
    } catch (Keys*) {
      std::sort(range.begin(), range.end());
    }
    return std::make_tuple(range, result, keys.calls);
  }

  template <class Model, class Step>
  void Compare(char const* name, Model model, Step step) {
    SCOPED_TRACE(name);
    auto [expected, expectedResult, expectedCalls] = Run(model);
    auto const [actual, result, calls] = Run(step);
    EXPECT_TRUE(AreSame(actual, expected));
    EXPECT_EQ(result, expectedResult);
    EXPECT_TRUE(calls == expectedCalls);
    if (calls.empty()) return;
    // An exception leaves the elements of the result, in any order.
    auto const left = std::get<0>(Run(step, 1 + throwsAt % calls.size()));
    std::sort(expected.begin(), expected.end());
    EXPECT_TRUE(AreSame(left, expected));
  }
  static bool AreSame(std::vector<E> const& a, std::vector<E> const& b) {
    return std::memcmp(a.data(), b.data(), a.size() * sizeof(E)) == 0;
  }
};

// A step on [f, l) beside the model's.
#define COMPARE(MODEL, ...)                                                                        \
  stage.Compare(                                                                                   \
      #__VA_ARGS__, [&]([[maybe_unused]] E* f, [[maybe_unused]] E* l) { return MODEL; },           \
      [&]([[maybe_unused]] E* f, [[maybe_unused]] E* l) { return __VA_ARGS__; })

// `Tag` is the type of a null pointer for families with type tags, `comp` the comparitor for the
// one that has it. Returns how often the loop reached its depth limit.
template <class E, class... Tag, class... Comp>
int CompareSteps(Stage<E>& stage, Choices& choices, std::tuple<Tag...>, Comp... comp) {
  PlainIntrosort<E> m{comp...};
  auto const partition = [=](E* f, E* l, E pivot) {
    if constexpr (std::is_same_v<E, Pair>)
      return __unguarded_partitionx(f, l, pivot);
    else
      return __unguarded_partition(f, l, pivot, comp...);
  };
  int const n = static_cast<int>(stage.n), depth = static_cast<int>(choices.Below(9));
  COMPARE(m.Loop(f, l, 2 * m.Lg(n)), __introsort_loop(f, l, Tag()..., 2 * __lg(n), comp...));
  int const heapSorts = m.heapSorts;
  COMPARE(m.Loop(f, l, depth), __introsort_loop(f, l, Tag()..., depth, comp...));
  COMPARE(m.FinalInsertion(f, l), __final_insertion_sort(f, l, comp...));
  COMPARE(m.Insertion(f, l), __insertion_sort(f, l, comp...));
  COMPARE(m.MakeHeap(f, l), __make_heap(f, l, comp..., Tag()..., Tag()...));
  COMPARE(m.SortHeap(f, l), sort_heap(f, l, comp...));
  COMPARE(m.PartialSort(f, f + n / 3, l), __partial_sort(f, f + n / 3, l, Tag()..., comp...));
  if (n == 0) return heapSorts;
  auto const any = [&] { return static_cast<int>(choices.Below(static_cast<unsigned int>(n))); };
  int const hole = any(), top = hole / 3, k = any();
  COMPARE(&m.Median(*f, f[k], l[-1]), &__median(*f, f[k], l[-1], comp...));
  COMPARE(m.Partition(f, l, f[k]), partition(f, l, f[k]));
  COMPARE(m.LinearInsert(f, l - 1), __linear_insert(f, l - 1, Tag()..., comp...));
  COMPARE(m.UnguardedInsert(f + hole, f[k]), __unguarded_linear_insert(f + hole, f[k], comp...));
  COMPARE(m.AdjustHeap(f, hole, n, f[k]), __adjust_heap(f, hole, n, f[k], comp...));
  COMPARE(m.PushHeap(f, hole, top, f[k]), __push_heap(f, hole, top, f[k], comp...));
  COMPARE(m.PopHeapTo(f, l - 1, l - 1, f[k]), __pop_heap(f, l - 1, l - 1, f[k], comp..., Tag()...));
  COMPARE(m.PopHeap(f, l), __pop_heap_aux(f, l, Tag()..., comp...));
  COMPARE(m.CopyBackward(f + 1, l, l - 1), __copy_backward(f + 1, l, l - 1, Tag()...));
  return heapSorts;
}

// The steps that only the families of indices and pairs have.
template <class E, class... Comp>
void CompareMoreSteps(Stage<E>& stage, Comp... comp) {
  using namespace std; // whose names in sight must not make a call ambiguous
  PlainIntrosort<E> m{comp...};
  std::ptrdiff_t const n = stage.n;
  COMPARE(m.Sort(f, l), SGIsort<E*, Comp...>(f, l, comp...));
  COMPARE(m.UnguardedInsertion(f + n / 2, l), ::__unguarded_insertion_sort(f + n / 2, l, comp...));
  COMPARE(m.UnguardedInsertion(f + n / 2, l),
          ::__unguarded_insertion_sort_aux(f + n / 2, l, value_type(f), comp...));
  COMPARE(m.MakeHeap(f, l), make_heap(f, l, comp...));
  COMPARE(m.PartialSort(f, f + n / 3, l), partial_sort(f, f + n / 3, l, comp...));
  COMPARE(std::swap(*f, l[-1]), iter_swap(f, l - 1));
  COMPARE(std::swap(*f, l[-1]), ::__iter_swap(f, l - 1, value_type(f)));
  COMPARE(f, value_type(f) == nullptr ? f : l);
  if (n == 0) return;
  COMPARE(m.PopHeap(f, l), pop_heap(f, l, comp...));
  COMPARE(m.CopyBackward(f + 1, l, l - 1), copy_backward(f + 1, l, l - 1));
}

// The library's sort, and what it chooses from as far as this processor can.
template <class E>
std::vector<void (*)(E*, E*)> Sorts() {
  using namespace hylbas_detail;
  std::vector<void (*)(E*, E*)> sorts{HYLBasSortSpecial, SortEngine<E>::Sort};
  if constexpr (std::is_same_v<E, long long>) sorts.push_back(sortInt64_1);
#ifdef HYLBAS_SORTS_VECTORS
  if (avx2::IsSupported()) sorts.push_back(SortEngine<E, avx2::Ways>::Sort);
  if (avx512::IsSupported()) sorts.push_back(SortEngine<E, avx512::Ways>::Sort);
#endif
  return sorts;
}

template <class E>
void CompareSorts(Choices& choices, Ints const& values) {
  Stage<E> stage(choices, values);
  for (auto* const sort : Sorts<E>())
    COMPARE(std::sort(f, l), sort(f, l));
}

void CompareAll(Choices& choices, Ints const& values) {
  CompareSorts<int>(choices, values);
  CompareSorts<long long>(choices, values);
  CompareSorts<Pair>(choices, values);
}

// Returns how often the loop over indices reached its depth limit.
int CompareFamilies(Choices& choices, Ints const& values) {
  using Tag = std::tuple<std::nullptr_t>;
  Stage<unsigned int> indices(choices, values);
  Stage<Pair> pairs(choices, values);
  Stage<int> ints(choices, values);
  Stage<long long> int64s(choices, values);
  auto const comp = indices.keys.Comparitor();
  int const heapSorts = CompareSteps(indices, choices, Tag(), comp);
  CompareMoreSteps(indices, comp);
  CompareSteps(pairs, choices, Tag());
  CompareMoreSteps(pairs);
  CompareSteps(ints, choices, std::tuple<>());
  CompareSteps(int64s, choices, std::tuple<>());
  return heapSorts;
}

void CompareTwo(Choices& choices, Ints first, Ints second) {
  std::size_t const n = first.size();
  bool const differ = choices.OneIn(4), fails = choices.OneIn(4) && n != 0;
  reportReturns = !differ || choices.OneIn(2);
  second.resize(n + differ, -5);
  std::vector<std::pair<int, int>> pairs;
  for (std::size_t i = 0; i != n; ++i)
    pairs.emplace_back(first[i], second[i]);
  bool const sorts = reportReturns && !fails;
  if (sorts) std::sort(pairs.begin(), pairs.end());
  std::vector<recording::Event> expected;
  if (sorts && n != 0) expected = {{'A', {-1, 0}, {-1, 0}, 8 * n}, {'F', {1, 0}, {-1, 0}, 0}};
  reports.clear();
  recording::Reset(nullptr, 0);
  try {
    EXPECT_EQ(Completes(fails,
                        [&] {
                          HYLBasSort2Special(first.data(), first.data() + n, second.data(),
                                             second.data() + n + differ);
                        }),
              sorts);
  } catch (std::string const&) {
    EXPECT_FALSE(reportReturns);
  }
  recording::FailRequest(0);
  EXPECT_TRUE(recording::Events() == expected);
  std::string const report = "AssertionFailed:arraySize == arraySecondEnd - arraySecondBegin|"
                             "HYLBasGenerics.m/src/HYLBasAlgoGeneric:867";
  EXPECT_EQ(reports, std::vector(differ, report));
  for (std::size_t i = 0; i != n; ++i)
    ASSERT_TRUE(pairs[i] == std::make_pair(first[i], second[i]));
  EXPECT_TRUE(!differ || second[n] == -5);
}

// The same list and comparisons as those of the steps that anyone may call.
void CompareIndexSort(Choices& choices, Ints const& values) {
  recording::Reset(nullptr, 0);
  Keys keys{values};
  auto const n = static_cast<unsigned int>(values.size()), room = choices.Below(100);
  HYLBasVector<unsigned int> indices(room, 99u); // its contents do not matter
  std::vector<unsigned int> expected(n);
  std::iota(expected.begin(), expected.end(), 0u);
  if (n != 0)
    PlainIntrosort<unsigned int>{keys.Comparitor()}.Sort(expected.data(), expected.data() + n);
  auto const calls = std::exchange(keys.calls, {});
  bool const fails = choices.OneIn(4), grows = n > room;
  recording::Events().clear();
  bool const sorts =
      Completes(fails, [&] { HYLBasSortGenericIx(nullptr, n, indices, keys.Comparitor()); });
  recording::FailRequest(0);
  EXPECT_EQ(sorts, !fails || !grows);
  EXPECT_EQ(recording::Events().empty(), !grows || fails);
  if (!sorts) expected.assign(room, 99u);
  EXPECT_TRUE(keys.calls == (sorts ? calls : decltype(calls)()));
  EXPECT_TRUE(std::equal(indices.begin(), indices.end(), expected.begin(), expected.end()));
}

std::vector<std::pair<void const*, void const*>> compared;

bool IsLess(void const* a, void const* b) {
  compared.emplace_back(a, b);
  return static_cast<Pair const*>(a)->second < static_cast<Pair const*>(b)->second;
}

struct LessPredicate : HYLBasBinaryPredicateGeneric {
  bool operator()(void const* a, void const* b) const override { return IsLess(a, b); }
};

// Compares each element with its predecessor.
void CompareIsSorted(Ints const& values) {
  std::vector<Pair> pairs(1);
  for (int const value : values)
    pairs.emplace_back(-1, value);
  Pair const *const begin = pairs.data() + 1, *const end = pairs.data() + pairs.size();
  compared.clear();
  bool isSorted = true;
  for (Pair const* p = begin; isSorted && p + 1 < end; ++p)
    isSorted = !IsLess(p + 1, p);
  auto const expected = std::exchange(compared, {});
  EXPECT_EQ(HYLBasIsSortedGeneric1(begin, end, HYLBasReplicatorGeneric(8), IsLess), isSorted);
  EXPECT_TRUE(std::exchange(compared, {}) == expected);
  EXPECT_EQ(HYLBasIsSortedGeneric2(begin, end, HYLBasReplicatorGeneric(8), LessPredicate()),
            isSorted);
  EXPECT_TRUE(std::exchange(compared, {}) == expected);
}

struct Item {
  unsigned int number;
  static inline Keys* keys;
};
bool operator<(Item a, Item b) { return Item::keys->IsBefore(a.number, b.number); }

void SortItems(Keys& keys, void (*sort)(Item*, Item*)) {
  Item::keys = &keys;
  std::vector<Item> items;
  for (unsigned int i = 0; i != keys.values.size(); ++i)
    items.push_back({i});
  sort(items.data(), items.data() + items.size());
  for (std::size_t i = 1; i < items.size(); ++i)
    ASSERT_LE(keys.values[items[i - 1].number], keys.values[items[i].number]);
}

// Networks that sort all sequences of two values sort everything.
template <class E>
void CheckSequencesOfTwoValues() {
  for (auto* const sort : Sorts<E>())
    for (int n = 0; n <= 16; ++n)
      for (int bits = 0; bits != 1 << n; ++bits) {
        E values[16];
        for (int i = 0; i != n; ++i)
          values[i] = bits >> i & 1;
        sort(values, values + n);
        ASSERT_TRUE(std::is_sorted(values, values + n)) << n << ' ' << bits;
      }
}

TEST(Sort, SortsEverySequenceOfTwoValues) {
  CheckSequencesOfTwoValues<int>();
  CheckSequencesOfTwoValues<long long>();
}

TEST(Sort, CostsAtWorstAndForNearlySortedWhatItMay) {
  Choices choices({});
  for (int const n : {1000, 10000}) {
    CompareAll(choices, Killer(n));
    // Without the look for order, which an adversary would make succeed.
    Keys keys{Ints(static_cast<std::size_t>(n), Keys::undecided)};
    SortItems(keys, SortEngine<Item>::SortUnordered);
    keys.CheckCost(__lg(n));
    CompareAll(choices, keys.values);
  }
  for (unsigned int shape = firstLinear - 2; shape != std::size(shapes); ++shape) {
    Keys keys{Make(shape, 30000, 1)};
    SortItems(keys, SortEngine<Item>::Sort);
    EXPECT_LE(keys.calls.size(), shape < firstLinear ? 900000u : 300000u) << shape;
    CompareAll(choices, keys.values);
  }
  for (int const power : {0, 1, 2, 4, 15, 30})
    EXPECT_TRUE(__lg(1 << power) == power && __lg((1 << power) - 1 + (1 << power)) == power);
}

TEST(Sort, EndsWhereTheSecondArrayIsTooShortOrBothAreTooLong) {
  int place[2] = {2, 1};
  reportReturns = true;
  EXPECT_EXIT(HYLBasSort2Special(place, place + 2, place, place + 1), Aborted(), "");
  if constexpr (sizeof(void*) > 4) {
    auto* const last = reinterpret_cast<int*>(reinterpret_cast<std::uintptr_t>(place) +
                                              (std::uint64_t{4294967297u} << 2));
    EXPECT_EXIT(HYLBasSort2Special(place, last, place, last), Aborted(), "4294967295 bytes");
  }
}

} // namespace

WALK(80, 60) {
  while (choices.More()) {
    unsigned int const kind = choices.Below(8), shape = choices.Below(std::size(shapes));
    unsigned int const seed = choices.Below(65536),
                       n = choices.Below(choices.OneIn(16) ? 3000 : 71);
    Ints const values = Make(shape, static_cast<int>(n), seed);
    SCOPED_TRACE("kind " + std::to_string(kind) + ", shape " + std::to_string(shape));
    recording::Reset(nullptr, 0);
    if (kind < 3) CompareFamilies(choices, values);
    EXPECT_TRUE(kind != 3 || CompareFamilies(choices, Killer(300)) != 0);
    if (kind > 3) CompareAll(choices, values);
    EXPECT_TRUE(kind == 3 || recording::Events().empty());
    CompareTwo(choices, values, Make(choices.Below(5), static_cast<int>(n), seed));
    CompareIndexSort(choices, values);
    CompareIsSorted(values);
  }
}
