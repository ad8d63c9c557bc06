/// \file
/// Arrays to be sorted: patterns, element types, and an adversary that makes any quicksort slow.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "HYLBasPair.h"
#include "HYLBasSortGenericIx.h"

namespace inputs {

struct Pattern {
  char const* name;
  int (*valueAt)(int i, int n, std::mt19937& random);
};
inline constexpr int firstInOrder = 7; // among the patterns
inline constexpr Pattern patterns[] = {
    {"random", [](int, int, std::mt19937& random) { return static_cast<int>(random()); }},
    {"sorted", [](int i, int, std::mt19937&) { return i; }},
    {"reversed", [](int i, int n, std::mt19937&) { return n - i; }},
    {"16-values", [](int, int, std::mt19937& random) { return static_cast<int>(random() % 16); }},
    {"organ-pipe", [](int i, int n, std::mt19937&) { return std::min(i, n - i); }},
    {"equal", [](int, int, std::mt19937&) { return 7; }},
    {"last-is-least", [](int i, int n, std::mt19937&) { return i == n - 1 ? -1 : i; }},
    // One or two passes must do for these.
    {"1%-replaced",
     [](int i, int n, std::mt19937& random) {
       return random() % 100 == 0 ? static_cast<int>(random() % 1024) * n / 1024 : i;
     }},
    {"1%-replaced-downwards",
     [](int i, int n, std::mt19937& random) { return random() % 100 == 0 ? n / 3 : n - i; }},
    {"high-in-twos", [](int i, int n, std::mt19937&) { return i % 64 < 2 ? n + i : i; }},
    {"displaced-by-few", [](int i, int, std::mt19937&) { return i + i % 5; }},
    {"rotated", [](int i, int n, std::mt19937&) { return (i + n / 3) % n; }},
    {"rotated-downwards", [](int i, int n, std::mt19937&) { return n - (i + n / 3) % n; }},
    {"first-half-reversed", [](int i, int n, std::mt19937&) { return i < n / 2 ? n / 2 - i : i; }},
    {"second-half-reversed",
     [](int i, int n, std::mt19937&) { return i < n / 2 ? i : n + n / 2 - i; }},
    {"3%-appended",
     [](int i, int n, std::mt19937& random) {
       return i < n - n / 32 ? i : static_cast<int>(random() % 1024) * n / 1024;
     }},
};

inline std::vector<int> Make(Pattern const& pattern, int n, unsigned int seed = 1) {
  std::mt19937 random(seed + static_cast<unsigned int>(n));
  std::vector<int> values;
  for (int i = 0; i != n; ++i)
    values.push_back(pattern.valueAt(i, n, random));
  return values;
}

/// Distinct values stay distinct and in order in every element type. Many differ in the lower half
/// or the second field alone, in 64-bit numbers by the topmost bit of that half.
template <class T>
T ElementOf(int value);
template <>
inline int ElementOf<int>(int value) {
  return value;
}
template <>
inline long long ElementOf<long long>(int value) {
  return value * (1ll << 29);
}
template <>
inline HYLBasPair<int, int> ElementOf<HYLBasPair<int, int>>(int value) {
  return {value >> 3, (value & 7) - 4};
}

template <class T>
std::vector<T> Elements(std::vector<int> const& values) {
  std::vector<T> elements(values.size());
  std::transform(values.begin(), values.end(), elements.begin(), ElementOf<T>);
  return elements;
}

/// After M. D. McIlroy, "A Killer Adversary for Quicksort", 1999: the sort orders items whose
/// values are only decided when it asks, so that every pivot turns out to be among the least.
/// Measures what the sort takes.
class Adversary {
public:
  explicit Adversary(int n) : m_values(static_cast<std::size_t>(n), undecided) {}
  /// All is decided: this only measures.
  explicit Adversary(std::vector<int> const& values) : m_values(values) {}

  bool IsBefore(int a, int b) {
    auto const here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    m_lowest = std::min(m_lowest, here);
    m_highest = std::max(m_highest, here);
    ++comparisons;
    if (ValueOf(a) == undecided && ValueOf(b) == undecided)
      ValueOf(a == m_candidate ? a : b) = m_decided++;
    if (ValueOf(a) == undecided) m_candidate = a;
    if (ValueOf(b) == undecided) m_candidate = b;
    return ValueOf(a) < ValueOf(b);
  }
  void SortIndices() {
    HYLBasVector<unsigned int> indices;
    auto const isBefore = [](unsigned int a, unsigned int b, void const* self, void const*) {
      auto* const adversary = static_cast<Adversary*>(const_cast<void*>(self));
      return adversary->IsBefore(static_cast<int>(a), static_cast<int>(b));
    };
    auto const n = static_cast<unsigned int>(m_values.size());
    HYLBasSortGenericIx(nullptr, n, indices, {isBefore, this, nullptr});
  }

  /// The array that made the sort slow, once it is done.
  std::vector<int> const& Values() const { return m_values; }
  long comparisons = 0;
  /// Bytes of stack between the comparisons.
  std::uintptr_t StackUsed() const { return m_highest - m_lowest; }

private:
  static constexpr int undecided = std::numeric_limits<int>::max();
  int& ValueOf(int item) { return m_values[static_cast<std::size_t>(item)]; }

  std::vector<int> m_values;
  int m_decided = 0, m_candidate = 0;
  std::uintptr_t m_lowest = std::numeric_limits<std::uintptr_t>::max(), m_highest = 0;
};

} // namespace inputs
