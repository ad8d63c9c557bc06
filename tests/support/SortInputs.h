/// \file
/// Arrays to be sorted: patterns, and an adversary that makes any quicksort slow.
#pragma once

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace inputs {

/// After M. D. McIlroy, "A Killer Adversary for Quicksort", 1999: the sort orders items whose
/// values are only decided when it asks, so that every pivot turns out to be among the least.
class Adversary {
public:
  explicit Adversary(int n) : m_values(static_cast<std::size_t>(n), undecided) {}
  /// All is decided: this only counts.
  explicit Adversary(std::vector<int> const& values) : m_values(values) {}

  bool IsBefore(int a, int b) {
    ++comparisons;
    if (ValueOf(a) == undecided && ValueOf(b) == undecided)
      ValueOf(a == m_candidate ? a : b) = m_decided++;
    if (ValueOf(a) == undecided) m_candidate = a;
    if (ValueOf(b) == undecided) m_candidate = b;
    return ValueOf(a) < ValueOf(b);
  }
  /// The array that made the sort slow, once it is done.
  std::vector<int> const& Values() const { return m_values; }

  long comparisons = 0;

private:
  static constexpr int undecided = 0x7fffffff;
  int& ValueOf(int item) { return m_values[static_cast<std::size_t>(item)]; }

  std::vector<int> m_values;
  int m_decided = 0, m_candidate = 0;
};

struct Pattern {
  std::string name;
  int (*valueAt)(int i, int n, std::mt19937& random);
};
inline Pattern const patterns[] = {
    {"random", [](int, int, std::mt19937& random) { return static_cast<int>(random()); }},
    {"sorted", [](int i, int, std::mt19937&) { return i; }},
    {"reversed", [](int i, int n, std::mt19937&) { return n - i; }},
    {"equal", [](int, int, std::mt19937&) { return 7; }},
    {"few distinct", [](int, int, std::mt19937& random) { return static_cast<int>(random() % 5); }},
    {"organ pipe", [](int i, int n, std::mt19937&) { return std::min(i, n - i); }},
    {"one out of order", [](int i, int n, std::mt19937&) { return i == n - 2 ? 0 : i; }},
};

inline std::vector<int> Make(Pattern const& pattern, int n, unsigned int seed = 1) {
  std::mt19937 random(seed + static_cast<unsigned int>(n));
  std::vector<int> values;
  for (int i = 0; i != n; ++i)
    values.push_back(pattern.valueAt(i, n, random));
  return values;
}

} // namespace inputs
