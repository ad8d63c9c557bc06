/// \file
/// Sorting by index: the data stays where it is, and the order is a list of indices.
///
/// Take it for elements that are costly to move, for several orders of the same data, and for
/// orders that only the caller knows. Plain numbers in ascending order: `HYLBasSortSpecial`.
#pragma once

#include "HYLBasComparitor.h"
#include "HYLBasVector.h"
#include "detail/HYLBasExport.h"

/// Makes `indices` the list of 0 to `count` - 1 in the order of `comparitor`: `indices[k]` is the
/// index of the element that belongs at position k. Its former contents are lost. Not stable:
/// indices of equal elements come in any order, so let the comparitor decide by the indices where
/// that matters.
///
/// `data` is not read; the comparitor's context values tell its function where the data is. Its
/// function must be a strict weak ordering: with any other, memory outside of `indices` is touched.
/// It is called at most 4 n lg n + 16 n times for n elements; the recursion is at most 2 lg n deep.
/// Allocates only where the capacity of `indices` is below `count` elements. What the function
/// throws leaves the sort; `indices` then lists 0 to `count` - 1 in any order.
HYLBASGENERICS_EXPORT void HYLBasSortGenericIx(void* data, unsigned int count,
                                               HYLBasVector<unsigned int>& indices,
                                               HYLBasIxComparitor const& comparitor);
