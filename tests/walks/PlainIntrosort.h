/// \file
/// A model of the introsort steps: each carried out as it is told.
#pragma once

#include <cstddef>
#include <functional>
#include <utility>

template <class E>
struct PlainIntrosort {
  std::function<bool(E, E)> before = std::less<>();
  int heapSorts = 0;

  static int Lg(std::ptrdiff_t n) { return n < 2 ? 0 : 1 + Lg(n >> 1); }

  void Sort(E* first, E* last) {
    Loop(first, last, 2 * Lg(last - first));
    FinalInsertion(first, last);
  }
  void Loop(E* first, E* last, int depth) {
    if (last - first <= 16) return;
    if (depth == 0) {
      ++heapSorts;
      return PartialSort(first, last, last);
    }
    E* const cut = Partition(first, last, Median(*first, first[(last - first) / 2], last[-1]));
    Loop(cut, last, depth - 1);
    Loop(first, cut, depth - 1);
  }
  E& Median(E& a, E& b, E& c) {
    if (before(a, b)) return before(b, c) ? b : before(a, c) ? c : a;
    return before(a, c) ? a : before(b, c) ? c : b;
  }
  E* Partition(E* first, E* last, E pivot) {
    for (;; ++first) {
      while (before(*first, pivot))
        ++first;
      do
        --last;
      while (before(pivot, *last));
      if (first >= last) return first;
      std::swap(*first, *last);
    }
  }

  void FinalInsertion(E* first, E* last) {
    E* const guarded = last - first > 16 ? first + 16 : last;
    Insertion(first, guarded);
    UnguardedInsertion(guarded, last);
  }
  void Insertion(E* first, E* last) {
    for (E* i = first + 1; i < last; ++i)
      LinearInsert(first, i);
  }
  void UnguardedInsertion(E* first, E* last) {
    for (E* i = first; i < last; ++i)
      UnguardedInsert(i, *i);
  }
  void LinearInsert(E* first, E* last) {
    E const value = *last;
    if (!before(value, *first)) return UnguardedInsert(last, value);
    CopyBackward(first, last, last + 1);
    *first = value;
  }
  void UnguardedInsert(E* last, E value) {
    for (; before(value, last[-1]); --last)
      *last = last[-1];
    *last = value;
  }

  void PushHeap(E* heap, std::ptrdiff_t hole, std::ptrdiff_t top, E value) {
    for (; hole > top && before(heap[(hole - 1) / 2], value); hole = (hole - 1) / 2)
      heap[hole] = heap[(hole - 1) / 2];
    heap[hole] = value;
  }
  void AdjustHeap(E* heap, std::ptrdiff_t hole, std::ptrdiff_t len, E value) {
    std::ptrdiff_t const top = hole;
    while (2 * hole + 1 < len) {
      std::ptrdiff_t child = 2 * hole + 1;
      if (child + 1 < len && !before(heap[child + 1], heap[child])) ++child;
      heap[hole] = heap[child];
      hole = child;
    }
    PushHeap(heap, hole, top, value);
  }
  void MakeHeap(E* first, E* last) {
    for (std::ptrdiff_t parent = (last - first) / 2; parent-- > 0;)
      AdjustHeap(first, parent, last - first, first[parent]);
  }
  void PopHeapTo(E* first, E* last, E* result, E value) {
    *result = *first;
    AdjustHeap(first, 0, last - first, value);
  }
  void PopHeap(E* first, E* last) { PopHeapTo(first, last - 1, last - 1, last[-1]); }
  void SortHeap(E* first, E* last) {
    for (; last - first > 1; --last)
      PopHeap(first, last);
  }
  void PartialSort(E* first, E* middle, E* last) {
    MakeHeap(first, middle);
    for (E* i = middle; i < last; ++i)
      if (before(*i, *first)) PopHeapTo(first, middle, i, *i);
    SortHeap(first, middle);
  }

  E* CopyBackward(E* first, E* last, E* result) {
    while (last != first)
      *--result = *--last;
    return result;
  }
};
