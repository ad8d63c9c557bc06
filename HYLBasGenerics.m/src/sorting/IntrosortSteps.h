/// \file
/// The steps of introsort, written once for every element type and ordering: quicksort with a
/// median-of-three pivot, heap sort where the recursion gets too deep, insertion sort for what is
/// left. The form of the SGI Standard Template Library's `sort`, after David R. Musser,
/// "Introspective Sorting and Selection Algorithms", 1997.
///
/// Every step is exported for some element types and called on its own by other libraries, and the
/// index sort shows each comparison to its caller: the order of comparisons and the arrangement
/// that a step leaves behind are fixed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace hylbas_detail {

/// The number of elements of [`first`, `last`). Also where an array takes more than half of a
/// 32-bit address space: a difference of pointers is negative there.
template <class Element>
std::ptrdiff_t Distance(Element const* first, Element const* last) {
  if (sizeof(void*) > 4) return last - first;
  if (last < first) return -Distance(last, first);
  std::uintptr_t const bytes =
      reinterpret_cast<std::uintptr_t>(last) - reinterpret_cast<std::uintptr_t>(first);
  return static_cast<std::ptrdiff_t>(bytes / sizeof(Element));
}

/// `Before` is the ordering, copied by value into every step. Nothing is allocated or checked;
/// ranges are [first, last). `Count` must hold twice the number of elements. What the ordering
/// throws leaves every step with all elements in the range, in any order.
template <class Element, class Count, class Before>
struct IntrosortSteps {
  static constexpr Count longestInsertionSort = 16; // longer ranges are partitioned

  static void Sort(Element* first, Element* last, Before before) {
    if (first == last) return;
    IntrosortLoop(first, last, 2 * FloorLog2(Distance(first, last)), before);
    FinalInsertionSort(first, last, before);
  }

  static Count FloorLog2(Count n) {
    Count log = 0;
    for (; n > 1; n >>= 1)
      ++log;
    return log;
  }

  /// \name Quicksort
  /// @{

  /// Leaves runs of up to `longestInsertionSort` elements unsorted, each in its place.
  static void IntrosortLoop(Element* first, Element* last, Count depth, Before before) {
    while (Distance(first, last) > longestInsertionSort) {
      if (depth == 0) {
        PartialSort(first, last, last, before);
        return;
      }
      --depth;
      Element const pivot = Median(*first, first[Distance(first, last) / 2], last[-1], before);
      Element* const cut = UnguardedPartition(first, last, pivot, before);
      IntrosortLoop(cut, last, depth, before);
      last = cut;
    }
  }

  static Element const& Median(Element const& a, Element const& b, Element const& c,
                               Before before) {
    if (before(a, b)) return before(b, c) ? b : before(a, c) ? c : a;
    return before(a, c) ? a : before(b, c) ? c : b;
  }

  /// Returns the cut: nothing below it comes after the pivot, nothing from it on before the pivot.
  /// The range must hold elements that stop the scans.
  static Element* UnguardedPartition(Element* first, Element* last, Element pivot, Before before) {
    while (true) {
      while (before(*first, pivot))
        ++first;
      --last;
      while (before(pivot, *last))
        --last;
      if (!(first < last)) return first;
      IterSwap(first, last);
      ++first;
    }
  }
  /// @}

  /// \name Insertion sort
  /// @{
  static void FinalInsertionSort(Element* first, Element* last, Before before) {
    if (Distance(first, last) > longestInsertionSort) {
      InsertionSort(first, first + longestInsertionSort, before);
      UnguardedInsertionSort(first + longestInsertionSort, last, before);
    } else {
      InsertionSort(first, last, before);
    }
  }

  static void InsertionSort(Element* first, Element* last, Before before) {
    if (first == last) return;
    for (Element* i = first + 1; i != last; ++i)
      LinearInsert(first, i, before);
  }

  /// Some element below `first` must not come after any of the range.
  static void UnguardedInsertionSort(Element* first, Element* last, Before before) {
    for (Element* i = first; i != last; ++i)
      UnguardedLinearInsert(i, *i, before);
  }

  /// Inserts `*last` into the sorted range before it.
  static void LinearInsert(Element* first, Element* last, Before before) {
    Element const value = *last;
    if (before(value, *first)) {
      CopyBackward(first, last, last + 1);
      *first = value;
    } else {
      UnguardedLinearInsert(last, value, before);
    }
  }

  static void UnguardedLinearInsert(Element* last, Element value, Before before) {
    while (true) {
      Element const below = last[-1];
      if (!BeforeBesideHole(value, below, *last, value, before)) break;
      *last-- = below;
    }
    *last = value;
  }
  /// @}

  /// \name Heaps
  /// The greatest element is at index 0; the children of index i are at 2i + 1 and 2i + 2.
  /// @{
  static void PushHeap(Element* first, Count hole, Count top, Element value, Before before) {
    Count parent = (hole - 1) / 2;
    while (hole > top && BeforeBesideHole(first[parent], value, first[hole], value, before)) {
      first[hole] = first[parent];
      hole = parent;
      parent = (hole - 1) / 2;
    }
    first[hole] = value;
  }

  /// Moves the hole down to a leaf and then `value` up from there: fewer comparisons than stopping
  /// on the way down, as the value mostly belongs near the leaves.
  static void AdjustHeap(Element* first, Count hole, Count len, Element value, Before before) {
    Count const top = hole;
    Count child = 2 * hole + 2;
    while (child < len) {
      if (BeforeBesideHole(first[child], first[child - 1], first[hole], value, before)) --child;
      first[hole] = first[child];
      hole = child;
      child = 2 * hole + 2;
    }
    if (child == len) {
      first[hole] = first[len - 1];
      hole = len - 1;
    }
    PushHeap(first, hole, top, value, before);
  }

  static void MakeHeap(Element* first, Element* last, Before before) {
    Count const len = Distance(first, last);
    if (len < 2) return;
    for (Count parent = (len - 2) / 2; parent >= 0; --parent)
      AdjustHeap(first, parent, len, first[parent], before);
  }

  /// Stores the greatest element of the heap at `result` and `value` in the heap.
  static void PopHeapTo(Element* first, Element* last, Element* result, Element value,
                        Before before) {
    *result = *first;
    AdjustHeap(first, 0, Distance(first, last), value, before);
  }

  static void PopHeap(Element* first, Element* last, Before before) {
    PopHeapTo(first, last - 1, last - 1, last[-1], before);
  }

  static void SortHeap(Element* first, Element* last, Before before) {
    for (; Distance(first, last) > 1; --last)
      PopHeap(first, last, before);
  }

  /// Leaves the least elements of [first, last) in [first, middle), sorted.
  static void PartialSort(Element* first, Element* middle, Element* last, Before before) {
    MakeHeap(first, middle, before);
    for (Element* i = middle; i < last; ++i)
      if (before(*i, *first)) PopHeapTo(first, middle, i, *i, before);
    SortHeap(first, middle, before);
  }
  /// @}

  /// \name Moving elements
  /// @{

  /// Last element first, so `result` may lie within the range. Returns where the copies begin.
  static Element* CopyBackward(Element const* first, Element const* last, Element* result) {
    while (first != last)
      *--result = *--last;
    return result;
  }

  static void IterSwap(Element* a, Element* b) {
    Element const kept = *a;
    *a = *b;
    *b = kept;
  }

  /// Compares while `value` is held outside of the range and `hole` is free for it. It goes back
  /// there where the ordering throws, because it would be lost otherwise.
  static bool BeforeBesideHole(Element const& a, Element const& b, Element& hole,
                               Element const& value, Before before) {
    try {
      return before(a, b);
    } catch (...) {
      hole = value;
      throw;
    }
  }
  /// @}
};

/// Orders by the type's own `<`.
struct Ascending {
  template <class Element>
  bool operator()(Element const& a, Element const& b) const {
    return a < b;
  }
};

} // namespace hylbas_detail
