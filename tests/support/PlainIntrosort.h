/// \file
/// A model of the introsort steps: each carried out as it is told, by index, on a vector, with a
/// record of how deep it went.
#pragma once

#include <algorithm>
#include <functional>
#include <vector>

namespace model {

template <class E>
class PlainIntrosort {
public:
  using Before = std::function<bool(E, E)>;
  PlainIntrosort(std::vector<E>& array, Before before) : a(array), m_before(std::move(before)) {}

  std::vector<E>& a;
  int heapSorts = 0;

  void Sort(long first, long last) {
    if (first == last) return;
    Loop(first, last, 2 * Lg(last - first));
    FinalInsertion(first, last);
  }
  static long Lg(long n) { return n == 1 ? 0 : 1 + Lg(n >> 1); }

  void Loop(long first, long last, long depth) {
    if (last - first <= 16) return;
    if (depth == 0) {
      ++heapSorts;
      return PartialSort(first, last, last);
    }
    long const median = Median(first, first + (last - first) / 2, last - 1);
    long const cut = Partition(first, last, a[median]);
    Loop(cut, last, depth - 1);
    Loop(first, cut, depth - 1);
  }
  long Median(long x, long y, long z) {
    if (m_before(a[x], a[y])) {
      if (m_before(a[y], a[z])) return y;
      return m_before(a[x], a[z]) ? z : x;
    }
    if (m_before(a[x], a[z])) return x;
    return m_before(a[y], a[z]) ? z : y;
  }
  long Partition(long first, long last, E pivot) {
    for (;;) {
      for (; m_before(a[first], pivot); ++first) {
      }
      for (--last; m_before(pivot, a[last]); --last) {
      }
      if (first >= last) return first;
      std::swap(a[first++], a[last]);
    }
  }

  void FinalInsertion(long first, long last) {
    bool const isLong = last - first > 16;
    Insertion(first, isLong ? first + 16 : last);
    if (isLong) UnguardedInsertion(first + 16, last);
  }
  void Insertion(long first, long last) {
    for (long i = first + 1; i < last; ++i)
      LinearInsert(first, i);
  }
  void UnguardedInsertion(long first, long last) {
    for (long i = first; i < last; ++i)
      UnguardedInsert(i, a[i]);
  }
  void LinearInsert(long first, long last) {
    E const value = a[last];
    if (!m_before(value, a[first])) return UnguardedInsert(last, value);
    CopyBackward(first, last, last + 1);
    a[first] = value;
  }
  void UnguardedInsert(long last, E value) {
    while (m_before(value, a[last - 1])) {
      a[last] = a[last - 1];
      --last;
    }
    a[last] = value;
  }

  void PushHeap(long first, long hole, long top, E value) {
    while (hole > top && m_before(a[first + (hole - 1) / 2], value)) {
      a[first + hole] = a[first + (hole - 1) / 2];
      hole = (hole - 1) / 2;
    }
    a[first + hole] = value;
  }
  void AdjustHeap(long first, long hole, long len, E value) {
    long const top = hole;
    long child = 2 * hole + 2;
    for (; child < len; child = 2 * hole + 2) {
      if (m_before(a[first + child], a[first + child - 1])) child -= 1;
      a[first + hole] = a[first + child];
      hole = child;
    }
    if (child == len) {
      a[first + hole] = a[first + len - 1];
      hole = len - 1;
    }
    PushHeap(first, hole, top, value);
  }
  void MakeHeap(long first, long last) {
    for (long parent = last - first < 2 ? -1 : (last - first - 2) / 2; parent >= 0; --parent)
      AdjustHeap(first, parent, last - first, a[first + parent]);
  }
  void PopHeapTo(long first, long last, long result, E value) {
    a[result] = a[first];
    AdjustHeap(first, 0, last - first, value);
  }
  void PopHeap(long first, long last) { PopHeapTo(first, last - 1, last - 1, a[last - 1]); }
  void SortHeap(long first, long last) {
    while (last - first > 1)
      PopHeap(first, last--);
  }
  void PartialSort(long first, long middle, long last) {
    MakeHeap(first, middle);
    for (long i = middle; i < last; ++i)
      if (m_before(a[i], a[first])) PopHeapTo(first, middle, i, a[i]);
    SortHeap(first, middle);
  }

  long CopyBackward(long first, long last, long result) {
    for (long i = last - first; i > 0; --i)
      a[result - (last - first) + i - 1] = a[first + i - 1];
    return result - (last - first);
  }

private:
  Before m_before;
};

} // namespace model
