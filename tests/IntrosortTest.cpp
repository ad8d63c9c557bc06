// Every introsort step beside a plain model of it: the same arrangement of the whole array and its
// surroundings, the same result, and for indices the same comparisons in the same order.
#include <algorithm>
#include <limits>
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

bool CompareKeys(unsigned int a, unsigned int b, void const* keys, void const* comparisons) {
  static_cast<Comparisons*>(const_cast<void*>(comparisons))->emplace_back(a, b);
  auto const& keyOf = *static_cast<std::vector<int> const*>(keys);
  return keyOf.at(a) < keyOf.at(b);
}

// Carries out steps and models of steps, each on the same elements: the values between others on
// either side, of which those before them are the least and stop what is unguarded.
template <class E>
class Stage {
public:
  explicit Stage(std::vector<int> const& values) : m_n(std::ssize(values)), m_keys(values) {
    m_keys.insert(m_keys.begin(), surroundings, std::numeric_limits<int>::min());
    m_keys.insert(m_keys.end(), surroundings, -3);
    if constexpr (std::is_unsigned_v<E>) // indices of the keys: equal ones can be told apart
      for (E i = 0; i != m_keys.size(); ++i)
        m_elements.push_back(i);
    else
      m_elements = inputs::Elements<E>(m_keys);
  }

  int Size() const { return static_cast<int>(m_n); }
  HYLBasIxComparitor Comparitor() const { return {CompareKeys, &m_keys, &m_comparisons}; }

  template <class Model, class Step>
  void Compare(char const* name, Model model, Step step) {
    auto const [expected, expectedResult, expectedComparisons] = Run(model);
    auto const [actual, result, comparisons] = Run(step);
    EXPECT_FALSE(actual < expected || expected < actual) << name; // pairs have no ==
    EXPECT_EQ(result, expectedResult) << name;
    EXPECT_TRUE(comparisons == expectedComparisons) << name;
  }

private:
  static constexpr int surroundings = 3;

  template <class Step>
  std::tuple<std::vector<E>, std::ptrdiff_t, Comparisons> Run(Step step) {
    m_comparisons.clear();
    std::vector<E> elements = m_elements;
    E* const first = elements.data() + surroundings;
    std::ptrdiff_t result = 0;
    if constexpr (std::is_void_v<decltype(step(first, first))>)
      step(first, first + m_n);
    else
      result = step(first, first + m_n) - first;
    return {elements, result, m_comparisons};
  }

  std::ptrdiff_t m_n;
  std::vector<int> m_keys;
  std::vector<E> m_elements;
  Comparisons m_comparisons;
};

// A step on [f, l) beside the model's.
#define COMPARE(MODEL, ...)                                                                        \
  stage.Compare(                                                                                   \
      #__VA_ARGS__, [&]([[maybe_unused]] E* f, [[maybe_unused]] E* l) { return MODEL; },           \
      [&]([[maybe_unused]] E* f, [[maybe_unused]] E* l) { return __VA_ARGS__; })

/// The steps that all families have. `Tag` is the type of a null pointer for those with type tags,
/// `comp` the comparitor for those with one. Returns how often the loop reached its depth limit.
template <class E, class... Tag, class... Comp>
int CompareSteps(Stage<E>& stage, std::tuple<Tag...>, Comp... comp) {
  model::PlainIntrosort<E> m{comp...};
  auto const partition = [=](E* f, E* l, E pivot) {
    if constexpr (std::is_same_v<E, Pair>)
      return __unguarded_partitionx(f, l, pivot);
    else
      return __unguarded_partition(f, l, pivot, comp...);
  };
  int const n = stage.Size();
  COMPARE(m.Loop(f, l, 2 * m.Lg(n)), __introsort_loop(f, l, Tag()..., 2 * __lg(n), comp...));
  int const heapSorts = m.heapSorts;
  COMPARE(m.Loop(f, l, 1), __introsort_loop(f, l, Tag()..., 1, comp...));
  COMPARE(&m.Median(*f, f[n / 2], l[-1]), &__median(*f, f[n / 2], l[-1], comp...));
  COMPARE(m.Partition(f, l, f[n / 2]), partition(f, l, f[n / 2]));
  COMPARE(m.FinalInsertion(f, l), __final_insertion_sort(f, l, comp...));
  COMPARE(m.Insertion(f, l), __insertion_sort(f, l, comp...));
  COMPARE(m.MakeHeap(f, l), __make_heap(f, l, comp..., Tag()..., Tag()...));
  COMPARE(m.SortHeap(f, l), sort_heap(f, l, comp...));
  COMPARE(m.PartialSort(f, f + n / 3, l), __partial_sort(f, f + n / 3, l, Tag()..., comp...));
  if (n == 0) return heapSorts;
  COMPARE(m.LinearInsert(f, l - 1), __linear_insert(f, l - 1, Tag()..., comp...));
  COMPARE(m.UnguardedInsert(l - 1, f[n / 2]), __unguarded_linear_insert(l - 1, f[n / 2], comp...));
  COMPARE(m.AdjustHeap(f, n / 3, n, f[n / 2]), __adjust_heap(f, n / 3, n, f[n / 2], comp...));
  COMPARE(m.PushHeap(f, n - 1, n / 3, f[n / 2]), __push_heap(f, n - 1, n / 3, f[n / 2], comp...));
  COMPARE(m.PopHeapTo(f, l - 1, l - 1, f[n / 2]),
          __pop_heap(f, l - 1, l - 1, f[n / 2], comp..., Tag()...));
  COMPARE(m.PopHeap(f, l), __pop_heap_aux(f, l, Tag()..., comp...));
  COMPARE(m.CopyBackward(f + 1, l, l - 1), __copy_backward(f + 1, l, l - 1, Tag()...));
  return heapSorts;
}

/// The steps that only the families of indices and pairs have.
template <class E, class... Comp>
void CompareMoreSteps(Stage<E>& stage, Comp... comp) {
  using namespace std; // whose names in sight must not make a call ambiguous
  model::PlainIntrosort<E> m{comp...};
  int const n = stage.Size();
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

// How often the loop over indices reached its depth limit.
int CompareFamilies(std::vector<int> const& values) {
  using Tag = std::tuple<std::nullptr_t>;
  Stage<unsigned int> indices(values);
  Stage<Pair> pairs(values);
  Stage<int> ints(values);
  Stage<long long> int64s(values);
  int const heapSorts = CompareSteps(indices, Tag(), indices.Comparitor());
  CompareMoreSteps(indices, indices.Comparitor());
  CompareSteps(pairs, Tag());
  CompareMoreSteps(pairs);
  CompareSteps(ints, std::tuple<>());
  CompareSteps(int64s, std::tuple<>());
  return heapSorts;
}

TEST(Introsort, StepsDoWhatTheModelDoes) {
  for (int const n : {0, 1, 2, 3, 4, 5, 8, 15, 16, 17, 18, 31, 32, 33, 64, 100, 257, 1000})
    for (inputs::Pattern const& pattern : inputs::patterns) {
      SCOPED_TRACE(pattern.name + (", elements: " + std::to_string(n)));
      CompareFamilies(inputs::Make(pattern, n));
      if (HasFailure()) return;
    }
}

TEST(Introsort, StepsDoWhatTheModelDoesBeyondTheDepthLimit) {
  for (int const n : {257, 1000, 3000}) {
    EXPECT_EQ(CompareFamilies(inputs::Make(inputs::patterns[0], n)), 0) << n;
    // An array on which the index sort reaches its limit: where all families' loops do.
    inputs::Adversary adversary(n);
    adversary.SortIndices();
    EXPECT_GE(CompareFamilies(adversary.Values()), 1) << n;
  }
}

TEST(Introsort, LgIsTheFloorOfTheLogarithm) {
  for (int const power : {0, 1, 2, 4, 15, 30}) {
    EXPECT_EQ(__lg(1 << power), power);
    EXPECT_EQ(__lg((1 << power) - 1 + (1 << power)), power);
  }
}

} // namespace
