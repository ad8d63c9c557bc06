#include "HYLBasTreeGeneric.h"

#include <cstddef>

#include "HYLBasSwap.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "NodeMemory.h"
#include "PlainData.h"

using hylbas_detail::CalledOrder;
using hylbas_detail::InlinedOrder;
using hylbas_detail::NodeMemory;

namespace {

using Node = HYLBasTreeNodeGeneric;

Node* Successor(Node* x) {
  HYLBasTreeIteratorGeneric position(x);
  position.Next();
  return position.m_node;
}

Node* Predecessor(Node* x) {
  HYLBasTreeIteratorGeneric position(x);
  position.Previous();
  return position.m_node;
}

// By its address, because the side of a new node cannot be predicted.
Node*& ChildField(Node* x, bool isLeft) {
  static_assert(offsetof(Node, m_right) == offsetof(Node, m_left) + sizeof(Node*));
  char* const left = reinterpret_cast<char*>(x) + offsetof(Node, m_left);
  return *reinterpret_cast<Node**>(left + !isLeft * sizeof(Node*));
}

bool IsRed(Node const* x) { return x != nullptr && x->m_color == e_red; }

// Nodes still to be visited, each asked for from memory when it is added. They come out level by
// level in batches of neighbours: late enough to have arrived, and with few other nodes between
// those that lie together, so that a heap that reuses blocks in this order keeps trees together.
class PendingNodes {
public:
  bool HasRoom() const { return m_stacked + 2 <= sizeof m_stack / sizeof m_stack[0]; }

  // Null is left out, without a jump: half of all children are null, in no order.
  void Add(Node* x) {
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
  Node* Next() {
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
  Node* m_batch[batchSize];
  Node* m_stack[1024]; // more than balanced trees need
  unsigned int m_visited = 0, m_batched = 0, m_stacked = 0;
};

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
  if (other.Root() == nullptr) return;
  Root() = TreeCopy(other.Root(), m_header);
  Leftmost() = Minimum(Root());
  Rightmost() = Maximum(Root());
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

// Carries out an operation that compares, with the comparisons inlined where the comparator is the
// library's own.
template <class A>
template <class Operation>
auto HYLBasTreeGeneric<A>::InOrder(Operation operation) const {
  return m_compare == HYLBasStandardComparitor<int> ? operation(InlinedOrder<int>())
                                                    : operation(CalledOrder{m_compare, m_context});
}

template <class A>
Node* HYLBasTreeGeneric<A>::Find(void const* key) const {
  return InOrder([&](auto order) {
    return hylbas_detail::Find(m_header, m_offsets.m_valueOffset, key, order);
  });
}

template <class A>
Node* HYLBasTreeGeneric<A>::LowerBound(void const* key) const {
  return InOrder([&](auto order) {
    return hylbas_detail::LowerBound(m_header, m_offsets.m_valueOffset, key, order);
  });
}

template <class A>
Node* HYLBasTreeGeneric<A>::UpperBound(void const* key) const {
  return InOrder([&](auto order) {
    return hylbas_detail::UpperBound(m_header, m_offsets.m_valueOffset, key, order);
  });
}

// --- Insertion

template <class A>
HYLBasPairIterBoolGeneric HYLBasTreeGeneric<A>::InsertUnique(void const* value) {
  return InOrder([&](auto order) { return InsertUnique(value, order); });
}

template <class A>
template <class Order>
HYLBasPairIterBoolGeneric HYLBasTreeGeneric<A>::InsertUnique(void const* value, Order order) {
  if constexpr (!Order::isObservable) return InsertUniqueUnobserved(value, order);
  Node* y = m_header;
  bool before = true;
  for (Node* x = Root(); x != nullptr; x = before ? x->m_left : x->m_right) {
    y = x;
    before = order(value, Value(x));
  }
  Node* j = y;
  if (before) {
    if (j == Leftmost()) return {InsertAsChild(nullptr, y, value, order), true};
    j = Predecessor(j);
  }
  if (order(Value(j), value)) return {InsertAsChild(nullptr, y, value, order), true};
  return {j, false};
}

// The same with other comparisons: a value after all others needs only one, as in ascending
// insertion, and no walk to the predecessor: that is the node where the descent last went right.
template <class A>
template <class Order>
HYLBasPairIterBoolGeneric HYLBasTreeGeneric<A>::InsertUniqueUnobserved(void const* value,
                                                                       Order order) {
  if (m_nodeCount != 0 && order(Value(Rightmost()), value))
    return {Link(false, Rightmost(), value), true};
  auto const [y, j] = hylbas_detail::FindLeaf(m_header, m_offsets.m_valueOffset, value, order);
  if (j != nullptr && !order(Value(j), value)) return {j, false};
  return {Link(y != j, y, value), true};
}

template <class A>
Node* HYLBasTreeGeneric<A>::InsertEqual(void const* value) {
  return InOrder([&](auto order) { return InsertEqual(value, order); });
}

template <class A>
template <class Order>
Node* HYLBasTreeGeneric<A>::InsertEqual(void const* value, Order order) {
  Node* const y = hylbas_detail::FindLeaf(m_header, m_offsets.m_valueOffset, value, order).parent;
  return InsertAsChild(nullptr, y, value, order);
}

template <class A>
Node* HYLBasTreeGeneric<A>::InsertUniqueAtPosition(Node* position, void const* value) {
  return InOrder([&](auto order) {
    if (position == Leftmost()) {
      if (m_nodeCount != 0 && order(value, Value(position))) return Link(true, position, value);
    } else if (position == m_header) {
      if (order(Value(Rightmost()), value))
        return InsertAsChild(nullptr, Rightmost(), value, order);
    } else {
      Node* const before = Predecessor(position);
      if (order(Value(before), value) && order(value, Value(position)))
        return InsertBetween(before, position, value, order);
    }
    return InsertUnique(value, order).first;
  });
}

template <class A>
Node* HYLBasTreeGeneric<A>::InsertEqualAtPosition(Node* position, void const* value) {
  return InOrder([&](auto order) {
    if (position == Leftmost()) {
      if (m_nodeCount != 0 && !order(Value(position), value)) return Link(true, position, value);
    } else if (position == m_header) {
      if (!order(value, Value(Rightmost())))
        return InsertAsChild(nullptr, Rightmost(), value, order);
    } else {
      Node* const before = Predecessor(position);
      if (!order(value, Value(before)) && !order(Value(position), value))
        return InsertBetween(before, position, value, order);
    }
    return InsertEqual(value, order);
  });
}

// Of two neighbours in order, exactly one has no child on the side of the other.
template <class A>
template <class Order>
Node* HYLBasTreeGeneric<A>::InsertBetween(Node* before, Node* position, void const* value,
                                          Order order) {
  return before->m_right == nullptr ? InsertAsChild(nullptr, before, value, order)
                                    : InsertAsChild(position, position, value, order);
}

template <class A>
Node* HYLBasTreeGeneric<A>::TreeNodeInsert(Node* x, Node* y, void const* value) {
  return InsertAsChild(x, y, value, CalledOrder{m_compare, m_context});
}

template <class A>
template <class Order>
Node* HYLBasTreeGeneric<A>::InsertAsChild(Node* x, Node* y, void const* value, Order order) {
  return Link(y == m_header || x != nullptr || order(value, Value(y)), y, value);
}

template <class A>
Node* HYLBasTreeGeneric<A>::Link(bool isLeft, Node* y, void const* value) {
  Node* const node = CreateNode(value);
  ChildField(y, isLeft) = node; // the header's left is the leftmost node
  if (y == m_header) {
    Root() = node;
    Rightmost() = node;
  } else if (y == Leftmost() && isLeft) {
    Leftmost() = node;
  } else if (y == Rightmost() && !isLeft) {
    Rightmost() = node;
  }
  node->m_parent = y;
  node->m_left = nullptr;
  node->m_right = nullptr;
  HYLBasTreeRebalance(node, Root());
  ++m_nodeCount;
  return node;
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
    ReleaseNodes(Root());
  } else {
    TreeNodeErase(Root());
  }
  TreeInitialize();
  m_nodeCount = 0;
}

// What TreeNodeErase does where values need no destruction: nobody can tell the order, so that the
// next nodes can be on their way from memory while one is released.
template <class A>
void HYLBasTreeGeneric<A>::ReleaseNodes(Node* root) {
  if constexpr (NodeMemory<A>::releasesNodes) {
    PendingNodes pending;
    pending.Add(root);
    while (Node* const x = pending.Next()) {
      if (pending.HasRoom()) {
        pending.Add(x->m_left);
        pending.Add(x->m_right);
      } else {
        ReleaseNodes(x->m_left);
        ReleaseNodes(x->m_right);
      }
      DeallocateNode(x);
    }
  }
}

// A destroyed node's left subtree takes its place. So everything that is still to be destroyed
// hangs together, and what comes after a subtree is always the parent of its root.
template <class A>
void HYLBasTreeGeneric<A>::TreeNodeErase(Node* x) {
  if (x == nullptr) return;
  x->m_parent = nullptr;
  while (x != nullptr) {
    x = Maximum(x);
    Node* next = x->m_left;
    if (next != nullptr) {
      next->m_parent = x->m_parent;
    } else {
      next = x->m_parent;
      if (next != nullptr) next->m_right = nullptr;
    }
    DestroyNode(x);
    x = next;
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
  Node* const node = AllocateNode();
  node->m_valueOffset = m_offsets.m_valueOffset;
  hylbas_detail::CopyOne(m_replicator, value, Value(node));
  return node;
}

template <class A>
Node* HYLBasTreeGeneric<A>::CloneNode(Node* x) {
  Node* const node = CreateNode(Value(x));
  node->m_color = x->m_color;
  node->m_valueOffset = x->m_valueOffset;
  node->m_left = nullptr;
  node->m_right = nullptr;
  return node;
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
    CopyChildren(x, top);
  } catch (...) {
    TreeNodeErase(top);
    throw;
  }
  return top;
}

template <class A>
Node* HYLBasTreeGeneric<A>::CloneBelow(Node* x, Node* parent) {
  Node* const clone = CloneNode(x);
  clone->m_parent = parent;
  return clone;
}

// Of the nodes on the way right, the left subtrees are still to be copied, the last one first. More
// of them than balanced trees have are left to another call.
template <class A>
void HYLBasTreeGeneric<A>::CopyChildren(Node* x, Node* copy) {
  struct Pending {
    Node* left;
    Node* copy;
  };
  constexpr int room = 64;
  Pending pending[room];
  for (int count = 0;;) {
    if (count == room - 1 && x->m_right != nullptr) {
      copy->m_right = CloneBelow(x->m_right, copy);
      CopyChildren(x->m_right, copy->m_right);
    }
    __builtin_prefetch(x->m_left);
    pending[count] = {x->m_left, copy};
    count += x->m_left != nullptr;
    if (x->m_right != nullptr && copy->m_right == nullptr) {
      copy->m_right = CloneBelow(x->m_right, copy);
      x = x->m_right;
      copy = copy->m_right;
    } else if (count != 0) {
      Pending const next = pending[--count];
      next.copy->m_left = CloneBelow(next.left, next.copy);
      x = next.left;
      copy = next.copy->m_left;
    } else {
      return;
    }
  }
}

template class HYLBasTreeGeneric<HYLBasMemTruePool>;
template class HYLBasTreeGeneric<HYLBasNodeAllocator>;
template class HYLBasTreeGeneric<HYLBasNodeTrackingAllocator>;
