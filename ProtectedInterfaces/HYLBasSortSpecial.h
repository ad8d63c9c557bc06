/// \file
/// Sorting plain arrays in ascending order, in one call.
///
/// Take these where the order is that of the numbers themselves. `HYLBasSort2Special` carries a
/// second array along; for any other order, and to leave the data in place, take
/// `HYLBasSortGenericIx`.
///
/// The arrays are the caller's and are sorted in place: n lg n steps for n elements also in the
/// worst case, fewer for arrays that are in order, in reverse order, or hold few different values.
/// The recursion is at most 2 lg n deep. Nothing is allocated but where it says so. Elements that
/// are equal are the same in every bit, so there is only one result.
#pragma once

#include "HYLBasPair.h"
#include "detail/HYLBasExport.h"

/// \name One array
/// Sorts [`begin`, `end`); a range that ends before it begins is left alone. Allocates nothing.
/// @{
HYLBASGENERICS_EXPORT void HYLBasSortSpecial(int* begin, int* end);
HYLBASGENERICS_EXPORT void HYLBasSortSpecial(long long* begin, long long* end);
/// By `first`, and by `second` where those are equal.
HYLBASGENERICS_EXPORT void HYLBasSortSpecial(HYLBasPair<int, int>* begin,
                                             HYLBasPair<int, int>* end);

/// The same as `HYLBasSortSpecial`.
HYLBASGENERICS_EXPORT void sortInt64_1(long long* first, long long* last);
/// @}

/// Sorts the first array and arranges the second one with it: what stood at one index in both still
/// does. Where values of the first array are equal, their partners are in ascending order.
///
/// Takes one block for a pair per element from `mem_Malloc_Handled`, none for empty arrays, and
/// releases it; where 32 bits do not hold its bytes, it asks for 4294967295. Arrays of different
/// lengths are reported through `QELFatalError`. Where that returns, the length of the first array
/// counts for both; the process ends where the second is shorter, and where an array ends before it
/// begins.
HYLBASGENERICS_EXPORT void HYLBasSort2Special(int* arrayBegin, int* arrayEnd, int* arraySecondBegin,
                                              int* arraySecondEnd);
