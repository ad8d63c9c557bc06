/// \file
/// The node record that begins every node of an ordered tree, without knowledge of the value that
/// follows it.
#pragma once

#include "HYLBasExport.h"

/// Colour of a node. Every header node is red.
enum HYLBasTreeColor : int { e_red = 0, e_black = 1 };

/// Plain data; the tree sets the links when it links a node in. The value follows inside the same
/// block. The header node of a tree has its root as parent (null when empty), and the leftmost and
/// rightmost node as children (the header itself when empty).
struct HYLBASGENERICS_EXPORT HYLBasTreeNodeGeneric {
  HYLBasTreeColor m_color;
  int m_valueOffset; ///< bytes from the start of the node to its value
  HYLBasTreeNodeGeneric* m_parent;
  HYLBasTreeNodeGeneric* m_left;
  HYLBasTreeNodeGeneric* m_right;
};

static_assert(sizeof(void*) != 4 || sizeof(HYLBasTreeNodeGeneric) == 20);
