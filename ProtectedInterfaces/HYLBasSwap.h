/// \file
/// Exchange of two plain values.
#pragma once

#include "detail/HYLBasExport.h"

/// Exchanges `a` and `b`; they may be the same object.
template <class T>
HYLBASGENERICS_EXPORT void HYLBasSwap(T& a, T& b) {
  T const kept(a);
  a = b;
  b = kept;
}
