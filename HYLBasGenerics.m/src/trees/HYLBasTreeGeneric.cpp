#include "HYLBasTreeGeneric.h"

#include "HYLBasSwap.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "NodeMemory.h"
#include "TreeAlgorithms.h"
#include "policies/PlainData.h"

using hylbas_detail::NodeMemory;
using hylbas_detail::Predecessor;
using hylbas_detail::Successor;
using hylbas_detail::TreeAlgorithms;

namespace {

using Node = HYLBasTreeNodeGeneric;

bool IsRed(Node const* x) { return x != nullptr && x->m_color == e_red; }

} // namespace

// --- Construction

template <class A>
HYLBasTreeGeneric<A>::HYLBasTreeGeneric(HYLBasNodeOffsets const& offsets,
                                        HYLBasReplicatorGeneric const& replicator,
                                        HYLBasCompareFunction const& compare, void const* context)
    : m_allocator(NodeMemory<A>::Make()), m_nodeCount(0), m_offsets(offsets),
      m_replicator(replicator), m_compare(compare), m_context(context), m_header(AllocateNode()) {
  TreeInitialize();
}

template <class A>
HYLBasTreeGeneric<A>::HYLBasTreeGeneric(HYLBasTreeGeneric const& other)
    : HYLBasTreeGeneric(other.m_offsets, other.m_replicator, other.m_compare, other.m_context) {
  if (other.Root() != nullptr) {
    Root() = TreeCopy(other.Root(), m_header);
    Leftmost() = Minimum(Root());
    Rightmost() = Maximum(Root());
  }
  m_nodeCount = other.m_nodeCount;
}

template <class A>
HYLBasTreeGeneric<A>::~HYLBasTreeGeneric() {
  Clear();
  DeallocateNode(m_header);
}

template <class A>
HYLBasTreeGeneric<A>& HYLBasTreeGeneric<A>::operator=(HYLBasTreeGeneric const& other) {
  if (&other == this) return *this;
  HYLBasTreeGeneric copy(other);
  Swap(&copy);
  return *this;
}

template <class A>
void HYLBasTreeGeneric<A>::Swap(HYLBasTreeGeneric* other) {
  HYLBasSwap(m_header, other->m_header);
  HYLBasSwap(m_nodeCount, other->m_nodeCount);
  HYLBasSwap(m_compare, other->m_compare);
  HYLBasSwap(m_replicator, other->m_replicator);
  HYLBasSwap(m_context, other->m_context);
  NodeMemory<A>::Exchange(m_allocator, other->m_allocator);
}

// --- Lookup

template <class A>
Node* HYLBasTreeGeneric<A>::Find(void const* key) const {
  return TreeAlgorithms<A>::InOrder(*this, [&](auto order) {
    return hylbas_detail::Find(m_header, m_offsets.m_valueOffset, key, order);
  });
}

template <class A>
Node* HYLBasTreeGeneric<A>::LowerBound(void const* key) const {
  return TreeAlgorithms<A>::InOrder(*this, [&](auto order) {
    return hylbas_detail::LowerBound(m_header, m_offsets.m_valueOffset, key, order);
  });
}

template <class A>
Node* HYLBasTreeGeneric<A>::UpperBound(void const* key) const {
  return TreeAlgorithms<A>::InOrder(*this, [&](auto order) {
    return hylbas_detail::UpperBound(m_header, m_offsets.m_valueOffset, key, order);
  });
}

// --- Insertion

template <class A>
HYLBasPairIterBoolGeneric HYLBasTreeGeneric<A>::InsertUnique(void const* value) {
  return TreeAlgorithms<A>::InOrder(
      *this, [&](auto order) { return TreeAlgorithms<A>::InsertUnique(*this, value, order); });
}

template <class A>
Node* HYLBasTreeGeneric<A>::InsertEqual(void const* value) {
  return TreeAlgorithms<A>::InOrder(
      *this, [&](auto order) { return TreeAlgorithms<A>::InsertEqual(*this, value, order); });
}

template <class A>
Node* HYLBasTreeGeneric<A>::InsertUniqueAtPosition(Node* position, void const* value) {
  return TreeAlgorithms<A>::InOrder(*this, [&](auto order) {
    if (position == Leftmost()) {
      if (m_nodeCount != 0 && order(value, Value(position)))
        return TreeAlgorithms<A>::Link(*this, true, position, value);
    } else if (position == m_header) {
      if (order(Value(Rightmost()), value))
        return TreeAlgorithms<A>::InsertAsChild(*this, nullptr, Rightmost(), value, order);
    } else {
      Node* const before = Predecessor(position);
      if (order(Value(before), value) && order(value, Value(position)))
        return TreeAlgorithms<A>::InsertBetween(*this, before, position, value, order);
    }
    return TreeAlgorithms<A>::InsertUnique(*this, value, order).first;
  });
}

template <class A>
Node* HYLBasTreeGeneric<A>::InsertEqualAtPosition(Node* position, void const* value) {
  return TreeAlgorithms<A>::InOrder(*this, [&](auto order) {
    if (position == Leftmost()) {
      if (m_nodeCount != 0 && !order(Value(position), value))
        return TreeAlgorithms<A>::Link(*this, true, position, value);
    } else if (position == m_header) {
      if (!order(value, Value(Rightmost())))
        return TreeAlgorithms<A>::InsertAsChild(*this, nullptr, Rightmost(), value, order);
    } else {
      Node* const before = Predecessor(position);
      if (!order(value, Value(before)) && !order(Value(position), value))
        return TreeAlgorithms<A>::InsertBetween(*this, before, position, value, order);
    }
    return TreeAlgorithms<A>::InsertEqual(*this, value, order);
  });
}

template <class A>
Node* HYLBasTreeGeneric<A>::TreeNodeInsert(Node* x, Node* y, void const* value) {
  return TreeAlgorithms<A>::InOrder(*this, [&](auto order) {
    return TreeAlgorithms<A>::InsertAsChild(*this, x, y, value, order);
  });
}

// --- Removal

template <class A>
void HYLBasTreeGeneric<A>::Erase(Node* x) {
  Node* const z = HYLBasTreeRebalanceForErase(x, Root(), Leftmost(), Rightmost());
  DestroyNode(z);
  --m_nodeCount;
}

template <class A>
void HYLBasTreeGeneric<A>::Erase(Node* first, Node* last) {
  if (first == Leftmost() && last == m_header) {
    Clear();
    return;
  }
  while (first != last) {
    Node* const next = Successor(first);
    Erase(first);
    first = next;
  }
}

template <class A>
void HYLBasTreeGeneric<A>::Clear() {
  if (m_nodeCount == 0) return;
  if (hylbas_detail::DestroysNothing(m_replicator)) {
    TreeAlgorithms<A>::ReleaseNodes(*this, Root());
  } else {
    TreeNodeErase(Root());
  }
  TreeInitialize();
  m_nodeCount = 0;
}

// Reads the links downwards only, so that it serves a subtree whose parents were never set.
template <class A>
void HYLBasTreeGeneric<A>::TreeNodeErase(Node* x) {
  while (x != nullptr) {
    TreeNodeErase(x->m_right);
    Node* const left = x->m_left;
    DestroyNode(x);
    x = left;
  }
}

// --- Comparison of whole trees

template <class A>
bool HYLBasTreeGeneric<A>::LexicographicalCompare(Node const* first1, Node const* last1,
                                                  Node const* first2, Node const* last2) const {
  HYLBasTreeIteratorGeneric a(first1), b(first2);
  for (; a.NotEqual(last1); a.Next(), b.Next()) {
    if (b.Equal(last2)) return false;
    if (m_compare(a.Dereference(), b.Dereference(), m_context)) return true;
    if (m_compare(b.Dereference(), a.Dereference(), m_context)) return false;
  }
  return b.NotEqual(last2);
}

template <class A>
bool HYLBasTreeGeneric<A>::operator<(HYLBasTreeGeneric const& other) const {
  return LexicographicalCompare(Begin(), End(), other.Begin(), other.End());
}

template <class A>
bool HYLBasTreeGeneric<A>::operator>(HYLBasTreeGeneric const& other) {
  return other < *this;
}

template <class A>
bool HYLBasTreeGeneric<A>::operator<=(HYLBasTreeGeneric const& other) {
  return !(other < *this);
}

template <class A>
bool HYLBasTreeGeneric<A>::operator>=(HYLBasTreeGeneric const& other) {
  return !(*this < other);
}

// --- Self-check

template <class A>
bool HYLBasTreeGeneric<A>::VerifyTree() const {
  if (m_nodeCount == 0 || Leftmost() == m_header)
    return m_nodeCount == 0 && Leftmost() == m_header && Rightmost() == m_header;
  unsigned int const blackCount = BlackCount(Leftmost(), Root());
  auto const isBefore = [this](Node const* a, Node const* b) {
    return m_compare(Value(a), Value(b), m_context);
  };
  for (Node* x = Leftmost(); x != m_header; x = Successor(x)) {
    Node* const l = x->m_left;
    Node* const r = x->m_right;
    if (IsRed(x) && (IsRed(l) || IsRed(r))) return false;
    if (l != nullptr && isBefore(x, l)) return false;
    if (r != nullptr && isBefore(r, x)) return false;
    if (l == nullptr && r == nullptr && BlackCount(x, Root()) != blackCount) return false;
  }
  return Leftmost() == Minimum(Root()) && Rightmost() == Maximum(Root());
}

template <class A>
unsigned int HYLBasTreeGeneric<A>::BlackCount(Node* node, Node* root) const {
  unsigned int count = 0;
  for (; node != nullptr; node = node->m_parent) {
    if (node->m_color == e_black) ++count;
    if (node == root) break;
  }
  return count;
}

// --- Single nodes

template <class A>
void HYLBasTreeGeneric<A>::TreeInitialize() {
  Root() = nullptr;
  Color(m_header) = e_red;
  Leftmost() = m_header;
  Rightmost() = m_header;
}

template <class A>
Node* HYLBasTreeGeneric<A>::AllocateNode() {
  return static_cast<Node*>(m_allocator.allocate(m_offsets.m_nodeSize));
}

template <class A>
void HYLBasTreeGeneric<A>::DeallocateNode(Node* x) {
  m_allocator.deallocate(x, m_offsets.m_nodeSize);
}

template <class A>
Node* HYLBasTreeGeneric<A>::CreateNode(void const* value) {
  return hylbas_detail::WithCopy(
      m_replicator, [&](auto copy) { return TreeAlgorithms<A>::Create(*this, value, copy); });
}

template <class A>
Node* HYLBasTreeGeneric<A>::CloneNode(Node* x) {
  return hylbas_detail::WithCopy(
      m_replicator, [&](auto copy) { return TreeAlgorithms<A>::Clone(*this, x, copy); });
}

template <class A>
void HYLBasTreeGeneric<A>::DestroyNode(Node* x) {
  if (m_replicator.m_destroy != nullptr) m_replicator.m_destroy(Value(x), 1);
  DeallocateNode(x);
}

// Each node before its right subtree, and that before the left one. The copy is at every moment a
// whole subtree, so that it can be taken back when memory runs out.
template <class A>
Node* HYLBasTreeGeneric<A>::TreeCopy(Node* x, Node* p) {
  Node* const top = CloneNode(x);
  top->m_parent = p;
  try {
    hylbas_detail::WithCopy(
        m_replicator, [&](auto copy) { TreeAlgorithms<A>::CloneChildren(*this, x, top, copy); });
  } catch (...) {
    TreeNodeErase(top);
    throw;
  }
  return top;
}

template class HYLBasTreeGeneric<HYLBasMemTruePool>;
template class HYLBasTreeGeneric<HYLBasNodeAllocator>;
template class HYLBasTreeGeneric<HYLBasNodeTrackingAllocator>;
