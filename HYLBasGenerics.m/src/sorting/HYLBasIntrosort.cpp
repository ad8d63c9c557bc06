#include "HYLBasIntrosort.h"

#include <cstddef>

#include "IntrosortSteps.h"

namespace {

using Pair = HYLBasPair<int, int>;
using hylbas_detail::Ascending;
using hylbas_detail::IntrosortSteps;

// Counts inside are as wide as pointers, so that twice an index fits.
using IndexSteps = IntrosortSteps<unsigned int, std::ptrdiff_t, HYLBasIxComparitor>;
using PairSteps = IntrosortSteps<Pair, std::ptrdiff_t, Ascending>;
using IntSteps = IntrosortSteps<int, std::ptrdiff_t, Ascending>;
using Int64Steps = IntrosortSteps<long long, long long, Ascending>;

} // namespace

int __lg(int n) { return IntrosortSteps<int, int, Ascending>::FloorLog2(n); }

template <>
void SGIsort<unsigned int*, HYLBasIxComparitor>(unsigned int* first, unsigned int* last,
                                                HYLBasIxComparitor comp) {
  IndexSteps::Sort(first, last, comp);
}

// Indices

void __introsort_loop(unsigned int* first, unsigned int* last, unsigned int*, int depth,
                      HYLBasIxComparitor comp) {
  IndexSteps::IntrosortLoop(first, last, depth, comp);
}
unsigned int const& __median(unsigned int const& a, unsigned int const& b, unsigned int const& c,
                             HYLBasIxComparitor comp) {
  return IndexSteps::Median(a, b, c, comp);
}
unsigned int* __unguarded_partition(unsigned int* first, unsigned int* last, unsigned int pivot,
                                    HYLBasIxComparitor comp) {
  return IndexSteps::UnguardedPartition(first, last, pivot, comp);
}
void __final_insertion_sort(unsigned int* first, unsigned int* last, HYLBasIxComparitor comp) {
  IndexSteps::FinalInsertionSort(first, last, comp);
}
void __insertion_sort(unsigned int* first, unsigned int* last, HYLBasIxComparitor comp) {
  IndexSteps::InsertionSort(first, last, comp);
}
void __unguarded_insertion_sort(unsigned int* first, unsigned int* last, HYLBasIxComparitor comp) {
  IndexSteps::UnguardedInsertionSort(first, last, comp);
}
void __unguarded_insertion_sort_aux(unsigned int* first, unsigned int* last, unsigned int*,
                                    HYLBasIxComparitor comp) {
  IndexSteps::UnguardedInsertionSort(first, last, comp);
}
void __linear_insert(unsigned int* first, unsigned int* last, unsigned int*,
                     HYLBasIxComparitor comp) {
  IndexSteps::LinearInsert(first, last, comp);
}
void __unguarded_linear_insert(unsigned int* last, unsigned int value, HYLBasIxComparitor comp) {
  IndexSteps::UnguardedLinearInsert(last, value, comp);
}
void make_heap(unsigned int* first, unsigned int* last, HYLBasIxComparitor comp) {
  IndexSteps::MakeHeap(first, last, comp);
}
void __make_heap(unsigned int* first, unsigned int* last, HYLBasIxComparitor comp, unsigned int*,
                 int*) {
  IndexSteps::MakeHeap(first, last, comp);
}
void __adjust_heap(unsigned int* first, int hole, int len, unsigned int value,
                   HYLBasIxComparitor comp) {
  IndexSteps::AdjustHeap(first, hole, len, value, comp);
}
void __push_heap(unsigned int* first, int hole, int top, unsigned int value,
                 HYLBasIxComparitor comp) {
  IndexSteps::PushHeap(first, hole, top, value, comp);
}
void pop_heap(unsigned int* first, unsigned int* last, HYLBasIxComparitor comp) {
  IndexSteps::PopHeap(first, last, comp);
}
void __pop_heap(unsigned int* first, unsigned int* last, unsigned int* result, unsigned int value,
                HYLBasIxComparitor comp, int*) {
  IndexSteps::PopHeapTo(first, last, result, value, comp);
}
void __pop_heap_aux(unsigned int* first, unsigned int* last, unsigned int*,
                    HYLBasIxComparitor comp) {
  IndexSteps::PopHeap(first, last, comp);
}
void sort_heap(unsigned int* first, unsigned int* last, HYLBasIxComparitor comp) {
  IndexSteps::SortHeap(first, last, comp);
}
void partial_sort(unsigned int* first, unsigned int* middle, unsigned int* last,
                  HYLBasIxComparitor comp) {
  IndexSteps::PartialSort(first, middle, last, comp);
}
void __partial_sort(unsigned int* first, unsigned int* middle, unsigned int* last, unsigned int*,
                    HYLBasIxComparitor comp) {
  IndexSteps::PartialSort(first, middle, last, comp);
}
unsigned int* copy_backward(unsigned int* first, unsigned int* last, unsigned int* result) {
  return IndexSteps::CopyBackward(first, last, result);
}
unsigned int* __copy_backward(unsigned int* first, unsigned int* last, unsigned int* result, int*) {
  return IndexSteps::CopyBackward(first, last, result);
}
void iter_swap(unsigned int* a, unsigned int* b) { IndexSteps::IterSwap(a, b); }
void __iter_swap(unsigned int* a, unsigned int* b, unsigned int*) { IndexSteps::IterSwap(a, b); }
unsigned int* value_type(unsigned int*) { return nullptr; }

// Pairs

void __introsort_loop(Pair* first, Pair* last, Pair*, int depth) {
  PairSteps::IntrosortLoop(first, last, depth, Ascending());
}
Pair const& __median(Pair const& a, Pair const& b, Pair const& c) {
  return PairSteps::Median(a, b, c, Ascending());
}
Pair* __unguarded_partitionx(Pair* first, Pair* last, Pair pivot) {
  return PairSteps::UnguardedPartition(first, last, pivot, Ascending());
}
void __final_insertion_sort(Pair* first, Pair* last) {
  PairSteps::FinalInsertionSort(first, last, Ascending());
}
void __insertion_sort(Pair* first, Pair* last) {
  PairSteps::InsertionSort(first, last, Ascending());
}
void __unguarded_insertion_sort(Pair* first, Pair* last) {
  PairSteps::UnguardedInsertionSort(first, last, Ascending());
}
void __unguarded_insertion_sort_aux(Pair* first, Pair* last, Pair*) {
  PairSteps::UnguardedInsertionSort(first, last, Ascending());
}
void __linear_insert(Pair* first, Pair* last, Pair*) {
  PairSteps::LinearInsert(first, last, Ascending());
}
void __unguarded_linear_insert(Pair* last, Pair value) {
  PairSteps::UnguardedLinearInsert(last, value, Ascending());
}
void make_heap(Pair* first, Pair* last) { PairSteps::MakeHeap(first, last, Ascending()); }
void __make_heap(Pair* first, Pair* last, Pair*, int*) {
  PairSteps::MakeHeap(first, last, Ascending());
}
void __adjust_heap(Pair* first, int hole, int len, Pair value) {
  PairSteps::AdjustHeap(first, hole, len, value, Ascending());
}
void __push_heap(Pair* first, int hole, int top, Pair value) {
  PairSteps::PushHeap(first, hole, top, value, Ascending());
}
void pop_heap(Pair* first, Pair* last) { PairSteps::PopHeap(first, last, Ascending()); }
void __pop_heap(Pair* first, Pair* last, Pair* result, Pair value, int*) {
  PairSteps::PopHeapTo(first, last, result, value, Ascending());
}
void __pop_heap_aux(Pair* first, Pair* last, Pair*) {
  PairSteps::PopHeap(first, last, Ascending());
}
void sort_heap(Pair* first, Pair* last) { PairSteps::SortHeap(first, last, Ascending()); }
void partial_sort(Pair* first, Pair* middle, Pair* last) {
  PairSteps::PartialSort(first, middle, last, Ascending());
}
void __partial_sort(Pair* first, Pair* middle, Pair* last, Pair*) {
  PairSteps::PartialSort(first, middle, last, Ascending());
}
Pair* copy_backward(Pair* first, Pair* last, Pair* result) {
  return PairSteps::CopyBackward(first, last, result);
}
Pair* __copy_backward(Pair* first, Pair* last, Pair* result, int*) {
  return PairSteps::CopyBackward(first, last, result);
}
void iter_swap(Pair* a, Pair* b) { PairSteps::IterSwap(a, b); }
void __iter_swap(Pair* a, Pair* b, Pair*) { PairSteps::IterSwap(a, b); }
Pair* value_type(Pair*) { return nullptr; }

// Numbers of 32 bits

void __introsort_loop(int* first, int* last, int depth) {
  IntSteps::IntrosortLoop(first, last, depth, Ascending());
}
int const& __median(int const& a, int const& b, int const& c) {
  return IntSteps::Median(a, b, c, Ascending());
}
int* __unguarded_partition(int* first, int* last, int pivot) {
  return IntSteps::UnguardedPartition(first, last, pivot, Ascending());
}
void __final_insertion_sort(int* first, int* last) {
  IntSteps::FinalInsertionSort(first, last, Ascending());
}
void __insertion_sort(int* first, int* last) { IntSteps::InsertionSort(first, last, Ascending()); }
void __linear_insert(int* first, int* last) { IntSteps::LinearInsert(first, last, Ascending()); }
void __unguarded_linear_insert(int* last, int value) {
  IntSteps::UnguardedLinearInsert(last, value, Ascending());
}
void __make_heap(int* first, int* last) { IntSteps::MakeHeap(first, last, Ascending()); }
void __adjust_heap(int* first, int hole, int len, int value) {
  IntSteps::AdjustHeap(first, hole, len, value, Ascending());
}
void __push_heap(int* first, int hole, int top, int value) {
  IntSteps::PushHeap(first, hole, top, value, Ascending());
}
void __pop_heap(int* first, int* last, int* result, int value) {
  IntSteps::PopHeapTo(first, last, result, value, Ascending());
}
void __pop_heap_aux(int* first, int* last) { IntSteps::PopHeap(first, last, Ascending()); }
void sort_heap(int* first, int* last) { IntSteps::SortHeap(first, last, Ascending()); }
void __partial_sort(int* first, int* middle, int* last) {
  IntSteps::PartialSort(first, middle, last, Ascending());
}
int* __copy_backward(int* first, int* last, int* result) {
  return IntSteps::CopyBackward(first, last, result);
}

// Numbers of 64 bits

void __introsort_loop(long long* first, long long* last, long long depth) {
  Int64Steps::IntrosortLoop(first, last, depth, Ascending());
}
long long const& __median(long long const& a, long long const& b, long long const& c) {
  return Int64Steps::Median(a, b, c, Ascending());
}
long long* __unguarded_partition(long long* first, long long* last, long long pivot) {
  return Int64Steps::UnguardedPartition(first, last, pivot, Ascending());
}
void __final_insertion_sort(long long* first, long long* last) {
  Int64Steps::FinalInsertionSort(first, last, Ascending());
}
void __insertion_sort(long long* first, long long* last) {
  Int64Steps::InsertionSort(first, last, Ascending());
}
void __linear_insert(long long* first, long long* last) {
  Int64Steps::LinearInsert(first, last, Ascending());
}
void __unguarded_linear_insert(long long* last, long long value) {
  Int64Steps::UnguardedLinearInsert(last, value, Ascending());
}
void __make_heap(long long* first, long long* last) {
  Int64Steps::MakeHeap(first, last, Ascending());
}
void __adjust_heap(long long* first, long long hole, long long len, long long value) {
  Int64Steps::AdjustHeap(first, hole, len, value, Ascending());
}
void __push_heap(long long* first, long long hole, long long top, long long value) {
  Int64Steps::PushHeap(first, hole, top, value, Ascending());
}
void __pop_heap(long long* first, long long* last, long long* result, long long value) {
  Int64Steps::PopHeapTo(first, last, result, value, Ascending());
}
void __pop_heap_aux(long long* first, long long* last) {
  Int64Steps::PopHeap(first, last, Ascending());
}
void sort_heap(long long* first, long long* last) {
  Int64Steps::SortHeap(first, last, Ascending());
}
void __partial_sort(long long* first, long long* middle, long long* last) {
  Int64Steps::PartialSort(first, middle, last, Ascending());
}
long long* __copy_backward(long long* first, long long* last, long long* result) {
  return Int64Steps::CopyBackward(first, last, result);
}
