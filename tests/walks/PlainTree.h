/// \file
/// A model of the type-erased trees, with their interface: the steps of each operation one by one,
/// with every call that they make. Values are handed over as nodes.
#pragma once

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "HYLBasNodeOffsets.h"
#include "HYLBasTreeNodeGeneric.h"
#include "support/RecordingMemory.h"

namespace model {

struct Value {
  int key, mapped;
  bool operator==(Value const&) const = default;
};
inline HYLBasNodeOffsets const offsets(sizeof(HYLBasTreeNodeGeneric),
                                       sizeof(HYLBasTreeNodeGeneric) + sizeof(Value));

/// A node, or the caller's value. Left and right are the sides 0 and 1. The header is red; its
/// parent is the root, its children are the first and the last node, all or none of them.
struct PlainNode {
  recording::Place place = {0, 0}; ///< of the value
  Value value = {0, 0};
  bool isRed = true, isHeader = false;
  PlainNode *parent = nullptr, *child[2] = {nullptr, nullptr};
  HYLBasTreeNodeGeneric* real = nullptr; ///< where it was first seen
};

/// What is nowhere is this black node.
inline PlainNode* Nil() {
  static PlainNode nil{.place = {-1, 0}, .isRed = false};
  return &nil;
}
inline PlainNode* Extreme(PlainNode* x, int side) {
  while (x->child[side] != Nil())
    x = x->child[side];
  return x;
}
inline int SideOf(PlainNode* x) { return x->parent->child[1] == x; }
/// The neighbour in order. The header comes after the last.
inline PlainNode* Neighbour(PlainNode* x, int side) {
  if (x->isHeader) return x->child[!side];
  if (x->child[side] != Nil()) return Extreme(x->child[side], !side);
  while (SideOf(x) == side && !x->parent->isHeader)
    x = x->parent;
  return x->parent;
}

inline void SetChild(PlainNode* parent, int side, PlainNode* x) {
  (parent->isHeader ? parent->parent : parent->child[side]) = x;
  x->parent = parent;
}
inline void Rotate(PlainNode* x, int side) {
  PlainNode* const y = x->child[!side];
  SetChild(x->parent, SideOf(x), y);
  SetChild(x, !side, y->child[side]);
  SetChild(y, side, x);
}
inline void HYLBasTreeRotateLeft(PlainNode* x, PlainNode*&) { Rotate(x, 0); }
inline void HYLBasTreeRotateRight(PlainNode* x, PlainNode*&) { Rotate(x, 1); }

/// What all trees of one walk share.
struct TreeMemory {
  int nextBlock = 1;
  std::vector<recording::Event> events;
  std::deque<PlainNode> nodes; ///< released ones too
};

class PlainTree {
  using Node = PlainNode;

public:
  /// With the kinds of its calls that can be seen, in a rising order (1) or a falling one (-1).
  PlainTree(TreeMemory& memory, std::string seenCalls, int order)
      : seen(std::move(seenCalls)), m_memory(&memory), m_order(order), m_header(AllocateNode()) {
    m_header->isHeader = true;
    SetRoot(Nil());
  }
  PlainTree(PlainTree const& other) : PlainTree(*other.m_memory, other.seen, other.m_order) {
    if (!other.Empty()) SetRoot(TreeCopy(other.Root(), m_header));
  }
  ~PlainTree() {
    Clear();
    Log('F', {m_header->place.block, 0});
  }
  PlainTree& operator=(PlainTree const& other) {
    if (&other != this) PlainTree(other).Swap(this);
    return *this;
  }
  void Swap(PlainTree* other) {
    seen.swap(other->seen);
    std::swap(m_order, other->m_order);
    std::swap(m_header, other->m_header);
  }
  std::string seen;

  static Node*& Left(Node* x) { return x->child[0]; }
  static Node*& Parent(Node* x) { return x->parent; }
  static bool& Color(Node* x) { return x->isRed; }
  Node*& Root() const { return m_header->parent; }
  Node*& Leftmost() const { return m_header->child[0]; }
  Node*& Rightmost() const { return m_header->child[1]; }
  Node* Begin() const { return Leftmost(); }
  Node* End() const { return m_header; }
  bool Empty() const { return Root() == Nil(); }
  /// In order, the header too.
  std::vector<Node*> Nodes() const {
    std::vector<Node*> nodes{Begin()};
    while (nodes.back() != End())
      nodes.push_back(Neighbour(nodes.back(), 1));
    return nodes;
  }

  Node* LowerBound(Node const* key) { return Descend(key, false).bound; }
  Node* UpperBound(Node const* key) { return Descend(key, true).bound; }
  Node* Find(Node const* key) {
    Node* const y = LowerBound(key);
    return y == End() || Before(key, y) ? End() : y;
  }

  std::pair<Node*, bool> InsertUnique(Node const* value) {
    auto const [y, after] = Descend(value, true);
    if (after != Begin()) {
      Node* const before = Neighbour(after, 0);
      if (!Before(before, value)) return {before, false};
    }
    return {TreeNodeInsert(nullptr, y, value), true};
  }
  Node* InsertEqual(Node const* value) {
    return TreeNodeInsert(nullptr, Descend(value, true).parent, value);
  }
  Node* InsertUniqueAtPosition(Node* position, Node const* value) {
    auto const inOrder = [&](Node const* a, Node const* b) { return Before(a, b); };
    return Fits(position, value, inOrder) ? Insert(position, value) : InsertUnique(value).first;
  }
  Node* InsertEqualAtPosition(Node* position, Node const* value) {
    auto const inOrder = [&](Node const* a, Node const* b) { return !Before(b, a); };
    return Fits(position, value, inOrder) ? Insert(position, value) : InsertEqual(value);
  }
  Node* TreeNodeInsert(Node* hint, Node* y, Node const* value) {
    bool const isLeft = y == End() || hint != nullptr || Before(value, y);
    Node* const x = CloneNode(value);
    SetChild(y, !isLeft, x);
    RepairAbove(x);
    SetRoot(Root());
    return x;
  }

  void Erase(Node* x) {
    Unlink(x);
    DestroyNode(x);
    SetRoot(Root());
  }
  void Erase(Node* first, Node* last) {
    if (first == Begin() && last == End()) return Clear();
    while (first != last)
      Erase(std::exchange(first, Neighbour(first, 1)));
  }
  void Clear() {
    TreeNodeErase(Root());
    SetRoot(Nil());
  }

  Node* CloneNode(Node const* x) {
    Node* const clone = AllocateNode();
    Log('C', x->place, clone->place, 1);
    clone->value = x->value;
    clone->isRed = x->isRed;
    return clone;
  }
  Node* TreeCopy(Node const* x, Node* parent) {
    Node* const top = CloneNode(x);
    top->parent = parent;
    for (int const side : {1, 0})
      if (x->child[side] != Nil()) top->child[side] = TreeCopy(x->child[side], top);
    return top;
  }
  void DestroyNode(Node const* x) {
    Log('D', x->place, {-1, 0}, 1);
    Log('F', {x->place.block, 0});
  }
  void TreeNodeErase(Node const* x) {
    if (x == Nil()) return;
    TreeNodeErase(x->child[1]);
    DestroyNode(x);
    TreeNodeErase(x->child[0]);
  }

  bool LexicographicalCompare(Node* a, Node* lastA, Node* b, Node* lastB) {
    for (; a != lastA; a = Neighbour(a, 1), b = Neighbour(b, 1)) {
      if (b == lastB) return false;
      if (Before(a, b)) return true;
      if (Before(b, a)) return false;
    }
    return b != lastB;
  }
  bool operator<(PlainTree const& other) {
    return LexicographicalCompare(Begin(), End(), other.Begin(), other.End());
  }
  bool operator>(PlainTree& other) { return other < *this; }
  bool operator<=(PlainTree& other) { return !(other < *this); }
  bool operator>=(PlainTree& other) { return !(*this < other); }

  bool VerifyTree() {
    if (Empty() || Leftmost() == End())
      return Empty() && Leftmost() == End() && Rightmost() == End();
    for (Node* x = Leftmost(); x != End(); x = Neighbour(x, 1)) {
      auto const [l, r] = x->child;
      if (x->isRed && (l->isRed || r->isRed)) return false;
      if (l != Nil() && Before(x, l)) return false;
      if (r != Nil() && Before(r, x)) return false;
      bool const isLeaf = l == Nil() && r == Nil();
      if (isLeaf && BlackCount(x, Root()) != BlackCount(Leftmost(), Root())) return false;
    }
    return Leftmost() == Extreme(Root(), 0) && Rightmost() == Extreme(Root(), 1);
  }
  unsigned int BlackCount(Node const* x, Node const* root) const {
    return x == Nil() ? 0 : !x->isRed + (x == root ? 0 : BlackCount(x->parent, root));
  }

private:
  void Log(char kind, recording::Place a, recording::Place b = {-1, 0}, int n = 0) {
    if (seen.find(kind) != seen.npos)
      m_memory->events.push_back({kind, a, b, static_cast<std::size_t>(n)});
  }
  bool Before(Node const* a, Node const* b) {
    Log('<', a->place, b->place);
    return m_order > 0 ? a->value.key < b->value.key : b->value.key < a->value.key;
  }
  Node* AllocateNode() {
    Log('A', {-1, 0}, {-1, 0}, offsets.m_nodeSize);
    recording::Place const place = {m_memory->nextBlock++, offsets.m_valueOffset};
    return &m_memory->nodes.emplace_back(Node{.place = place, .child = {Nil(), Nil()}});
  }
  void SetRoot(Node* root) {
    m_header->parent = root;
    for (int const side : {0, 1})
      m_header->child[side] = root == Nil() ? m_header : Extreme(root, side);
  }

  /// The last node on the way down to a key, and the one that comes after the key there: the first
  /// that is not before the key or (`isUpper`) that is after it.
  struct Descent {
    Node *parent, *bound;
  };
  Descent Descend(Node const* key, bool isUpper) {
    Descent descent = {End(), End()};
    for (Node* x = Root(); x != Nil();) {
      bool const goesLeft = isUpper ? Before(key, x) : !Before(x, key);
      descent = {x, goesLeft ? x : descent.bound};
      x = x->child[!goesLeft];
    }
    return descent;
  }
  template <class InOrder>
  bool Fits(Node* position, Node const* value, InOrder inOrder) {
    return !Empty() && (position == Begin() || inOrder(Neighbour(position, 0), value)) &&
           (position == End() || inOrder(value, position));
  }
  Node* Insert(Node* position, Node const* value) {
    Node* const before = position == Begin() ? End() : Neighbour(position, 0);
    return before->child[1] == Nil() ? TreeNodeInsert(nullptr, before, value)
                                     : TreeNodeInsert(position, position, value);
  }

  void RepairAbove(Node* x) {
    x->isRed = true;
    while (x != Root() && x->parent->isRed) {
      Node *p = x->parent, *const g = p->parent;
      int const s = SideOf(p);
      Node* const uncle = g->child[!s];
      g->isRed = true;
      if (uncle->isRed) {
        p->isRed = uncle->isRed = false;
        x = g;
        continue;
      }
      if (SideOf(x) != s) {
        Rotate(p, s);
        std::swap(x, p);
      }
      p->isRed = false;
      Rotate(g, !s);
    }
    Root()->isRed = false;
  }

  void Unlink(Node* z) {
    Node* const y = Left(z) != Nil() && z->child[1] != Nil() ? Neighbour(z, 1) : z;
    Node* const x = y->child[Left(y) == Nil()];
    bool const wasRed = y->isRed;
    SetChild(y->parent, SideOf(y), x);
    if (y != z) {
      SetChild(z->parent, SideOf(z), y);
      SetChild(y, 0, z->child[0]);
      SetChild(y, 1, z->child[1]);
      y->isRed = z->isRed;
    }
    if (!wasRed) Lengthen(x);
  }
  /// All ways through `x` pass one black node less than the others.
  void Lengthen(Node* x) {
    while (x != Root() && !x->isRed) {
      Node* const p = x->parent;
      int const s = SideOf(x);
      if (p->child[!s]->isRed) {
        std::swap(p->isRed, p->child[!s]->isRed);
        Rotate(p, s);
      }
      Node* w = p->child[!s];
      if (!w->child[0]->isRed && !w->child[1]->isRed) {
        w->isRed = true;
        x = p;
        continue;
      }
      if (!w->child[!s]->isRed) {
        std::swap(w->isRed, w->child[s]->isRed);
        Rotate(w, !s);
        w = p->child[!s];
      }
      w->isRed = std::exchange(p->isRed, false);
      w->child[!s]->isRed = false;
      Rotate(p, s);
      return;
    }
    x->isRed = false;
  }

  TreeMemory* m_memory;
  int m_order;
  Node* m_header;
};

} // namespace model
