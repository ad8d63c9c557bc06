// The sorts beside std::sort and boost::sort::pdqsort on the same arrays. Every iteration sorts
// fresh copies, and copying is not timed. Short arrays come many at a time and differ where the
// pattern lets them, so that the processor cannot learn them by heart.
#include <algorithm>
#include <cstddef>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <boost/sort/pdqsort/pdqsort.hpp>

#include "Compare.h"
#include "HYLBasSortGenericIx.h"
#include "HYLBasSortSpecial.h"

namespace {

using benchmark::State;
using Pair = HYLBasPair<int, int>;

std::mt19937 generator(1); // NOLINT(cert-msc51-cpp): the same arrays in every run

struct Pattern {
  char const* name;
  int (*valueAt)(unsigned int i, unsigned int n);
};
constexpr Pattern patterns[] = {
    {"random", [](unsigned int, unsigned int) { return static_cast<int>(generator() >> 1); }},
    {"sorted", [](unsigned int i, unsigned int) { return static_cast<int>(i); }},
    {"reversed", [](unsigned int i, unsigned int n) { return static_cast<int>(n - i); }},
    {"16-values", [](unsigned int, unsigned int) { return static_cast<int>(generator() % 16); }},
    {"organ-pipe",
     [](unsigned int i, unsigned int n) { return static_cast<int>(std::min(i, n - i)); }},
};
constexpr unsigned int sizes[] = {16, 1000, 100000, 1000000};

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
std::vector<T> Arrays(Pattern const& pattern, unsigned int n) {
  constexpr unsigned int atLeast = 65536;
  std::vector<T> elements;
  do {
    for (unsigned int i = 0; i != n; ++i)
      elements.push_back(ElementOf<T>(pattern.valueAt(i, n)));
  } while (elements.size() < atLeast);
  return elements;
}

template <class T, class Sort>
void SortArrays(State& state, Pattern const& pattern, unsigned int n, Sort sort) {
  std::vector<T> const source = Arrays<T>(pattern, n);
  std::vector<T> work(source.size());
  for (auto _ : state) {
    state.PauseTiming();
    std::copy(source.begin(), source.end(), work.begin());
    state.ResumeTiming();
    for (std::size_t i = 0; i != work.size(); i += n)
      sort(work.data() + i, work.data() + i + n);
    benchmark::ClobberMemory();
  }
}

template <class T>
void RegisterWhole(std::string const& type) {
  for (Pattern const& pattern : patterns)
    for (unsigned int const n : sizes) {
      if (n == 16 && pattern.valueAt != patterns[0].valueAt) continue;
      auto const add = [&](char const* who, auto sort) {
        compare::Register(
            "sort/" + std::string(pattern.name) + '/' + type, n, who,
            [=](State& state, unsigned int size) { SortArrays<T>(state, pattern, size, sort); });
      };
      add("ours", [](T* first, T* last) { HYLBasSortSpecial(first, last); });
      add("std::sort", [](T* first, T* last) { std::sort(first, last); });
      add("pdqsort", [](T* first, T* last) { boost::sort::pdqsort(first, last); });
    }
}

// Two parallel arrays: the second one is the first one's positions.
template <class Sort>
void SortTwo(State& state, unsigned int n, Sort sort) {
  std::vector<int> const source = Arrays<int>(patterns[0], n);
  std::vector<int> work(source.size()), partners(source.size());
  for (auto _ : state) {
    state.PauseTiming();
    std::copy(source.begin(), source.end(), work.begin());
    std::iota(partners.begin(), partners.end(), 0);
    state.ResumeTiming();
    for (std::size_t i = 0; i != work.size(); i += n)
      sort(work.data() + i, partners.data() + i, n);
    benchmark::ClobberMemory();
  }
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
  std::vector<int> const values = Arrays<int>(pattern, n);
  HYLBasVector<unsigned int> indices;
  for (auto _ : state)
    for (std::size_t i = 0; i != values.size(); i += n) {
      HYLBasIxComparitor comparitor{IsLess, values.data() + i, nullptr};
      benchmark::DoNotOptimize(comparitor); // neither may know the function
      sort(n, indices, comparitor);
      benchmark::ClobberMemory();
    }
}

void SortIndicesByStd(unsigned int n, HYLBasVector<unsigned int>& indices,
                      HYLBasIxComparitor const& comparitor) {
  indices.resize(n);
  std::iota(indices.begin(), indices.end(), 0u);
  std::sort(indices.begin(), indices.end(), comparitor);
}

bool const isRegistered = [] {
  RegisterWhole<int>("int");
  RegisterWhole<long long>("int64");
  RegisterWhole<Pair>("pair");
  for (unsigned int const n : sizes) {
    auto const addTwo = [n](char const* who, auto sort) {
      compare::Register("sort-two/random/int", n, who,
                        [=](State& state, unsigned int size) { SortTwo(state, size, sort); });
    };
    addTwo("ours", [](int* first, int* second, unsigned int size) {
      HYLBasSort2Special(first, first + size, second, second + size);
    });
    addTwo("std::sort", SortTwoAsPairs);
  }
  for (Pattern const& pattern : patterns)
    for (unsigned int const n : sizes) {
      auto const addIndex = [&](char const* who, auto sort) {
        compare::Register(
            "sort-index/" + std::string(pattern.name) + "/int", n, who,
            [=](State& state, unsigned int size) { SortIndices(state, pattern, size, sort); });
      };
      addIndex("ours", [](unsigned int size, HYLBasVector<unsigned int>& indices,
                          HYLBasIxComparitor const& comparitor) {
        HYLBasSortGenericIx(nullptr, size, indices, comparitor);
      });
      addIndex("std::sort", SortIndicesByStd);
    }
  return true;
}();

} // namespace
