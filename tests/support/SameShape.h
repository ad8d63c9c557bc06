/// \file
/// Compares two trees node by node.
#pragma once

#include "HYLBasTreeNodeGeneric.h"

/// Whether the subtrees of `x` and `y`, either of which may be null, have the same links and
/// colours, and values for which `sameValue(x, y)` holds.
template <class SameValue>
bool SameShape(HYLBasTreeNodeGeneric* x, HYLBasTreeNodeGeneric* y, SameValue sameValue) {
  if (x == nullptr || y == nullptr) return x == y;
  return x->m_color == y->m_color && sameValue(x, y) &&
         SameShape(x->m_left, y->m_left, sameValue) && SameShape(x->m_right, y->m_right, sameValue);
}
