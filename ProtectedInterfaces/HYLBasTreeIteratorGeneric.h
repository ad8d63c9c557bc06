/// \file
/// In-order steps over the nodes of an ordered tree.
#pragma once

#include "HYLBasTreeNodeGeneric.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasPrefetch.h"

/// A position in a tree whose value type is not known: nothing but its node, copied by value. The
/// end position is the tree's header. Steps cost amortised constant time; stepping past either end
/// is not defined, and not checked.
class HYLBASGENERICS_EXPORT HYLBasTreeIteratorGeneric {
public:
  HYLBASGENERICS_EXPORT_INLINE HYLBasTreeIteratorGeneric(HYLBasTreeNodeGeneric* node)
      : m_node(node) {}
  HYLBASGENERICS_EXPORT_INLINE HYLBasTreeIteratorGeneric(HYLBasTreeNodeGeneric const* node)
      : m_node(const_cast<HYLBasTreeNodeGeneric*>(node)) {}

  /// Moves to the in-order successor; from the last element to the header.
  HYLBASGENERICS_EXPORT_INLINE void Next() {
    if (m_node->m_right != nullptr) {
      m_node = m_node->m_right;
      // The right child of a node passed on the way down is needed one step after that node.
      for (; m_node->m_left != nullptr; m_node = m_node->m_left)
        hylbas_detail::Prefetch(m_node->m_right);
      return;
    }
    HYLBasTreeNodeGeneric* y = m_node->m_parent;
    for (; m_node == y->m_right; y = y->m_parent)
      m_node = y;
    // From the last element of a one-node tree the climb has already reached the header.
    if (m_node->m_right != y) m_node = y;
  }

  /// Moves to the in-order predecessor; from the header to the last element.
  HYLBASGENERICS_EXPORT_INLINE void Previous() {
    // The root is its parent's parent too, and is black.
    if (m_node->m_color == e_red && m_node->m_parent->m_parent == m_node) {
      m_node = m_node->m_right;
    } else if (m_node->m_left != nullptr) {
      m_node = HYLBasTreeNodeGeneric::Maximum(m_node->m_left);
    } else {
      HYLBasTreeNodeGeneric* y = m_node->m_parent;
      for (; m_node == y->m_left; y = y->m_parent)
        m_node = y;
      m_node = y;
    }
  }

  /// \name Whether both stand on the same node
  /// @{
  HYLBASGENERICS_EXPORT_INLINE bool Equal(HYLBasTreeIteratorGeneric const& other) const {
    return m_node == other.m_node;
  }
  HYLBASGENERICS_EXPORT_INLINE bool Equal(HYLBasTreeIteratorGeneric const* other) const {
    return m_node == other->m_node;
  }
  HYLBASGENERICS_EXPORT_INLINE bool NotEqual(HYLBasTreeIteratorGeneric const& other) const {
    return m_node != other.m_node;
  }
  HYLBASGENERICS_EXPORT_INLINE bool NotEqual(HYLBasTreeIteratorGeneric const* other) const {
    return m_node != other->m_node;
  }
  /// @}

  /// The address of the node's value, found by the node's own offset; not defined on the header.
  HYLBASGENERICS_EXPORT_INLINE void* Dereference() const {
    return reinterpret_cast<char*>(m_node) + m_node->m_valueOffset;
  }

  HYLBasTreeNodeGeneric* m_node;
};
