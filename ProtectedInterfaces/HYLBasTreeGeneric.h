/// \file
/// The type-erased ordered container: a red-black tree of values whose type it never knows.
///
/// Take it for values or orders that are known only at run time, for equal keys, or for another
/// source of node memory; take `HYLBasMap<int, V>` for unique `int` keys. Values lie inside the
/// nodes and are copied and destroyed only through a replicator, ordered only through a comparator
/// function with its context value. Positions are nodes, and the header is the end position; see
/// `HYLBasTreeNodeGeneric.h` for the links and `HYLBasTreeIteratorGeneric` for walking.
///
/// The allocator policy `A` says where nodes come from:
///
/// - `HYLBasNodeAllocator`: the memory library's general heap.
/// - `HYLBasNodeTrackingAllocator`: the process-wide map pool, which keeps statistics.
/// - `HYLBasMemTruePool`: the tree's own region pool. Erased nodes keep their bytes until the tree
///   is destroyed.
///
/// Rules that hold throughout:
/// - The key leads the value: the comparator is given the address of a value where a stored one or
///   one to insert is compared, and the caller's address of a bare key in lookups.
/// - The comparator must be a strict weak ordering. It is called with the tree's context. Which
///   calls an operation makes, with which operands first, is the same in every release.
/// - No argument is checked: nodes must belong to this tree, `Erase` is never given the header, and
///   the end of a range is reached by forward steps.
/// - A node keeps its address and its value until it is erased; no operation but assignment, which
///   replaces the header too, invalidates other positions.
/// - Exhausted memory is the memory library's to handle. When a new handler throws, an insertion
///   leaves the tree as it was, and a copy leaves nothing behind.
/// - One thread at a time per tree, and at a time among all trees over the tracking allocator.
///
/// Lookup and insertion take O(log n) comparisons, a correct hint makes that O(1).
#pragma once

#include <type_traits>

#include "HYLBasComparitor.h"
#include "HYLBasNodeAllocator.h"
#include "HYLBasNodeOffsets.h"
#include "HYLBasNodeTrackingAllocator.h"
#include "HYLBasPairIterBoolGeneric.h"
#include "HYLBasReplicator.h"
#include "HYLBasTreeNodeGeneric.h"
#include "TARNHYLBasAlloc.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasTreeDescent.h"

namespace hylbas_detail {
template <class A>
class TreeAlgorithms;
} // namespace hylbas_detail

/// The type-erased ordered container: a red-black tree with one node per value and a header node.
/// The library holds it for `A` in `HYLBasNodeAllocator`, `HYLBasNodeTrackingAllocator` and
/// `HYLBasMemTruePool`.
template <class A>
class HYLBASGENERICS_EXPORT HYLBasTreeGeneric {
  static_assert(std::is_same_v<A, HYLBasNodeAllocator> ||
                    std::is_same_v<A, HYLBasNodeTrackingAllocator> ||
                    std::is_same_v<A, HYLBasMemTruePool>,
                "HYLBasTreeGeneric takes HYLBasNodeAllocator, HYLBasNodeTrackingAllocator or "
                "HYLBasMemTruePool");

  using Node = HYLBasTreeNodeGeneric;

public:
  /// \name Construction
  /// @{

  /// An empty tree: allocates the header, a block of the node size.
  HYLBasTreeGeneric(HYLBasNodeOffsets const& offsets, HYLBasReplicatorGeneric const& replicator,
                    HYLBasCompareFunction const& compare, void const* context);
  /// Copies of `other`'s values in the same shape and colours. Linear, without comparisons.
  HYLBasTreeGeneric(HYLBasTreeGeneric const& other);
  /// Destroys every value, from the last to the first, and releases nodes and header.
  ~HYLBasTreeGeneric();
  /// Becomes a copy of `other`, comparator, context and replicator included, and then destroys its
  /// old values. The node offsets must be equal, unchecked. Assignment to itself does nothing.
  /// Linear; invalidates all positions of this tree, its end too.
  HYLBasTreeGeneric& operator=(HYLBasTreeGeneric const& other);
  /// Exchanges everything with `other` but the node offsets, which must be equal, unchecked.
  /// Constant time; positions stay valid and belong to the other tree.
  void Swap(HYLBasTreeGeneric* other);
  /// @}

  /// \name Access and size
  /// Constant time.
  /// @{

  /// The first node; the header when the tree is empty.
  Node* Begin() const { return m_header->m_left; }
  /// The header.
  Node* End() const { return m_header; }
  /// The address of a node's value.
  void* Value(void* node) { return static_cast<char*>(node) + m_offsets.m_valueOffset; }
  void const* Value(void const* node) const {
    return static_cast<char const*>(node) + m_offsets.m_valueOffset;
  }
  /// Number of values.
  unsigned int Size() const { return m_nodeCount; }
  /// 4294967295.
  unsigned int MaxSize() const { return 4294967295u; }
  bool Empty() const { return m_nodeCount == 0; }
  /// @}

  /// \name Lookup
  /// By the address of a key; the result is the header when there is no such node.
  /// @{

  /// The first node that is equivalent to the key.
  Node* Find(void const* key) const;
  /// The first node that is not before the key.
  Node* LowerBound(void const* key) const;
  /// The first node that is after the key.
  Node* UpperBound(void const* key) const;
  /// @}

  /// \name Insertion
  /// Of a copy of the value at `value`, which may lie in this tree. The hinted forms do without a
  /// descent when the value belongs directly before `position`, a node of this tree or the header;
  /// otherwise they do what the plain forms do.
  /// @{

  /// The new node and true; or the node of an equivalent value and false, without copying.
  HYLBasPairIterBoolGeneric InsertUnique(void const* value);
  /// The new node, after all equivalent ones.
  Node* InsertEqual(void const* value);
  /// The new node, or the one of an equivalent value.
  Node* InsertUniqueAtPosition(Node* position, void const* value);
  /// The new node.
  Node* InsertEqualAtPosition(Node* position, void const* value);
  /// @}

  /// \name Removal
  /// @{

  /// Removes `x`: destroys its value and releases it. Amortised constant time.
  void Erase(Node* x);
  /// Removes [`first`, `last`), in order; everything at once by `Clear` when that is all.
  void Erase(Node* first, Node* last);
  /// Removes everything, from the last value to the first. Linear; constant for a region pool when
  /// values need no destruction. Unless values need it, nodes are released in no particular order.
  void Clear();
  /// @}

  /// \name Comparison of whole trees
  /// Lexicographical, by the comparator of the tree that computes it: `*this`, except for `>` and
  /// `<=`, which `other` computes. Linear.
  /// @{

  /// Whether the values of [`first1`, `last1`) come before those of [`first2`, `last2`); the ranges
  /// may belong to any trees.
  bool LexicographicalCompare(Node const* first1, Node const* last1, Node const* first2,
                              Node const* last2) const;
  bool operator<(HYLBasTreeGeneric const& other) const;
  bool operator>(HYLBasTreeGeneric const& other);
  bool operator<=(HYLBasTreeGeneric const& other);
  bool operator>=(HYLBasTreeGeneric const& other);
  /// @}

  /// \name Self-check
  /// @{

  /// Whether no red node has a red child, no child is on the wrong side of its parent, all nodes
  /// without children have as many black nodes above them, leftmost and rightmost node are these,
  /// and a tree of size 0 has no nodes. Not every damage shows in that: a red root does not, nor a
  /// black child without sibling. O(n log n).
  bool VerifyTree() const;
  /// Black nodes on the way from `node` (0 when it is null) up to `root`, both included.
  unsigned int BlackCount(Node* node, Node* root) const;
  /// @}

  /// \name Links
  /// References to the fields: also for assigning.
  /// @{
  static Node*& Left(Node* n) { return n->m_left; }
  static Node*& Right(Node* n) { return n->m_right; }
  static Node*& Parent(Node* n) { return n->m_parent; }
  static HYLBasTreeColor& Color(Node* n) { return n->m_color; }
  static Node* Minimum(Node* x) { return Node::Minimum(x); }
  static Node* Maximum(Node* x) { return Node::Maximum(x); }
  Node*& Root() const { return m_header->m_parent; }
  Node*& Leftmost() const { return m_header->m_left; }
  Node*& Rightmost() const { return m_header->m_right; }
  /// @}

  /// \name Single nodes
  /// What the operations above are made of. They leave it to the caller that the tree is whole.
  /// @{

  /// Makes the header that of an empty tree; nodes and size are not touched.
  void TreeInitialize();
  /// An uninitialised block of the node size.
  Node* AllocateNode();
  /// A node with a copy of the value; links and colour are not set.
  Node* CreateNode(void const* value);
  /// A node with a copy of `x`'s value, its colour, no children; the parent is not set.
  Node* CloneNode(Node* x);
  /// Destroys the value and releases the node.
  void DestroyNode(Node* x);
  /// Releases the node; does nothing for a region pool.
  void DeallocateNode(Node* x);
  /// Creates a node, links it below `y` and counts it. It becomes the left child when `y` is the
  /// header, when `x` is not null, or when the value is before `y`'s; the right child otherwise.
  Node* TreeNodeInsert(Node* x, Node* y, void const* value);
  /// Destroys all nodes of the subtree rooted at `x`, which may be null, from the last to the
  /// first. Header and size are not touched. Recursion as deep as there are steps to the right.
  void TreeNodeErase(Node* x);
  /// Copies the subtree rooted at `x`, which must not be null, below `p`; returns the copy's root.
  Node* TreeCopy(Node* x, Node* p);
  /// @}

private:
  friend class hylbas_detail::TreeAlgorithms<A>;

  A m_allocator;
  unsigned int m_nodeCount;
  HYLBasNodeOffsets m_offsets;
  HYLBasReplicatorGeneric m_replicator;
  HYLBasCompareFunction m_compare;
  void const* m_context;
  Node* m_header;
};

/// `a.Swap(&b)`, for code that exchanges two objects of any type by an unqualified `swap`.
template <class A>
void swap(HYLBasTreeGeneric<A>& a, HYLBasTreeGeneric<A>& b) {
  a.Swap(&b);
}

// The instantiations live in the library.
extern template class HYLBasTreeGeneric<HYLBasMemTruePool>;
extern template class HYLBasTreeGeneric<HYLBasNodeAllocator>;
extern template class HYLBasTreeGeneric<HYLBasNodeTrackingAllocator>;
