/// \file
/// The typed iterator of the ordered maps.
#pragma once

#include "HYLBasTreeNodeGeneric.h"

/// A position in an ordered map: `T` is the element type, `Reference` and `Pointer` are how it is
/// handed out. Holds nothing but its node; the end position is the tree's header. An iterator stays
/// valid until its own element is erased.
template <class T, class Reference, class Pointer>
class HYLBASGENERICS_EXPORT HYLBasTreeIterator {
public:
  /// The position of `node`.
  HYLBasTreeIterator(HYLBasTreeNodeGeneric* node) : m_node(node) {}

  HYLBasTreeNodeGeneric* m_node;
};
