// Every introsort step beside a plain model of it: the same arrangement of the whole array and its
// surroundings, the same result, and for indices the same comparisons in the same order.
#include <algorithm>
#include <functional>
#include <numeric>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "HYLBasIntrosort.h"
#include "support/PlainIntrosort.h"
#include "support/SortInputs.h"

namespace {

using Pair = HYLBasPair<int, int>;
using Comparisons = std::vector<std::pair<unsigned int, unsigned int>>;

template <class E>
E* Third(E* f, E* l) {
  return f + (l - f) / 3;
}
template <class E>
E& Middle(E* f, E* l) {
  return f[(l - f) / 2];
}

// What a range of at least two elements must be for a step to stay within it: anything; one whose
// first element is a least one; or a heap.
enum class Range { any, leastFirst, heap };

/// A step, as the model does it. Results are distances from `f`, 0 where there is none.
template <class E>
struct Step {
  using Model = model::PlainIntrosort<E>;
  char const* name;
  Range range;
  std::function<long(Model& m, long f, long l, long n)> run;
};

template <class E>
std::vector<Step<E>> Steps() {
  using M = model::PlainIntrosort<E>;
  auto const lg = [](long n) { return M::Lg(n); };
  using R = Range;
  return {
      {"loop", R::any, [=](M& m, long f, long l, long n) { return m.Loop(f, l, 2 * lg(n)), 0; }},
      {"loop 0", R::any, [](M& m, long f, long l, long) { return m.Loop(f, l, 0), 0; }},
      {"loop 1", R::any, [](M& m, long f, long l, long) { return m.Loop(f, l, 1), 0; }},
      {"median", R::any,
       [](M& m, long f, long l, long n) { return m.Median(f, f + n / 2, l - 1) - f; }},
      {"partition", R::any,
       [](M& m, long f, long l, long n) {
         return m.Partition(f, l, m.a[m.Median(f, f + n / 2, l - 1)]) - f;
       }},
      {"final", R::leastFirst,
       [](M& m, long f, long l, long) { return m.FinalInsertion(f, l), 0; }},
      {"insertion", R::any, [](M& m, long f, long l, long) { return m.Insertion(f, l), 0; }},
      {"linear", R::any, [](M& m, long f, long l, long) { return m.LinearInsert(f, l - 1), 0; }},
      {"unguarded linear", R::leastFirst,
       [](M& m, long f, long l, long n) { return m.UnguardedInsert(l - 1, m.a[f + n / 2]), 0; }},
      {"__make_heap", R::any, [](M& m, long f, long l, long) { return m.MakeHeap(f, l), 0; }},
      {"adjust", R::any,
       [](M& m, long f, long, long n) { return m.AdjustHeap(f, n / 3, n, m.a[f + n / 2]), 0; }},
      {"adjust heap", R::heap,
       [](M& m, long f, long l, long n) { return m.AdjustHeap(f, 0, n - 1, m.a[l - 1]), 0; }},
      {"push", R::any,
       [](M& m, long f, long l, long n) { return m.PushHeap(f, n - 1, 0, m.a[l - 1]), 0; }},
      {"push to top", R::any,
       [](M& m, long f, long, long n) { return m.PushHeap(f, n - 1, n / 3, m.a[f + n / 2]), 0; }},
      {"__pop_heap", R::heap,
       [](M& m, long f, long l, long n) {
         return m.PopHeapTo(f, l - 1, l - 1, m.a[f + n / 2]), 0;
       }},
      {"__pop_heap_aux", R::any, [](M& m, long f, long l, long) { return m.PopHeap(f, l), 0; }},
      {"sort_heap", R::heap, [](M& m, long f, long l, long) { return m.SortHeap(f, l), 0; }},
      {"sort_heap of none", R::any, [](M& m, long f, long l, long) { return m.SortHeap(f, l), 0; }},
      {"__partial_sort", R::any,
       [](M& m, long f, long l, long n) { return m.PartialSort(f, f + n / 3, l), 0; }},
      {"__partial_sort of none", R::any,
       [](M& m, long f, long l, long) { return m.PartialSort(f, f, l), 0; }},
      {"__copy_backward up", R::any,
       [](M& m, long f, long l, long) { return m.CopyBackward(f, l - 1, l) - f; }},
      {"__copy_backward down", R::any,
       [](M& m, long f, long l, long) { return m.CopyBackward(f + 1, l, l - 1) - f; }},
      // Those that only the families of indices and pairs have.
      {"unguarded", R::leastFirst,
       [](M& m, long f, long l, long) { return m.UnguardedInsertion(f + 1, l), 0; }},
      {"unguarded aux", R::leastFirst,
       [](M& m, long f, long l, long) { return m.UnguardedInsertion(f + 1, l), 0; }},
      {"make_heap", R::any, [](M& m, long f, long l, long) { return m.MakeHeap(f, l), 0; }},
      {"pop_heap", R::heap, [](M& m, long f, long l, long) { return m.PopHeap(f, l), 0; }},
      {"partial_sort", R::any,
       [](M& m, long f, long l, long n) { return m.PartialSort(f, f + n / 3, l), 0; }},
      {"copy_backward", R::any,
       [](M& m, long f, long l, long) { return m.CopyBackward(f, l - 1, l) - f; }},
      {"iter_swap", R::any,
       [](M& m, long f, long l, long) { return std::swap(m.a[f], m.a[l - 1]), 0; }},
      {"__iter_swap", R::any,
       [](M& m, long f, long l, long) { return std::swap(m.a[f], m.a[l - 1]), 0; }},
      {"SGIsort", R::any, [](M& m, long f, long l, long) { return m.Sort(f, l), 0; }},
  };
}

/// A family's steps, in the order above. Where it has type tags, `Tag` is the type of a null
/// pointer; where it has a comparitor, `Comp` makes one.
template <class E, class Count, class... Tag, class... Comp>
std::vector<std::function<long(E* f, E* l)>> Calls(std::tuple<Tag...>, std::tuple<Comp...>) {
  auto const partition = [](E* f, E* l, E const& pivot) {
    if constexpr (std::is_same_v<E, Pair>)
      return __unguarded_partitionx(f, l, pivot);
    else
      return __unguarded_partition(f, l, pivot, Comp()()...);
  };
  auto const count = [](E* f, E* l) { return static_cast<Count>(l - f); };
  std::vector<std::function<long(E*, E*)>> calls = {
      [](E* f, E* l) {
        return __introsort_loop(f, l, Tag()..., Count{2 * __lg(int(l - f))}, Comp()()...), 0;
      },
      [](E* f, E* l) { return __introsort_loop(f, l, Tag()..., Count{0}, Comp()()...), 0; },
      [](E* f, E* l) { return __introsort_loop(f, l, Tag()..., Count{1}, Comp()()...), 0; },
      [](E* f, E* l) { return &__median(*f, Middle(f, l), l[-1], Comp()()...) - f; },
      [=](E* f, E* l) {
        return partition(f, l, __median(*f, Middle(f, l), l[-1], Comp()()...)) - f;
      },
      [](E* f, E* l) { return __final_insertion_sort(f, l, Comp()()...), 0; },
      [](E* f, E* l) { return __insertion_sort(f, l, Comp()()...), 0; },
      [](E* f, E* l) { return __linear_insert(f, l - 1, Tag()..., Comp()()...), 0; },
      [](E* f, E* l) { return __unguarded_linear_insert(l - 1, Middle(f, l), Comp()()...), 0; },
      [](E* f, E* l) { return __make_heap(f, l, Comp()()..., Tag()..., Tag()...), 0; },
      [=](E* f, E* l) {
        Count const n = count(f, l);
        return __adjust_heap(f, n / 3, n, Middle(f, l), Comp()()...), 0;
      },
      [=](E* f, E* l) {
        return __adjust_heap(f, Count{0}, count(f, l) - 1, l[-1], Comp()()...), 0;
      },
      [=](E* f, E* l) { return __push_heap(f, count(f, l) - 1, Count{0}, l[-1], Comp()()...), 0; },
      [=](E* f, E* l) {
        Count const n = count(f, l);
        return __push_heap(f, n - 1, n / 3, Middle(f, l), Comp()()...), 0;
      },
      [](E* f, E* l) {
        return __pop_heap(f, l - 1, l - 1, Middle(f, l), Comp()()..., Tag()...), 0;
      },
      [](E* f, E* l) { return __pop_heap_aux(f, l, Tag()..., Comp()()...), 0; },
      [](E* f, E* l) { return sort_heap(f, l, Comp()()...), 0; },
      [](E* f, E* l) { return sort_heap(f, l, Comp()()...), 0; },
      [](E* f, E* l) { return __partial_sort(f, Third(f, l), l, Tag()..., Comp()()...), 0; },
      [](E* f, E* l) { return __partial_sort(f, f, l, Tag()..., Comp()()...), 0; },
      [](E* f, E* l) { return __copy_backward(f, l - 1, l, Tag()...) - f; },
      [](E* f, E* l) { return __copy_backward(f + 1, l, l - 1, Tag()...) - f; },
  };
  if constexpr (sizeof...(Tag) != 0)
    calls.insert(
        calls.end(),
        {[](E* f, E* l) { return __unguarded_insertion_sort(f + 1, l, Comp()()...), 0; },
         [](E* f, E* l) {
           return __unguarded_insertion_sort_aux(f + 1, l, value_type(f), Comp()()...), 0;
         },
         [](E* f, E* l) { return make_heap(f, l, Comp()()...), 0; },
         [](E* f, E* l) { return pop_heap(f, l, Comp()()...), 0; },
         [](E* f, E* l) { return partial_sort(f, Third(f, l), l, Comp()()...), 0; },
         [](E* f, E* l) { return copy_backward(f, l - 1, l) - f; },
         [](E* f, E* l) { return iter_swap(f, l - 1), 0; },
         [](E* f, E* l) { return __iter_swap(f, l - 1, value_type(f)), 0; },
         [](E* f, E* l) { return SGIsort<E*, decltype(Comp()())...>(f, l, Comp()()...), 0; }});
  return calls;
}

/// A family: how its elements are made from numbers, their order, and its steps.
template <class E>
struct Numbers {
  using Element = E;
  static std::vector<E> Elements(std::vector<int> const& values) {
    std::vector<E> elements;
    for (E const value : values) // 64-bit values differ in their upper half alone
      elements.push_back(sizeof(E) == 4 ? value : value * 4294967295 + value);
    return elements;
  }
  static bool IsBefore(E a, E b) { return a < b; }
  static auto Calls() {
    using Count = std::conditional_t<sizeof(E) == 4, int, long long>;
    return ::Calls<E, Count>(std::tuple<>(), std::tuple<>());
  }
};

struct Pairs {
  using Element = Pair;
  static std::vector<Pair> Elements(std::vector<int> const& values) {
    std::vector<Pair> elements;
    for (int const value : values) // many are equal in the first field
      elements.emplace_back(value / 8, value % 8);
    return elements;
  }
  static bool IsBefore(Pair a, Pair b) { return a < b; }
  static auto Calls() { return ::Calls<Pair, int>(std::tuple<std::nullptr_t>(), std::tuple<>()); }
};

struct Indices {
  using Element = unsigned int;
  static inline std::vector<int> keys;
  static inline Comparisons comparisons;

  // Positions: indices with equal keys can be told apart.
  static std::vector<unsigned int> Elements(std::vector<int> const& values) {
    keys = values;
    std::vector<unsigned int> elements(values.size());
    std::iota(elements.begin(), elements.end(), 0u);
    return elements;
  }
  static bool IsBefore(unsigned int a, unsigned int b) {
    comparisons.emplace_back(a, b);
    return keys.at(a) < keys.at(b);
  }
  struct Comp {
    HYLBasIxComparitor operator()() const {
      return {[](unsigned int a, unsigned int b, void const* context1, void const* context2) {
                EXPECT_TRUE(context1 == &keys && context2 == &comparisons);
                return IsBefore(a, b);
              },
              &keys, &comparisons};
    }
  };
  static auto Calls() {
    return ::Calls<unsigned int, int>(std::tuple<std::nullptr_t>(), std::tuple<Comp>());
  }
};

// An array on which the index sort reaches its depth limit: where all families' partitions do.
std::vector<int> KillerOf(int n) {
  inputs::Adversary adversary(n);
  std::vector<unsigned int> items(static_cast<std::size_t>(n));
  std::iota(items.begin(), items.end(), 0u);
  auto const isBefore = [](unsigned int a, unsigned int b, void const* context, void const*) {
    return static_cast<inputs::Adversary*>(const_cast<void*>(context))
        ->IsBefore(static_cast<int>(a), static_cast<int>(b));
  };
  SGIsort<unsigned int*, HYLBasIxComparitor>(items.data(), items.data() + n,
                                             {isBefore, &adversary, nullptr});
  return adversary.Values();
}

constexpr long surroundings = 3; // elements on either side of the range

/// Carries out every step on `values`; returns how often the loop reached its depth limit.
template <class Family>
int CompareSteps(std::vector<int> values) {
  using E = typename Family::Element;
  using Model = model::PlainIntrosort<E>;
  long const n = static_cast<long>(values.size()), f = surroundings, l = f + n;
  values.insert(values.begin(), surroundings, 3);
  values.insert(values.end(), surroundings, -3);
  auto const steps = Steps<E>();
  auto const calls = Family::Calls();
  EXPECT_LE(calls.size(), steps.size());
  auto const isSame = [](E const& a, E const& b) { return !(a < b) && !(b < a); };
  int heapSorts = 0;
  for (std::size_t i = 0; i != calls.size(); ++i) {
    SCOPED_TRACE(steps[i].name);
    std::vector<E> expected = Family::Elements(values);
    Model m(expected, Family::IsBefore);
    if (steps[i].range == Range::leastFirst)
      std::iter_swap(
          expected.begin() + f,
          std::min_element(expected.begin() + f, expected.begin() + l, Family::IsBefore));
    if (steps[i].range == Range::heap) m.MakeHeap(f, l);
    std::vector<E> actual = expected;

    Indices::comparisons.clear();
    long const expectedResult = steps[i].run(m, f, l, n);
    Comparisons const expectedComparisons = std::move(Indices::comparisons);
    Indices::comparisons.clear();
    long const result = calls[i](actual.data() + f, actual.data() + l);
    EXPECT_EQ(result, expectedResult);
    EXPECT_TRUE(std::equal(actual.begin(), actual.end(), expected.begin(), isSame));
    EXPECT_TRUE(Indices::comparisons == expectedComparisons);
    if (i == 0) heapSorts = m.heapSorts;
  }
  return heapSorts;
}

template <class Family>
class Introsort : public testing::Test {};
using Families = testing::Types<Indices, Pairs, Numbers<int>, Numbers<long long>>;
TYPED_TEST_SUITE(Introsort, Families);

TYPED_TEST(Introsort, StepsDoWhatTheModelDoes) {
  for (int const n : {2, 3, 4, 5, 8, 15, 16, 17, 18, 31, 32, 33, 64, 100, 257, 1000})
    for (inputs::Pattern const& pattern : inputs::patterns) {
      SCOPED_TRACE(pattern.name + ", " + std::to_string(n) + " elements");
      CompareSteps<TypeParam>(inputs::Make(pattern, n));
      if (testing::Test::HasFailure()) return;
    }
}

TYPED_TEST(Introsort, StepsDoWhatTheModelDoesBeyondTheDepthLimit) {
  for (int const n : {257, 1000, 3000}) {
    EXPECT_EQ(CompareSteps<TypeParam>(inputs::Make(inputs::patterns[0], n)), 0) << n;
    EXPECT_GE(CompareSteps<TypeParam>(KillerOf(n)), 1) << n;
  }
}

TEST(IntrosortSteps, LeaveShortRangesAlone) {
  long long values[] = {3, 1, 2};
  sort_heap(values, values);
  sort_heap(values, values + 1);
  __make_heap(values, values + 1);
  __insertion_sort(values, values);
  __insertion_sort(values, values + 1);
  __final_insertion_sort(values, values);
  __introsort_loop(values, values + 3, 2ll);
  EXPECT_EQ(values[0] * 100 + values[1] * 10 + values[2], 312);
  SGIsort<unsigned int*, HYLBasIxComparitor>(nullptr, nullptr, {});
  SGIsort<Pair*>(nullptr, nullptr);
  EXPECT_EQ(value_type(static_cast<Pair*>(nullptr)), nullptr);
}

TEST(IntrosortSteps, LgIsTheFloorOfTheLogarithm) {
  for (int const power : {0, 1, 2, 4, 15, 30}) {
    EXPECT_EQ(__lg(1 << power), power);
    EXPECT_EQ(__lg((1 << power) - 1 + (1 << power)), power);
  }
}

// Names of the standard library in sight do not make a call ambiguous.
TEST(IntrosortSteps, AreChosenBesideTheStandardLibrary) {
  using namespace std;
  unsigned int indices[] = {0, 1, 2};
  int const keys[] = {1, 2, 0};
  HYLBasIxComparitor const byKey{
      [](unsigned int a, unsigned int b, void const* values, void const*) {
        auto const* key = static_cast<int const*>(values);
        return key[a] < key[b];
      },
      keys, nullptr};
  make_heap(indices, indices + 3, byKey);
  EXPECT_EQ(indices[0], 1u);
  pop_heap(indices, indices + 3, byKey);
  iter_swap(indices, indices + 2);
  partial_sort(indices, indices + 3, indices + 3, byKey);
  EXPECT_TRUE(indices[0] == 2 && indices[1] == 0 && indices[2] == 1);
  EXPECT_EQ(copy_backward(indices, indices + 2, indices + 3), indices + 1);
}

} // namespace
