/// \file
/// The longer steps of the trees' operations, written once for all allocators and, where they
/// compare, for every order. `HYLBasTreeGeneric<A>` befriends `TreeAlgorithms<A>`.
#pragma once

#include <cstddef>

#include "HYLBasTreeDescent.h"
#include "HYLBasTreeGeneric.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "NodeMemory.h"

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

/// Nodes still to be visited, each asked for from memory when it is added. They come out level by
/// level in batches of neighbours: late enough to have arrived, and with few other nodes between
/// those that lie together, so that a heap that reuses blocks in this order keeps trees together.
class PendingNodes {
public:
  bool HasRoom() const { return m_stacked + 2 <= sizeof m_stack / sizeof m_stack[0]; }

  // Null is left out, without a jump: half of all children are null, in no order.
  void Add(HYLBasTreeNodeGeneric* x) {
    __builtin_prefetch(x);
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
  static constexpr unsigned int batchSize = 128;
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
    return InsertAsChild(tree, nullptr, FindPlace(tree, value, order).parent, value, order);
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
    bool const isLeft = y == tree.m_header || x != nullptr || order(value, tree.Value(y));
    return Link(tree, isLeft, y, value);
  }

  static Node* Link(Tree& tree, bool isLeft, Node* y, void const* value) {
    Node* const node = tree.CreateNode(value);
    ChildField(y, isLeft) = node; // the header's left is the leftmost node
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
      PendingNodes pending;
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

  /// Copies what is below `x` to below its clone `copy`, right subtrees first.
  static void CopyChildren(Tree& tree, Node* x, Node* copy) {
    for (;;) {
      __builtin_prefetch(x->m_left);
      if (x->m_right != nullptr) {
        copy->m_right = CloneBelow(tree, x->m_right, copy);
        CopyChildren(tree, x->m_right, copy->m_right);
      }
      x = x->m_left;
      if (x == nullptr) return;
      copy->m_left = CloneBelow(tree, x, copy);
      copy = copy->m_left;
    }
  }

private:
  /// InsertUnique with other comparisons: a value after all others needs only one, as in ascending
  /// insertion, and there is no walk to the predecessor, the node where the descent last went
  /// right.
  template <class Order>
  static HYLBasPairIterBoolGeneric InsertUniqueUnobserved(Tree& tree, void const* value,
                                                          Order order) {
    Node* const last = tree.Rightmost();
    if (tree.Root() != nullptr && order(tree.Value(last), value))
      return {Link(tree, false, last, value), true};
    auto const [y, j] = FindPlace(tree, value, order);
    if (j != nullptr && !order(tree.Value(j), value)) return {j, false};
    return {Link(tree, y != j, y, value), true};
  }

  template <class Order>
  static Leaf FindPlace(Tree const& tree, void const* value, Order order) {
    return FindLeaf(tree.m_header, tree.m_nodeCount, tree.m_offsets.m_valueOffset, value, order);
  }

  /// By its address, because the side of a new node cannot be predicted.
  static Node*& ChildField(Node* x, bool isLeft) {
    static_assert(offsetof(Node, m_right) == offsetof(Node, m_left) + sizeof(Node*));
    char* const left = reinterpret_cast<char*>(x) + offsetof(Node, m_left);
    return *reinterpret_cast<Node**>(left + !isLeft * sizeof(Node*));
  }

  static Node* CloneBelow(Tree& tree, Node* x, Node* parent) {
    Node* const clone = tree.CloneNode(x);
    clone->m_parent = parent;
    return clone;
  }
};

} // namespace hylbas_detail
