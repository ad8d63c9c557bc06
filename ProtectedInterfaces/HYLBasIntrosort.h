/// \file
/// The steps of introsort as functions of their own, for those who build another sort from them. To
/// sort an array, take `HYLBasSortSpecial` or `HYLBasSortGenericIx`.
///
/// There is a family of steps for each of four kinds of elements: indices under the caller's
/// ordering, pairs, and numbers of 32 and of 64 bits in ascending order. They have the names and
/// the shape of the SGI Standard Template Library's: a pointer without a name is a type tag, is
/// null and is never read. Counts, heap indices and depths are in elements; a range is [`first`,
/// `last`).
///
/// All of them work in place, allocate nothing, check nothing and are not stable. An ordering must
/// be a strict weak ordering: with any other the unguarded steps leave the range. What an ordering
/// throws leaves a step with all elements in the range, `value` where `last` or `hole` was free, in
/// any order. What a step compares, in which order, and the arrangement that it leaves, is always
/// the same, but for `SGIsort` of pairs, whose result alone is fixed.
///
/// Partitioning:
/// - `__introsort_loop` leaves runs of at most 16 elements unsorted, each in its place. What is
///   longer after `depth` partitions, at least 0, it sorts by heap. n (depth + lg n).
/// - `__median`: the middle one of three, by reference to the argument. At most 3 comparisons.
/// - `__unguarded_partition`, for pairs `__unguarded_partitionx`, returns the cut: nothing before
///   it comes after the pivot, nothing from it on comes before the pivot. The range must hold
///   elements that stop both scans, as it does when the pivot is the median of three of them. n.
///
/// Inserting:
/// - `__final_insertion_sort` sorts what `__introsort_loop` leaves. 16 n.
/// - `__insertion_sort` sorts. n squared.
/// - `__unguarded_insertion_sort`, `__unguarded_insertion_sort_aux`: the same where some element
///   before `first` does not come after any of the range; may insert below `first`. n squared.
/// - `__linear_insert` inserts `*last` into the sorted range before it, which is not empty. n.
/// - `__unguarded_linear_insert` inserts `value` into the sorted elements before `last`, where
///   `*last` is free; one of them must not come after `value`. n.
///
/// Heaps, in which no element comes after its parent; the children of i are at 2i + 1 and 2i + 2:
/// - `make_heap`, `__make_heap` make one. n.
/// - `__adjust_heap` puts `value` into the heap of `len` elements, of which the one at `hole` is
///   free and those below it are heaps. lg n.
/// - `__push_heap` moves the free `hole` up, at most to `top`, to where `value` fits. lg n.
/// - `pop_heap`, `__pop_heap_aux` move the greatest element to the end of a heap that is not empty;
///   the rest is a heap. lg n.
/// - `__pop_heap` stores the greatest element at `result` and puts `value` into the heap, which is
///   not empty. lg n.
/// - `sort_heap` sorts a heap. n lg n.
/// - `partial_sort`, `__partial_sort`: the least elements, sorted, in [`first`, `middle`). n lg n.
///
/// Moving:
/// - `copy_backward`, `__copy_backward` copy into the range that ends at `result`, last element
///   first, and return where the copies begin. A `result` below `last`, but above `first`,
///   overwrites elements before they are copied.
/// - `iter_swap`, `__iter_swap` exchange two elements.
/// - `value_type`: a null pointer, to be used as a tag.
#pragma once

#include "HYLBasComparitor.h"
#include "HYLBasPair.h"
#include "detail/HYLBasExport.h"

/// The floor of the base-2 logarithm; 0 for `n` below 2.
HYLBASGENERICS_EXPORT int __lg(int n);

/// \name Whole arrays
/// There is one for arrays of indices under an ordering and one for arrays of pairs.
/// At most 4 n lg n + 16 n comparisons; recursion at most 2 lg n deep; allocates nothing.
/// @{
template <class Iterator, class Compare>
void SGIsort(Iterator first, Iterator last, Compare comp) = delete;
template <>
HYLBASGENERICS_EXPORT void SGIsort<unsigned int*, HYLBasIxComparitor>(unsigned int* first,
                                                                      unsigned int* last,
                                                                      HYLBasIxComparitor comp);

template <class Iterator>
void SGIsort(Iterator first, Iterator last) = delete;
template <>
HYLBASGENERICS_EXPORT void SGIsort<HYLBasPair<int, int>*>(HYLBasPair<int, int>* first,
                                                          HYLBasPair<int, int>* last);
/// @}

/// \name Indices
/// @{
HYLBASGENERICS_EXPORT void __introsort_loop(unsigned int* first, unsigned int* last, unsigned int*,
                                            int depth, HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT unsigned int const& __median(unsigned int const& a, unsigned int const& b,
                                                   unsigned int const& c, HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT unsigned int* __unguarded_partition(unsigned int* first, unsigned int* last,
                                                          unsigned int pivot,
                                                          HYLBasIxComparitor comp);

HYLBASGENERICS_EXPORT void __final_insertion_sort(unsigned int* first, unsigned int* last,
                                                  HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __insertion_sort(unsigned int* first, unsigned int* last,
                                            HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __unguarded_insertion_sort(unsigned int* first, unsigned int* last,
                                                      HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __unguarded_insertion_sort_aux(unsigned int* first, unsigned int* last,
                                                          unsigned int*, HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __linear_insert(unsigned int* first, unsigned int* last, unsigned int*,
                                           HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __unguarded_linear_insert(unsigned int* last, unsigned int value,
                                                     HYLBasIxComparitor comp);

HYLBASGENERICS_EXPORT void make_heap(unsigned int* first, unsigned int* last,
                                     HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __make_heap(unsigned int* first, unsigned int* last,
                                       HYLBasIxComparitor comp, unsigned int*, int*);
HYLBASGENERICS_EXPORT void __adjust_heap(unsigned int* first, int hole, int len, unsigned int value,
                                         HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __push_heap(unsigned int* first, int hole, int top, unsigned int value,
                                       HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void pop_heap(unsigned int* first, unsigned int* last,
                                    HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __pop_heap(unsigned int* first, unsigned int* last, unsigned int* result,
                                      unsigned int value, HYLBasIxComparitor comp, int*);
HYLBASGENERICS_EXPORT void __pop_heap_aux(unsigned int* first, unsigned int* last, unsigned int*,
                                          HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void sort_heap(unsigned int* first, unsigned int* last,
                                     HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void partial_sort(unsigned int* first, unsigned int* middle,
                                        unsigned int* last, HYLBasIxComparitor comp);
HYLBASGENERICS_EXPORT void __partial_sort(unsigned int* first, unsigned int* middle,
                                          unsigned int* last, unsigned int*,
                                          HYLBasIxComparitor comp);

HYLBASGENERICS_EXPORT unsigned int* copy_backward(unsigned int* first, unsigned int* last,
                                                  unsigned int* result);
HYLBASGENERICS_EXPORT unsigned int* __copy_backward(unsigned int* first, unsigned int* last,
                                                    unsigned int* result, int*);
HYLBASGENERICS_EXPORT void iter_swap(unsigned int* a, unsigned int* b);
HYLBASGENERICS_EXPORT void __iter_swap(unsigned int* a, unsigned int* b, unsigned int*);
HYLBASGENERICS_EXPORT unsigned int* value_type(unsigned int*);
/// @}

/// \name Pairs
/// @{
HYLBASGENERICS_EXPORT void __introsort_loop(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last,
                                            HYLBasPair<int, int>*, int depth);
HYLBASGENERICS_EXPORT HYLBasPair<int, int> const& __median(HYLBasPair<int, int> const& a,
                                                           HYLBasPair<int, int> const& b,
                                                           HYLBasPair<int, int> const& c);
HYLBASGENERICS_EXPORT HYLBasPair<int, int>* __unguarded_partitionx(HYLBasPair<int, int>* first,
                                                                   HYLBasPair<int, int>* last,
                                                                   HYLBasPair<int, int> pivot);

HYLBASGENERICS_EXPORT void __final_insertion_sort(HYLBasPair<int, int>* first,
                                                  HYLBasPair<int, int>* last);
HYLBASGENERICS_EXPORT void __insertion_sort(HYLBasPair<int, int>* first,
                                            HYLBasPair<int, int>* last);
HYLBASGENERICS_EXPORT void __unguarded_insertion_sort(HYLBasPair<int, int>* first,
                                                      HYLBasPair<int, int>* last);
HYLBASGENERICS_EXPORT void __unguarded_insertion_sort_aux(HYLBasPair<int, int>* first,
                                                          HYLBasPair<int, int>* last,
                                                          HYLBasPair<int, int>*);
HYLBASGENERICS_EXPORT void __linear_insert(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last,
                                           HYLBasPair<int, int>*);
HYLBASGENERICS_EXPORT void __unguarded_linear_insert(HYLBasPair<int, int>* last,
                                                     HYLBasPair<int, int> value);

HYLBASGENERICS_EXPORT void make_heap(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last);
HYLBASGENERICS_EXPORT void __make_heap(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last,
                                       HYLBasPair<int, int>*, int*);
HYLBASGENERICS_EXPORT void __adjust_heap(HYLBasPair<int, int>* first, int hole, int len,
                                         HYLBasPair<int, int> value);
HYLBASGENERICS_EXPORT void __push_heap(HYLBasPair<int, int>* first, int hole, int top,
                                       HYLBasPair<int, int> value);
HYLBASGENERICS_EXPORT void pop_heap(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last);
HYLBASGENERICS_EXPORT void __pop_heap(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last,
                                      HYLBasPair<int, int>* result, HYLBasPair<int, int> value,
                                      int*);
HYLBASGENERICS_EXPORT void __pop_heap_aux(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last,
                                          HYLBasPair<int, int>*);
HYLBASGENERICS_EXPORT void sort_heap(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last);
HYLBASGENERICS_EXPORT void partial_sort(HYLBasPair<int, int>* first, HYLBasPair<int, int>* middle,
                                        HYLBasPair<int, int>* last);
HYLBASGENERICS_EXPORT void __partial_sort(HYLBasPair<int, int>* first, HYLBasPair<int, int>* middle,
                                          HYLBasPair<int, int>* last, HYLBasPair<int, int>*);

HYLBASGENERICS_EXPORT HYLBasPair<int, int>* copy_backward(HYLBasPair<int, int>* first,
                                                          HYLBasPair<int, int>* last,
                                                          HYLBasPair<int, int>* result);
HYLBASGENERICS_EXPORT HYLBasPair<int, int>* __copy_backward(HYLBasPair<int, int>* first,
                                                            HYLBasPair<int, int>* last,
                                                            HYLBasPair<int, int>* result, int*);
HYLBASGENERICS_EXPORT void iter_swap(HYLBasPair<int, int>* a, HYLBasPair<int, int>* b);
HYLBASGENERICS_EXPORT void __iter_swap(HYLBasPair<int, int>* a, HYLBasPair<int, int>* b,
                                       HYLBasPair<int, int>*);
HYLBASGENERICS_EXPORT HYLBasPair<int, int>* value_type(HYLBasPair<int, int>*);
/// @}

/// \name Numbers of 32 bits
/// @{
HYLBASGENERICS_EXPORT void __introsort_loop(int* first, int* last, int depth);
HYLBASGENERICS_EXPORT int const& __median(int const& a, int const& b, int const& c);
HYLBASGENERICS_EXPORT int* __unguarded_partition(int* first, int* last, int pivot);

HYLBASGENERICS_EXPORT void __final_insertion_sort(int* first, int* last);
HYLBASGENERICS_EXPORT void __insertion_sort(int* first, int* last);
HYLBASGENERICS_EXPORT void __linear_insert(int* first, int* last);
HYLBASGENERICS_EXPORT void __unguarded_linear_insert(int* last, int value);

HYLBASGENERICS_EXPORT void __make_heap(int* first, int* last);
HYLBASGENERICS_EXPORT void __adjust_heap(int* first, int hole, int len, int value);
HYLBASGENERICS_EXPORT void __push_heap(int* first, int hole, int top, int value);
HYLBASGENERICS_EXPORT void __pop_heap(int* first, int* last, int* result, int value);
HYLBASGENERICS_EXPORT void __pop_heap_aux(int* first, int* last);
HYLBASGENERICS_EXPORT void sort_heap(int* first, int* last);
HYLBASGENERICS_EXPORT void __partial_sort(int* first, int* middle, int* last);

HYLBASGENERICS_EXPORT int* __copy_backward(int* first, int* last, int* result);
/// @}

/// \name Numbers of 64 bits
/// @{
HYLBASGENERICS_EXPORT void __introsort_loop(long long* first, long long* last, long long depth);
HYLBASGENERICS_EXPORT long long const& __median(long long const& a, long long const& b,
                                                long long const& c);
HYLBASGENERICS_EXPORT long long* __unguarded_partition(long long* first, long long* last,
                                                       long long pivot);

HYLBASGENERICS_EXPORT void __final_insertion_sort(long long* first, long long* last);
HYLBASGENERICS_EXPORT void __insertion_sort(long long* first, long long* last);
HYLBASGENERICS_EXPORT void __linear_insert(long long* first, long long* last);
HYLBASGENERICS_EXPORT void __unguarded_linear_insert(long long* last, long long value);

HYLBASGENERICS_EXPORT void __make_heap(long long* first, long long* last);
HYLBASGENERICS_EXPORT void __adjust_heap(long long* first, long long hole, long long len,
                                         long long value);
HYLBASGENERICS_EXPORT void __push_heap(long long* first, long long hole, long long top,
                                       long long value);
HYLBASGENERICS_EXPORT void __pop_heap(long long* first, long long* last, long long* result,
                                      long long value);
HYLBASGENERICS_EXPORT void __pop_heap_aux(long long* first, long long* last);
HYLBASGENERICS_EXPORT void sort_heap(long long* first, long long* last);
HYLBASGENERICS_EXPORT void __partial_sort(long long* first, long long* middle, long long* last);

HYLBASGENERICS_EXPORT long long* __copy_backward(long long* first, long long* last,
                                                 long long* result);
/// @}
