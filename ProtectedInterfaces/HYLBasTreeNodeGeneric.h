/// \file
/// The node record that begins every node of an ordered tree, and the algorithms on its links.
///
/// This layer keeps a tree balanced without knowing its values: it compares, allocates, copies and
/// destroys nothing. Nodes keep their address and their value as long as they live; only links and
/// colours change, so positions stay valid across any insertion and erasure of other nodes.
///
/// A header node anchors a tree: it is red, its parent is the root (null when the tree is empty),
/// its children are the leftmost and the rightmost node (the header itself when the tree is empty).
/// The root's parent is the header; every other missing child is null. The red-black rules: the
/// root is black, a red node has no red child, and every path from a node down to a missing child
/// passes the same number of black nodes.
///
/// All functions are iterative, check nothing and have no state; callers serialise all access to
/// one tree. Rebalancing takes O(log n) steps, with at most two rotations for an insertion and
/// three for an erasure.
#pragma once

#include "detail/HYLBasExport.h"

/// Colour of a node. Every header node is red.
enum HYLBasTreeColor : int { e_red = 0, e_black = 1 };

/// The links and the colour of a node. Plain data; the tree sets the links when it links a node in.
/// The value follows inside the same block.
struct HYLBASGENERICS_EXPORT HYLBasTreeNodeGeneric {
  HYLBasTreeColor m_color;
  int m_valueOffset; ///< bytes from the start of the node to its value
  HYLBasTreeNodeGeneric* m_parent;
  HYLBasTreeNodeGeneric* m_left;
  HYLBasTreeNodeGeneric* m_right;

  /// The leftmost node of the subtree rooted at `x`, which must not be null.
  HYLBASGENERICS_EXPORT_INLINE static HYLBasTreeNodeGeneric* Minimum(HYLBasTreeNodeGeneric* x) {
    while (x->m_left != nullptr)
      x = x->m_left;
    return x;
  }

  /// The rightmost node of the subtree rooted at `x`, which must not be null.
  HYLBASGENERICS_EXPORT_INLINE static HYLBasTreeNodeGeneric* Maximum(HYLBasTreeNodeGeneric* x) {
    while (x->m_right != nullptr)
      x = x->m_right;
    return x;
  }
};

static_assert(sizeof(void*) != 4 || sizeof(HYLBasTreeNodeGeneric) == 20);

/// \name Balance
/// `root`, `leftmost` and `rightmost` are the header's parent, left and right fields, which are
/// updated in place.
/// @{

/// Turns the right child of `x`, which must be there, into the parent of `x`.
HYLBASGENERICS_EXPORT void HYLBasTreeRotateLeft(HYLBasTreeNodeGeneric* x,
                                                HYLBasTreeNodeGeneric*& root);

/// Turns the left child of `x`, which must be there, into the parent of `x`.
HYLBASGENERICS_EXPORT void HYLBasTreeRotateRight(HYLBasTreeNodeGeneric* x,
                                                 HYLBasTreeNodeGeneric*& root);

/// Restores the red-black rules after `x` has been linked in as a leaf: its parent is set, its
/// children are null, its colour need not be set.
HYLBASGENERICS_EXPORT void HYLBasTreeRebalance(HYLBasTreeNodeGeneric* x,
                                               HYLBasTreeNodeGeneric*& root);

/// Unlinks `z`, restores the rules and the header's links. A node with two children is replaced by
/// its successor node, which keeps its address and value.
/// \return `z`, for the caller to destroy and free; its links and colour mean nothing any more
HYLBASGENERICS_EXPORT HYLBasTreeNodeGeneric*
HYLBasTreeRebalanceForErase(HYLBasTreeNodeGeneric* z, HYLBasTreeNodeGeneric*& root,
                            HYLBasTreeNodeGeneric*& leftmost, HYLBasTreeNodeGeneric*& rightmost);
/// @}
