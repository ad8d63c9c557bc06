// The sorts beside std::sort and Boost's two quicksorts that defeat patterns. Every iteration sorts
// arrays made anew, which is not timed, and short arrays come many at a time, so that the processor
// cannot learn them by heart.
#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include <boost/sort/pdqsort/pdqsort.hpp>

#include "Compare.h"
#include "HYLBasSortGenericIx.h"
#include "HYLBasSortSpecial.h"
#include "SortIndicesPeer.h"
#include "SortPatterns.h"

namespace {

using benchmark::State;
using patterns::Pattern;
using Pair = HYLBasPair<int, int>;

// Distinct values stay distinct and in order in every element type; equal ones differ in a pair's
// second field.
template <class T>
T ElementOf(int value);
template <>
int ElementOf<int>(int value) {
  return value;
}
template <>
long long ElementOf<long long>(int value) {
  return value * 4294967311ll - 99;
}
template <>
Pair ElementOf<Pair>(int value) {
  return Pair(value / 4, value % 4);
}

// Arrays of `n` elements, one after the other.
template <class T>
class Arrays {
public:
  Arrays(Pattern const& pattern, unsigned int n)
      : m_pattern(pattern), m_random(compare::FreshRandom()), m_values(n),
        m_elements(std::max(1u, 65536 / n) * std::size_t{n}) {}

  std::vector<T>& Renew() {
    for (std::size_t i = 0; i != m_elements.size(); i += m_values.size()) {
      m_pattern.fill(m_values, m_random);
      std::transform(m_values.begin(), m_values.end(), &m_elements[i], ElementOf<T>);
    }
    return m_elements;
  }
  std::size_t Size() const { return m_elements.size(); }

private:
  Pattern m_pattern;
  compare::Random m_random;
  std::vector<int> m_values; // of one array
  std::vector<T> m_elements;
};

template <class T, class Sort>
void SortArrays(State& state, Pattern const& pattern, unsigned int n, Sort sort) {
  Arrays<T> arrays(pattern, n);
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<T>& work = arrays.Renew();
    state.ResumeTiming();
    for (std::size_t i = 0; i != work.size(); i += n)
      sort(work.data() + i, work.data() + i + n);
    benchmark::ClobberMemory();
  }
  compare::CountOperations(state, arrays.Size());
}

template <class T>
void RegisterWhole(std::string const& type) {
  for (Pattern const& pattern : patterns::all)
    for (unsigned int const n : compare::Sizes({16, 1000, 100000, 1000000})) {
      if (n < 1000 && pattern.fill != patterns::Draw) continue; // patterns need some room
      auto const add = [&](char const* who, auto sort) {
        compare::Register(
            "sort/" + std::string(pattern.name) + '/' + type, n, who,
            [=](State& state, unsigned int size) { SortArrays<T>(state, pattern, size, sort); });
      };
      add("ours", [](T* first, T* last) { HYLBasSortSpecial(first, last); });
      add("std::sort", [](T* first, T* last) { std::sort(first, last); });
      add("pdqsort", [](T* first, T* last) { boost::sort::pdqsort(first, last); });
      // What the former takes for numbers by itself.
      if constexpr (std::is_same_v<T, Pair>)
        add("pdqsort_branchless",
            [](T* first, T* last) { boost::sort::pdqsort_branchless(first, last); });
    }
}

// Two parallel arrays: the second one is the first one's positions.
template <class Sort>
void SortTwo(State& state, unsigned int n, Sort sort) {
  Arrays<int> arrays(patterns::all[0], n);
  std::vector<int> partners(arrays.Size());
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<int>& work = arrays.Renew();
    std::iota(partners.begin(), partners.end(), 0);
    state.ResumeTiming();
    for (std::size_t i = 0; i != work.size(); i += n)
      sort(work.data() + i, partners.data() + i, n);
    benchmark::ClobberMemory();
  }
  compare::CountOperations(state, arrays.Size());
}

void SortTwoAsPairs(int* first, int* second, unsigned int n) {
  std::vector<std::pair<int, int>> pairs(n);
  for (unsigned int i = 0; i != n; ++i)
    pairs[i] = {first[i], second[i]};
  std::sort(pairs.begin(), pairs.end());
  for (unsigned int i = 0; i != n; ++i) {
    first[i] = pairs[i].first;
    second[i] = pairs[i].second;
  }
}

bool IsLess(unsigned int a, unsigned int b, void const* values, void const*) {
  return static_cast<int const*>(values)[a] < static_cast<int const*>(values)[b];
}

template <class Sort>
void SortIndices(State& state, Pattern const& pattern, unsigned int n, Sort sort) {
  Arrays<int> arrays(pattern, n);
  HYLBasVector<unsigned int> indices;
  for (auto _ : state) {
    state.PauseTiming();
    std::vector<int> const& values = arrays.Renew();
    state.ResumeTiming();
    for (std::size_t i = 0; i != values.size(); i += n) {
      HYLBasIxComparitor comparitor{IsLess, values.data() + i, nullptr};
      benchmark::DoNotOptimize(comparitor); // neither may know the function
      sort(n, indices, comparitor);
      benchmark::ClobberMemory();
    }
  }
  compare::CountOperations(state, arrays.Size());
}

bool const isRegistered = [] {
  RegisterWhole<int>("int");
  RegisterWhole<long long>("int64");
  RegisterWhole<Pair>("pair");
  for (unsigned int const n : compare::Sizes({16, 1000, 100000, 1000000})) {
    auto const addTwo = [n](char const* who, auto sort) {
      compare::Register("sort-two/random/int", n, who,
                        [=](State& state, unsigned int size) { SortTwo(state, size, sort); });
    };
    addTwo("ours", [](int* first, int* second, unsigned int size) {
      HYLBasSort2Special(first, first + size, second, second + size);
    });
    addTwo("std::sort", SortTwoAsPairs);
  }
  for (Pattern const& pattern : patterns::all)
    for (unsigned int const n : compare::Sizes({1000, 100000, 1000000})) {
      auto const addIndex = [&](char const* who, auto sort) {
        compare::Register(
            "sort-index/" + std::string(pattern.name) + "/int", n, who,
            [=](State& state, unsigned int size) { SortIndices(state, pattern, size, sort); });
      };
      addIndex("ours", [](unsigned int size, HYLBasVector<unsigned int>& indices,
                          HYLBasIxComparitor const& comparitor) {
        HYLBasSortGenericIx(nullptr, size, indices, comparitor);
      });
      addIndex("std::sort", peer::SortIndices);
      addIndex("std::sort in a library", peer::SortIndicesInLibrary);
    }
  return true;
}();

} // namespace
