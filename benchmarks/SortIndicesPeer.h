/// \file
/// Sorting by index as a user would write it with `std::sort`: in the program, beside the function
/// that compares, and in a shared library of its own, as far from that function as ours. Some
/// processors take up to a fifth longer for calls from one to the other.
#pragma once

#include <algorithm>
#include <numeric>

#include "HYLBasComparitor.h"
#include "HYLBasVector.h"

namespace peer {

inline void SortIndices(unsigned int n, HYLBasVector<unsigned int>& indices,
                        HYLBasIxComparitor const& comparitor) {
  indices.resize(n);
  std::iota(indices.begin(), indices.end(), 0u);
  std::sort(indices.begin(), indices.end(), comparitor);
}

HYLBASGENERICS_EXPORT void SortIndicesInLibrary(unsigned int n, HYLBasVector<unsigned int>& indices,
                                                HYLBasIxComparitor const& comparitor);

} // namespace peer
