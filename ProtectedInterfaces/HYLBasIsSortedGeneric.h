/// \file
/// Whether an array is in order, for elements of which only the size is known.
#pragma once

#include "HYLBasComparitor.h"
#include "HYLBasReplicator.h"
#include "detail/HYLBasExport.h"

/// \name Test for order
/// Whether no element of [`begin`, `end`) comes before its predecessor; true for fewer than two
/// elements. The comparison is called with each element and its predecessor, up to the first pair
/// out of order. Of the replicator only the element size is used. Nothing is checked.
/// @{

/// By the function that `comparitor` holds.
HYLBASGENERICS_EXPORT bool HYLBasIsSortedGeneric1(void const* begin, void const* end,
                                                  HYLBasReplicatorGeneric replicator,
                                                  HYLBasComparitorGeneric comparitor);
/// By the call operator of `predicate`.
HYLBASGENERICS_EXPORT bool HYLBasIsSortedGeneric2(void const* begin, void const* end,
                                                  HYLBasReplicatorGeneric replicator,
                                                  HYLBasBinaryPredicateGeneric const& predicate);
/// @}
