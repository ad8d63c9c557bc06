/// \file
/// The engine of the whole-array sorts of plain values, whose result is the same whatever the
/// algorithm: equal elements cannot be told apart.
///
/// Quicksort whose inner loops have no branch that depends on the data: elements are compared by an
/// integer key, a partition moves every element and counts those that belong to the lower part, and
/// short ranges go through a sorting network (K. E. Batcher, "Sorting Networks and their
/// Applications", 1968). Runs that are sorted already, forwards or backwards, are found first;
/// elements equal to the pivot are set aside in one pass; a recursion that gets too deep ends in
/// the heap sort of `IntrosortSteps`. In place: uses no heap, and a stack of at most 2 lg n frames.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

#include "HYLBasPair.h"
#include "IntrosortSteps.h"

namespace hylbas_detail {

/// An integer for each element, in the elements' order, and back.
template <class Element>
struct SortKey {
  using Key = Element;
  static Key Of(Element element) { return element; }
  static Element Back(Key key) { return key; }
};

template <>
struct SortKey<HYLBasPair<int, int>> {
  using Key = std::int64_t;
  using Pair = HYLBasPair<int, int>;

  /// The fields one after the other, the second with its sign bit turned for a low half that orders
  /// as unsigned. The pair is moved as a whole: assembling its halves costs more than the sort.
  static Key Of(Pair const& pair) {
    return static_cast<Key>(Turn(std::bit_cast<std::uint64_t>(pair)));
  }
  static Pair Back(Key key) {
    return std::bit_cast<Pair>(std::rotl(static_cast<std::uint64_t>(key) ^ signOfSecond, rotation));
  }

private:
  static constexpr std::uint64_t signOfSecond = 0x80000000u;
  static constexpr int rotation = std::endian::native == std::endian::little ? 32 : 0;
  static std::uint64_t Turn(std::uint64_t bits) { return std::rotl(bits, rotation) ^ signOfSecond; }
};

template <class Element>
class SortEngine {
public:
  static void Sort(Element* first, Element* last) {
    if (last - first < 2 || SortRun(first, last)) return;
    int depth = 0;
    for (std::ptrdiff_t n = last - first; n > 1; n >>= 1)
      depth += 2;
    Quicksort(first, last, depth, true);
  }

private:
  using Key = typename SortKey<Element>::Key;

  static constexpr std::ptrdiff_t networkSize = 16;
  static constexpr std::uint64_t ninePointPivot = 128; // ranges from this length on

  static Key KeyOf(Element const& element) { return SortKey<Element>::Of(element); }

  /// Sorts an array that is one ascending or one descending run; false when it is neither.
  static bool SortRun(Element* first, Element* last) {
    if (RunEnd(first, last, [](Key a, Key b) { return a <= b; }) == last) return true;
    if (RunEnd(first, last, [](Key a, Key b) { return a >= b; }) != last) return false;
    while (first < --last)
      std::swap(*first++, *last);
    return true;
  }

  /// The first element that does not stand in the wanted relation to the one before it.
  template <class Related>
  static Element* RunEnd(Element* first, Element* last, Related related) {
    Key previous = KeyOf(*first);
    for (Element* i = first + 1; i != last; ++i) {
      Key const key = KeyOf(*i);
      if (!related(previous, key)) return i;
      previous = key;
    }
    return last;
  }

  /// `leftmost` tells that nothing stands before `first`; otherwise the element there comes after
  /// none of the range.
  static void Quicksort(Element* first, Element* last, int depth, bool leftmost) {
    while (last - first > networkSize) {
      if (depth-- == 0) {
        IntrosortSteps<Element, std::ptrdiff_t, Ascending>::PartialSort(first, last, last,
                                                                        Ascending());
        return;
      }
      std::swap(*first, *ChoosePivot(first, last));
      Key const pivot = KeyOf(*first);
      if (!leftmost && KeyOf(first[-1]) == pivot) {
        // Nothing here comes before the pivot: its equals are in place once they are in front.
        first = Partition(first, last, [pivot](Key key) { return key <= pivot; });
        continue;
      }
      Element* const cut = Partition(first + 1, last, [pivot](Key key) { return key < pivot; });
      std::swap(*first, cut[-1]);
      Quicksort(first, cut - 1, depth, leftmost);
      leftmost = false;
      first = cut;
    }
    SortByNetwork(first, last);
  }

  /// Moves the elements whose key is `inLowerPart` to the front; returns where the others begin.
  template <class Predicate>
  static Element* Partition(Element* first, Element* last, Predicate inLowerPart) {
    Element* cut = first;
    for (Element* i = first; i != last; ++i) {
      Element const element = *i;
      *i = *cut;
      *cut = element;
      cut += inLowerPart(KeyOf(element));
    }
    return cut;
  }

  /// The median of three elements, of three such medians in a long range. Where they stand looks
  /// random, so that regular arrangements do not lead to lopsided partitions.
  static Element* ChoosePivot(Element* first, Element* last) {
    auto const n = static_cast<std::uint64_t>(last - first);
    std::uint64_t state = n;
    auto const any = [&] {
      state = state * 6364136223846793005u + 1442695040888963407u;
      return first + static_cast<std::ptrdiff_t>((state >> 32) * n >> 32);
    };
    if (n < ninePointPivot) return Median(any(), any(), any());
    Element* const a = Median(any(), any(), any());
    Element* const b = Median(any(), any(), any());
    return Median(a, b, Median(any(), any(), any()));
  }

  static Element* Median(Element* a, Element* b, Element* c) {
    if (KeyOf(*b) < KeyOf(*a)) std::swap(a, b);
    if (KeyOf(*c) < KeyOf(*b)) b = KeyOf(*c) < KeyOf(*a) ? a : c;
    return b;
  }

  /// At most `networkSize` elements.
  static void SortByNetwork(Element* first, Element* last) {
    std::ptrdiff_t const n = last - first;
    if (n < 2) return;
    if (n <= 4) {
      SortPadded<4, 4>(first, n);
    } else if (n <= 8) {
      SortPadded<8, 8>(first, n);
    } else if (n <= 12) {
      SortPadded<12, 16>(first, n);
    } else {
      SortPadded<16, 16>(first, n);
    }
  }

  /// Fills the network up with copies of the last possible key. Those from `used` on are
  /// constants to the compiler, which drops their comparisons.
  template <std::ptrdiff_t used, std::ptrdiff_t size>
  static void SortPadded(Element* first, std::ptrdiff_t n) {
    Key work[size];
    for (std::ptrdiff_t i = 0; i != size; ++i)
      work[i] =
          i < used - 3 || (i < used && i < n) ? KeyOf(first[i]) : std::numeric_limits<Key>::max();
    SortNetwork<0, size>(work);
    for (std::ptrdiff_t i = 0; i != used; ++i)
      if (i < used - 3 || i < n) first[i] = SortKey<Element>::Back(work[i]);
  }

  /// Batcher's odd-even merge sort of work[low] to work[low + size - 1], unrolled.
  template <std::ptrdiff_t low, std::ptrdiff_t size>
  static void SortNetwork(Key* work) {
    if constexpr (size > 1) {
      SortNetwork<low, size / 2>(work);
      SortNetwork<low + size / 2, size / 2>(work);
      MergeNetwork<low, size, 1>(work);
    }
  }

  /// Merges the sorted halves of every `step`-th element from work[low] on, `size` places in all.
  template <std::ptrdiff_t low, std::ptrdiff_t size, std::ptrdiff_t step>
  static void MergeNetwork(Key* work) {
    if constexpr (2 * step < size) {
      MergeNetwork<low, size, 2 * step>(work);
      MergeNetwork<low + step, size, 2 * step>(work);
      for (std::ptrdiff_t i = low + step; i + step < low + size; i += 2 * step)
        CompareExchange(work[i], work[i + step]);
    } else {
      CompareExchange(work[low], work[low + step]);
    }
  }

  static void CompareExchange(Key& a, Key& b) {
    Key const x = a, y = b;
    a = x < y ? x : y;
    b = x < y ? y : x;
  }
};

} // namespace hylbas_detail
