/// \file
/// The sorts of whole arrays, in the fastest way that the processor has.
#pragma once

#include "HYLBasPair.h"

namespace hylbas_detail {

void SortWholeArray(int* first, int* last);
void SortWholeArray(long long* first, long long* last);
void SortWholeArray(HYLBasPair<int, int>* first, HYLBasPair<int, int>* last);

} // namespace hylbas_detail
