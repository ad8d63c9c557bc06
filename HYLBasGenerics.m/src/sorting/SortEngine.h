/// \file
/// The sort of whole arrays in ascending order, for elements that are nothing but their value:
/// equal ones cannot be told apart, so every sort has the same result and this one is free to take
/// the fastest way. In place, without memory of its own but for one leaf on the stack.
///
/// Quicksort, whose partitions and short ranges are the `Ways`' to do: ScalarSteps.h,
/// VectorSteps.h. Two times lg n partitions in a row that do not finish end in a heap sort, so that
/// no input takes more than n lg n steps. Recursion is at most lg n deep: it takes the shorter
/// part.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "IntrosortSteps.h"
#include "ScalarSteps.h"
#include "VectorSort.h"

namespace hylbas_detail {

template <class Element, class Ways = ScalarWays>
class SortEngine {
  using Way = typename Ways::template For<Element>;
  using Key = SortKey<Element>;
  using KeyType = typename Key::Type;
  struct KeysAscending {
    bool operator()(Element const& a, Element const& b) const { return Key::Of(a) < Key::Of(b); }
  };
  using Steps = IntrosortSteps<Element, std::ptrdiff_t, KeysAscending>;

  static constexpr std::ptrdiff_t longestLeaf = Way::longestLeaf;

public:
  static void Sort(Element* first, Element* last) {
    if (last - first > longestLeaf) {
      if (IsRun(first, last, [](auto const& a, auto const& b) { return !(b < a); })) return;
      if (IsRun(first, last, [](auto const& a, auto const& b) { return !(a < b); }))
        return std::reverse(first, last);
    }
    if constexpr (std::is_same_v<Element, HYLBasPair<int, int>>) {
      std::transform(first, last, first, Key::KeyOf);
      SortUnordered(first, last);
      std::transform(first, last, first, Key::PairOf);
    } else {
      SortUnordered(first, last);
    }
  }

  /// The same without a look whether the array is in order, or in reverse order, already.
  static void SortUnordered(Element* first, Element* last) {
    Quicksort(first, last, 2 * Steps::FloorLog2(last - first), true);
  }

private:
  template <class InOrder>
  static bool IsRun(Element const* first, Element const* last, InOrder inOrder) {
    while (++first != last)
      if (!inOrder(first[-1], *first)) return false;
    return true;
  }

  // Unless `isLeftmost`, `first[-1]` is an element of the array, and none in the range is less than
  // it: it was the pivot, or lay before the cut, of a partition that came before.
  static void Quicksort(Element* first, Element* last, std::ptrdiff_t depth, bool isLeftmost) {
    while (last - first > longestLeaf) {
      if (depth-- == 0) return Steps::PartialSort(first, last, last, {});
      std::swap(*first, *MedianOfNine(first, last));
      auto const pivot = Key::Of(*first);
      if (!isLeftmost && !(Key::Of(first[-1]) < pivot)) {
        // The pivot is the least element: all that are equal to it are in their places.
        first = Way::template Partition<true>(first, last, pivot);
        continue;
      }
      Element* const cut = Way::template Partition<false>(first + 1, last, pivot) - 1;
      std::swap(*first, *cut);
      if (cut - first < last - cut) {
        Quicksort(first, cut, depth, isLeftmost);
        first = cut + 1;
        isLeftmost = false;
      } else {
        Quicksort(cut + 1, last, depth, false);
        last = cut;
      }
    }
    Way::SortLeaf(first, last - first);
  }

  // The median of the medians of three times three. At uneven distances, because input often has
  // patterns at even ones: a ramp up and down, of which the ends and the middle say nothing.
  static Element* MedianOfNine(Element* first, Element* last) {
    std::ptrdiff_t const step = (last - first) / 16;
    MedianToMiddle(first[1 * step], first[5 * step], first[12 * step]);
    MedianToMiddle(first[2 * step], first[7 * step], first[15 * step]);
    MedianToMiddle(first[3 * step], first[9 * step], first[14 * step]);
    MedianToMiddle(first[5 * step], first[7 * step], first[9 * step]);
    return first + 7 * step;
  }

  static void MedianToMiddle(Element& a, Element& b, Element& c) {
    auto x = Key::Of(a), y = Key::Of(b), z = Key::Of(c);
    PutInOrder(x, y);
    PutInOrder(y, z);
    PutInOrder(x, y);
    a = Key::ElementOf(x);
    b = Key::ElementOf(y);
    c = Key::ElementOf(z);
  }

  [[gnu::always_inline]] static inline void PutInOrder(KeyType& a, KeyType& b) {
    KeyType const x = a, y = b;
    a = y < x ? y : x;
    b = y < x ? x : y;
  }
};

} // namespace hylbas_detail
