/// \file
/// The orders in which the literature of sorting benchmarks hands arrays over: J. L. Bentley and
/// M. D. McIlroy, "Engineering a Sort Function", 1993 (sawtooth, plateau, stagger, shuffle,
/// dither); D. R. Musser, "Introspective Sorting and Selection Algorithms", 1997 (the killer of
/// medians of three); S. Edelkamp and A. Weiss, "BlockQuicksort", 2016, and M. Axtmann, S. Witt,
/// D. Ferizovic and P. Sanders, "In-Place Parallel Super Scalar Samplesort", 2017 (duplicates,
/// exponential, almost sorted); and what real data does: sorted, then changed a little.
#pragma once

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

#include "Compare.h"

namespace patterns {

using compare::Random;
using compare::Share;
using Array = std::vector<int>;

struct Pattern {
  char const* name;
  void (*fill)(Array& a, Random& random);
};

using Index = std::size_t;

// `valueOf(i, n, random)` everywhere.
template <auto valueOf>
void At(Array& a, Random& random) {
  for (Index i = 0; i != a.size(); ++i)
    a[i] = static_cast<int>(valueOf(i, a.size(), random));
}
// The same beginning anywhere, so that no two arrays are the same.
template <auto valueOf>
void From(Array& a, Random& random) {
  Index const start = random() % a.size();
  for (Index i = 0; i != a.size(); ++i)
    a[i] = static_cast<int>(valueOf(start + i, a.size()));
}

inline Index Root(Index n) { return static_cast<Index>(std::sqrt(static_cast<double>(n))); }
inline Index Below(Index end, Random& random) { return random() % end; }
inline Index Below(Array const& a, Random& random) { return Below(a.size(), random); }

inline constexpr auto* Draw = At<[](Index, Index, Random& r) { return r(); }>;
inline constexpr auto* Sorted = At<[](Index i, Index, Random&) { return i; }>;
inline constexpr auto* Reversed = At<[](Index i, Index n, Random&) { return n - i; }>;

inline void Exchange(Array& a, Index count, Random& random) {
  for (; count != 0; --count)
    std::swap(a[Below(a, random)], a[Below(a, random)]);
}
inline void SortedThenDrawn(Array& a, Index count, Random& random) {
  Sorted(a, random);
  for (Index i = a.size() - count; i != a.size(); ++i)
    a[i] = static_cast<int>(Below(a, random));
}
inline void DrawAgain(Array& a, Index i, Random& random) {
  a[i] = static_cast<int>(Below(a, random));
}
inline void ExchangeNeighbours(Array& a, Random& random) {
  Sorted(a, random);
  for (Index i = 1; i < a.size(); i += 2 + Below(8, random))
    std::swap(a[i - 1], a[i]);
}
inline void ReverseFirstHalf(Array& a, Random& random) {
  Sorted(a, random);
  std::reverse(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(a.size() / 2));
}
inline void Rotate(Array& a, Random& random) {
  Sorted(a, random);
  std::rotate(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(a.size() / 3), a.end());
}

// Sorted pieces of random values.
enum RunKind { e_sameLength, e_anyLength, e_upAndDown };
inline void Runs(Array& a, Index length, RunKind kind, Random& random) {
  Draw(a, random);
  bool falls = false;
  for (Index first = 0; first != a.size();) {
    Index const wanted = kind == e_sameLength ? length : 1 + Below(2 * length, random);
    auto const start = a.begin() + static_cast<std::ptrdiff_t>(first);
    first = std::min(a.size(), first + wanted);
    auto const end = a.begin() + static_cast<std::ptrdiff_t>(first);
    std::sort(start, end);
    if (falls) std::reverse(start, end);
    falls = kind == e_upAndDown && !falls;
  }
}
// Stretches of one value each.
inline void Plateaus(Array& a, Random& random) {
  Index left = 0;
  int value = 0;
  for (int& x : a) {
    if (left == 0) {
      left = 1 + Below(2 * Root(a.size()), random);
      value = static_cast<int>(random());
    }
    --left;
    x = value;
  }
}
// Two rising sequences, woven together at random.
inline void Interleave(Array& a, Random& random) {
  int even = 0, odd = 1;
  for (int& x : a)
    x = random() % 2 == 0 ? even += 2 : odd += 2;
}
// Sorted, cut into pieces of `length`, which are put into random order.
inline void Blocks(Array& a, Index length, Random& random) {
  std::vector<Index> starts;
  for (Index start = 0; start < a.size(); start += length)
    starts.push_back(start);
  std::shuffle(starts.begin(), starts.end(), random);
  Index i = 0;
  for (Index const start : starts)
    for (Index k = start; k != std::min(start + length, a.size()); ++k)
      a[i++] = static_cast<int>(k);
}
// Makes the median of first, middle and last one of the least at every step.
inline Index KillMedianOfThree(Index i, Index n, Random&) {
  Index const half = n / 2;
  if (i >= 2 * half) return i;
  if (i >= half) return 2 * (i - half) + 1;
  return i % 2 == 0 ? i : half + i - (half % 2 == 0 ? 1 : 0);
}
// `i` to the power 8, modulo `n`.
inline Index Power8(Index i, Index n) {
  for (int k = 0; k != 3; ++k)
    i = i % n * (i % n) % n;
  return i;
}

inline constexpr Pattern all[] = {
    {"random", Draw},
    {"sorted", Sorted},
    {"reversed", Reversed},
    {"equal", At<[](Index, Index, Random&) { return 7; }>},
    // Few values
    {"2 values", At<[](Index, Index, Random& r) { return r() % 2; }>},
    {"16 values", At<[](Index, Index, Random& r) { return r() % 16; }>},
    {"root values", At<[](Index, Index n, Random& r) { return Below(Root(n), r); }>},
    {"root duplicates", From<[](Index i, Index n) { return i % Root(n); }>},
    {"2 duplicates", From<[](Index i, Index n) { return (i * i + n / 2) % n; }>},
    {"8 duplicates", From<[](Index i, Index n) { return (Power8(i, n) + n / 2) % n; }>},
    {"skewed",
     At<[](Index, Index n, Random& r) { return std::pow(static_cast<double>(n), Share(r)); }>},
    {"exponential", At<[](Index, Index, Random& r) { return std::exp2(31 * Share(r)) - 1; }>},
    // Sorted, then changed
    {"1 exchange", [](Array& a, Random& r) { Sorted(a, r), Exchange(a, 1, r); }},
    {"root exchanges", [](Array& a, Random& r) { Sorted(a, r), Exchange(a, Root(a.size()), r); }},
    {"1% exchanged", [](Array& a, Random& r) { Sorted(a, r), Exchange(a, a.size() / 100, r); }},
    {"10% exchanged", [](Array& a, Random& r) { Sorted(a, r), Exchange(a, a.size() / 10, r); }},
    {"reversed, 1% exchanged",
     [](Array& a, Random& r) { Reversed(a, r), Exchange(a, a.size() / 100, r); }},
    {"neighbours exchanged", ExchangeNeighbours},
    {"jitter", At<[](Index i, Index, Random& r) { return i + Below(16, r); }>},
    {"dither", From<[](Index i, Index) { return i + i % 5; }>},
    {"1 appended", [](Array& a, Random& r) { SortedThenDrawn(a, 1, r); }},
    {"1% appended", [](Array& a, Random& r) { SortedThenDrawn(a, a.size() / 100, r); }},
    {"10% appended", [](Array& a, Random& r) { SortedThenDrawn(a, a.size() / 10, r); }},
    {"least appended", [](Array& a, Random& r) { Sorted(a, r), a.back() = -1; }},
    {"1 in front", [](Array& a, Random& r) { Sorted(a, r), DrawAgain(a, 0, r); }},
    {"1 in the middle", [](Array& a, Random& r) { Sorted(a, r), DrawAgain(a, a.size() / 2, r); }},
    // Pieces
    {"first half reversed", ReverseFirstHalf},
    {"rotated", Rotate},
    {"2 runs", [](Array& a, Random& r) { Runs(a, a.size() / 2, e_sameLength, r); }},
    {"root runs", [](Array& a, Random& r) { Runs(a, Root(a.size()), e_sameLength, r); }},
    {"runs of any length", [](Array& a, Random& r) { Runs(a, Root(a.size()), e_anyLength, r); }},
    {"runs up and down", [](Array& a, Random& r) { Runs(a, Root(a.size()), e_upAndDown, r); }},
    {"root blocks", [](Array& a, Random& r) { Blocks(a, Root(a.size()), r); }},
    {"8 blocks", [](Array& a, Random& r) { Blocks(a, (a.size() + 7) / 8, r); }},
    // Shapes
    {"organ-pipe", At<[](Index i, Index n, Random&) { return std::min(i, n - i); }>},
    {"valley", At<[](Index i, Index n, Random&) { return std::max(i, n - i); }>},
    {"short sawtooth", From<[](Index i, Index) { return i % 16; }>},
    {"long sawtooth", From<[](Index i, Index n) { return i % (n / 8 + 1); }>},
    {"falling sawtooth", From<[](Index i, Index n) { return n - i % (n / 8 + 1); }>},
    {"stagger", From<[](Index i, Index n) { return (i * Root(n) + i) % n; }>},
    {"plateau", At<[](Index i, Index n, Random&) { return std::min(i, n / 2); }>},
    {"plateaus", Plateaus},
    {"stairs", At<[](Index i, Index n, Random&) { return i / Root(n); }>},
    {"2 interleaved", Interleave},
    {"zigzag", At<[](Index i, Index n, Random&) { return i % 2 == 0 ? i : n - i; }>},
    {"median-of-3 killer", At<KillMedianOfThree>},
};

} // namespace patterns
