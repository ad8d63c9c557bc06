/// \file
/// The longer steps of the trees' operations, written once for all allocators and, where they
/// compare, for every order. `HYLBasTreeGeneric<A>` befriends `TreeAlgorithms<A>`.
#pragma once

#include <cstdint>

#include "HYLBasTreeGeneric.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "NodeMemory.h"
#include "TreeLinks.h"
#include "detail/HYLBasPrefetch.h"
#include "detail/HYLBasTreeDescent.h"

namespace hylbas_detail {

inline HYLBasTreeNodeGeneric* Successor(HYLBasTreeNodeGeneric* x) {
  HYLBasTreeIteratorGeneric position(x);
  position.Next();
  return position.m_node;
}

inline HYLBasTreeNodeGeneric* Predecessor(HYLBasTreeNodeGeneric* x) {
  HYLBasTreeIteratorGeneric position(x);
  position.Previous();
  return position.m_node;
}

/// The nodes of a tree that are still to be released, in the order in which to release them.
///
/// Releasing is slow where it waits for memory: for the node, whose links lead on, and for the
/// bytes behind its block, which heaps read when they take a block back. So `Add` prefetches both,
/// and a node comes out only when others that were added before it have been dealt with.
///
/// Nodes fill a batch, which comes out first in, first out: a piece of the tree, level by level.
/// What no longer fits goes to a stack, whose top starts the next batch, with the nodes below it.
/// Thus nodes that are near each other in the tree are released one soon after the other, and a
/// heap that hands blocks out again in the order of their release gives a tree that is built next
/// nodes near each other.
class PendingNodes {
public:
  explicit PendingNodes(int nodeSize) : m_nodeSize(static_cast<unsigned int>(nodeSize)) {}

  bool HasRoom() const { return m_stacked + 2 <= sizeof m_stack / sizeof m_stack[0]; }

  // Null is left out, without a jump: half of all children are null, in no order.
  void Add(HYLBasTreeNodeGeneric* x) {
    Prefetch(x);
    // As a number, because a null pointer must not be added to.
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    Prefetch(reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(x) + m_nodeSize));
    if (m_batched != batchSize) {
      m_batch[m_batched] = x;
      m_batched += x != nullptr;
    } else {
      m_stack[m_stacked] = x;
      m_stacked += x != nullptr;
    }
  }

  // Null when there is none.
  HYLBasTreeNodeGeneric* Next() {
    if (m_visited == m_batched) {
      if (m_stacked == 0) return nullptr;
      m_batch[0] = m_stack[--m_stacked];
      m_visited = 0;
      m_batched = 1;
    }
    return m_batch[m_visited++];
  }

private:
  static constexpr unsigned int batchSize = 64;
  unsigned int const m_nodeSize; // in bytes
  HYLBasTreeNodeGeneric* m_batch[batchSize];
  HYLBasTreeNodeGeneric* m_stack[1024]; // more than balanced trees need
  unsigned int m_visited = 0, m_batched = 0, m_stacked = 0;
};

template <class A>
class TreeAlgorithms {
  using Tree = HYLBasTreeGeneric<A>;
  using Node = HYLBasTreeNodeGeneric;

public:
  /// Carries out an operation that compares, with the comparisons inlined where the comparator is
  /// the library's own.
  template <class Operation>
  static auto InOrder(Tree const& tree, Operation operation) {
    return tree.m_compare == HYLBasStandardComparitor<int>
               ? operation(InlinedOrder<int>())
               : operation(CalledOrder{tree.m_compare, tree.m_context});
  }

  /// \name Insertion
  /// @{
  template <class Order>
  static HYLBasPairIterBoolGeneric InsertUnique(Tree& tree, void const* value, Order order) {
    if constexpr (!Order::isObservable) return InsertUniqueUnobserved(tree, value, order);
    Node* y = tree.m_header;
    bool before = true;
    for (Node* x = tree.Root(); x != nullptr; x = before ? x->m_left : x->m_right) {
      y = x;
      before = order(value, tree.Value(x));
    }
    Node* j = y;
    if (before) {
      if (j == tree.Leftmost()) return {InsertAsChild(tree, nullptr, y, value, order), true};
      j = Predecessor(j);
    }
    if (order(tree.Value(j), value)) return {InsertAsChild(tree, nullptr, y, value, order), true};
    return {j, false};
  }

  template <class Order>
  static Node* InsertEqual(Tree& tree, void const* value, Order order) {
    Leaf const leaf = FindLeaf(tree.m_header, tree.m_offsets.m_valueOffset, value, order);
    return InsertAsChild(tree, nullptr, leaf.parent, value, order);
  }

  /// Between two neighbours, of which exactly one has no child on the side of the other.
  template <class Order>
  static Node* InsertBetween(Tree& tree, Node* before, Node* position, void const* value,
                             Order order) {
    return before->m_right == nullptr ? InsertAsChild(tree, nullptr, before, value, order)
                                      : InsertAsChild(tree, position, position, value, order);
  }

  template <class Order>
  static Node* InsertAsChild(Tree& tree, Node* x, Node* y, void const* value, Order order) {
    if (y == tree.m_header) return Link(tree, true, y, value);
    if constexpr (Order::isObservable)
      return Link(tree, x != nullptr || order(value, tree.Value(y)), y, value);
    // Both asked at once, since neither answer could be predicted.
    return Link(tree, (x != nullptr) | order(value, tree.Value(y)), y, value);
  }

  static Node* Link(Tree& tree, bool isLeft, Node* y, void const* value) {
    Node* const node = tree.CreateNode(value);
    Child(y, !isLeft) = node; // the header's left is the leftmost node
    if (y == tree.m_header) {
      tree.Root() = node;
      tree.Rightmost() = node;
    } else if (y == tree.Leftmost() && isLeft) {
      tree.Leftmost() = node;
    } else if (y == tree.Rightmost() && !isLeft) {
      tree.Rightmost() = node;
    }
    node->m_parent = y;
    node->m_left = nullptr;
    node->m_right = nullptr;
    HYLBasTreeRebalance(node, tree.Root());
    ++tree.m_nodeCount;
    return node;
  }
  /// @}

  /// What TreeNodeErase does where values need no destruction. Then the order of releases is not
  /// promised, so that the next nodes can be on their way from memory while one is released.
  static void ReleaseNodes(Tree& tree, Node* root) {
    if constexpr (NodeMemory<A>::releasesNodes) {
      PendingNodes pending(tree.m_offsets.m_nodeSize);
      pending.Add(root);
      while (Node* const x = pending.Next()) {
        if (pending.HasRoom()) {
          pending.Add(x->m_left);
          pending.Add(x->m_right);
        } else {
          ReleaseNodes(tree, x->m_left);
          ReleaseNodes(tree, x->m_right);
        }
        tree.DeallocateNode(x);
      }
    }
  }

  /// \name Nodes with a copy of a value
  /// @{
  template <class Copy>
  static Node* Create(Tree& tree, void const* value, Copy copy) {
    Node* const node = tree.AllocateNode();
    node->m_valueOffset = tree.m_offsets.m_valueOffset;
    copy(value, tree.Value(node));
    return node;
  }

  template <class Copy>
  static Node* Clone(Tree& tree, Node* x, Copy copy) {
    Node* const node = Create(tree, tree.Value(x), copy);
    node->m_color = x->m_color;
    node->m_valueOffset = x->m_valueOffset;
    node->m_left = nullptr;
    node->m_right = nullptr;
    return node;
  }

  /// Clones what is below `x` to below its `clone`, right subtrees first.
  template <class Copy>
  static void CloneChildren(Tree& tree, Node* x, Node* clone, Copy copy) {
    for (;;) {
      Prefetch(x->m_left);
      Prefetch(x->m_right);
      if (x->m_right != nullptr) {
        clone->m_right = CloneBelow(tree, x->m_right, clone, copy);
        CloneChildren(tree, x->m_right, clone->m_right, copy);
      }
      x = x->m_left;
      if (x == nullptr) return;
      clone->m_left = CloneBelow(tree, x, clone, copy);
      clone = clone->m_left;
    }
  }
  /// @}

private:
  /// InsertUnique with other comparisons, and without the walk to the predecessor, which is the
  /// node where the descent last went right.
  template <class Order>
  static HYLBasPairIterBoolGeneric InsertUniqueUnobserved(Tree& tree, void const* value,
                                                          Order order) {
    int const valueOffset = tree.m_offsets.m_valueOffset;
    Leaf const leaf = FindLeafFromEnd(tree.m_header, valueOffset, value, order);
    if (leaf.IsAfterEquivalent(valueOffset, value, order)) return {leaf.before, false};
    return {Link(tree, leaf.IsLeft(), leaf.parent, value), true};
  }

  template <class Copy>
  static Node* CloneBelow(Tree& tree, Node* x, Node* parent, Copy copy) {
    Node* const clone = Clone(tree, x, copy);
    clone->m_parent = parent;
    return clone;
  }
};

} // namespace hylbas_detail
