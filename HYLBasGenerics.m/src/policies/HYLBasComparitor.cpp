#include "HYLBasComparitor.h"

#include <cstring>

template HYLBASGENERICS_EXPORT bool HYLBasStandardComparitor<int>(void const*, void const*,
                                                                  void const*);
template class HYLBasComparitor<int>;

bool HYLBasCompareConstCharStar(void const* a, void const* b, void const* /*context*/) {
  return std::strcmp(static_cast<char const*>(a), static_cast<char const*>(b)) != 0;
}
