/// \file
/// Exchange of two plain values.
#pragma once

#include <type_traits>

#include "detail/HYLBasElementBytes.h"
#include "detail/HYLBasExport.h"

/// Exchanges `a` and `b`; they may be the same object.
template <class T>
HYLBASGENERICS_EXPORT void HYLBasSwap(T& a, T& b) {
  if constexpr (std::is_floating_point_v<T>) {
    hylbas_detail::ElementBytes<T> const kept(a);
    hylbas_detail::CopyElement(&b, &a);
    kept.StoreTo(&b);
  } else {
    T const kept(a);
    a = b;
    b = kept;
  }
}
