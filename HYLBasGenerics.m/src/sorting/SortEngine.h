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
#include <limits>
#include <type_traits>
#include <utility>

#include "IntrosortSteps.h"
#include "NearlyOrdered.h"
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
  static constexpr std::ptrdiff_t elementSize = sizeof(Element);

  struct Before {
    bool operator()(Element const& a, Element const& b) const {
      return Key::NumberOf(a) < Key::NumberOf(b);
    }
  };
  using Order = NearlyOrdered<Element, Before>;

public:
  static void Sort(Element* first, Element* last) {
    std::ptrdiff_t const n = Distance(first, last);
    // Its passes count by differences of pointers, which some arrays are too long for.
    bool const hasDifferences = n <= std::numeric_limits<std::ptrdiff_t>::max() / elementSize;
    if (n > longestLeaf && hasDifferences && SortByOrder(first, last)) return;
    SortUnordered(first, last);
  }

  /// The same without a look for order that is there already.
  static void SortUnordered(Element* first, Element* last) {
    if constexpr (isPair) Key::PairsToKeys(first, last);
    Quicksort(first, last, 2 * Steps::FloorLog2(Distance(first, last)), true);
    if constexpr (isPair) Key::KeysToPairs(first, last);
  }

private:
  static constexpr bool isPair = std::is_same_v<Element, HYLBasPair<int, int>>;

  // Whether the array is sorted now, because it nearly was.
  static bool SortByOrder(Element* first, Element* last) {
    constexpr std::ptrdiff_t share = Way::fewMoved;
    Element* sorted = Order::SortRuns(first, last, share, SortUnordered);
    if (sorted == last) return true;
    if (last - first < Order::fewestToLookAt) return false;
    auto const look = Order::LookAt(first, last);
    if (look.farDescents == 0 && look.descents <= look.all / 4) {
      sorted = Order::SortByInsertion(first, sorted, last);
      if (sorted == last) return true;
    }
    if (look.all - look.descents <= look.all / share && look.least >= look.size * 3 / 4) {
      std::reverse(first, last);
      sorted = first + 1;
    } else if (look.descents > look.all / share || look.most > look.size / 4) {
      return false;
    }
    return Order::SortByMoving(first, sorted, last, share, SortUnordered);
  }

  // Unless `isLeftmost`, there is a `first[-1]`, the pivot of an earlier partition. It comes after
  // no element of the range, and so tells whether the new pivot is the least of them.
  static void Quicksort(Element* first, Element* last, std::ptrdiff_t depth, bool isLeftmost) {
    while (Distance(first, last) > longestLeaf) {
      if constexpr (Way::looksForOrder)
        if (NearlyOrdered<Element, KeysAscending>::IsAscending(first, last)) return;
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
      if (Distance(first, cut) < Distance(cut, last)) {
        Quicksort(first, cut, depth, isLeftmost);
        first = cut + 1;
        isLeftmost = false;
      } else {
        Quicksort(cut + 1, last, depth, false);
        last = cut;
      }
    }
    Way::SortLeaf(first, Distance(first, last));
  }

  // The median of the medians of three times three. At uneven distances, because input often has
  // patterns at even ones: a ramp up and down, of which the ends and the middle say nothing.
  static Element* MedianOfNine(Element* first, Element* last) {
    std::ptrdiff_t const step = Distance(first, last) / 16;
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
