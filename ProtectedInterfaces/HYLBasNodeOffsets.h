/// \file
/// The layout of a tree's nodes for one value type.
#pragma once

#include "detail/HYLBasExport.h"

/// Where the value lies in a tree's node, and how long the node is, in bytes.
class HYLBASGENERICS_EXPORT HYLBasNodeOffsets {
public:
  /// \param valueOffset bytes from the start of a node to its value: the size of
  ///     `HYLBasTreeNodeGeneric` raised to a multiple of the value's alignment
  /// \param nodeSize bytes of a whole node: the value offset plus the size of the value. Nodes of a
  ///     region pool follow each other without a gap, so there it must be a multiple of the
  ///     alignment of `HYLBasTreeNodeGeneric` and of the value
  HYLBASGENERICS_EXPORT_INLINE HYLBasNodeOffsets(int valueOffset, int nodeSize)
      : m_valueOffset(valueOffset), m_nodeSize(nodeSize) {}
  HYLBASGENERICS_EXPORT_INLINE ~HYLBasNodeOffsets() {}
  HYLBasNodeOffsets(HYLBasNodeOffsets const&) = default;
  HYLBasNodeOffsets& operator=(HYLBasNodeOffsets const&) = default;

  int m_valueOffset; ///< bytes from the start of a node to its value
  int m_nodeSize;    ///< bytes of a whole node
};
