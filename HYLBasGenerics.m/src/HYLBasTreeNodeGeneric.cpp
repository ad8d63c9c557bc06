// Every step exists in two mirror images. It is written once, for a link L that stands for left
// and a link R that stands for right; the mirror image is the same function with them exchanged.
#include "HYLBasTreeNodeGeneric.h"

#include <utility>

// Holds the iterator's inline members for callers that do not inline them.
#include "HYLBasTreeIteratorGeneric.h"

namespace {

using Node = HYLBasTreeNodeGeneric;
using Link = Node* Node::*;

constexpr Link left = &Node::m_left;
constexpr Link right = &Node::m_right;

bool IsRed(Node const* x) { return x != nullptr && x->m_color == e_red; }

// Puts `y`, or nothing, into the place below its parent that holds `x`.
void Replace(Node* x, Node* y, Node*& root) {
  if (x == root) {
    root = y;
  } else if (x == x->m_parent->m_left) {
    x->m_parent->m_left = y;
  } else {
    x->m_parent->m_right = y;
  }
}

template <Link L, Link R>
void RotateLeft(Node* x, Node*& root) {
  Node* const y = x->*R;
  x->*R = y->*L;
  if (y->*L != nullptr) (y->*L)->m_parent = x;
  y->m_parent = x->m_parent;
  Replace(x, y, root);
  y->*L = x;
  x->m_parent = y;
}

// Repairs red `x` below a red parent that is the `L` child of its parent; returns the node that
// may violate the rules now. No node does when the parent of the returned one is black.
template <Link L, Link R>
Node* RepairRedPair(Node* x, Node*& root) {
  Node* const p = x->m_parent;
  Node* const g = p->m_parent;
  Node* const u = g->*R;
  if (IsRed(u)) {
    p->m_color = e_black;
    u->m_color = e_black;
    g->m_color = e_red;
    return g;
  }
  if (x == p->*R) {
    x = p;
    RotateLeft<L, R>(x, root);
  }
  x->m_parent->m_color = e_black;
  g->m_color = e_red;
  RotateLeft<R, L>(g, root);
  return x;
}

// A place of the tree, and its parent: the place may hold no node.
struct Place {
  Node* x;
  Node* parent;
};

// Moves the successor of `z`, which has two children, into the place of `z`; returns the place that
// the successor left.
Place ReplaceBySuccessor(Node* z, Node*& root) {
  Node* const y = Node::Minimum(z->m_right);
  Place vacated{y->m_right, y};
  z->m_left->m_parent = y;
  y->m_left = z->m_left;
  if (y != z->m_right) {
    vacated.parent = y->m_parent;
    if (vacated.x != nullptr) vacated.x->m_parent = y->m_parent;
    y->m_parent->m_left = vacated.x;
    y->m_right = z->m_right;
    z->m_right->m_parent = y;
  }
  Replace(z, y, root);
  y->m_parent = z->m_parent;
  std::swap(y->m_color, z->m_color);
  return vacated;
}

// Takes `z`, which has at most one child, out; returns the place that it left.
Place Unlink(Node* z, Node*& root, Node*& leftmost, Node*& rightmost) {
  Node* const x = z->m_left == nullptr ? z->m_right : z->m_left;
  if (x != nullptr) x->m_parent = z->m_parent;
  Replace(z, x, root);
  if (leftmost == z) leftmost = z->m_right == nullptr ? z->m_parent : Node::Minimum(x);
  if (rightmost == z) rightmost = z->m_left == nullptr ? z->m_parent : Node::Maximum(x);
  return {x, z->m_parent};
}

// Adds the black node that the paths through `place`, the `L` child, lack. Returns false where
// the paths through its parent lack it now, and moves `place` there.
template <Link L, Link R>
bool AddBlack(Place& place, Node*& root) {
  Node* const parent = place.parent;
  Node* w = parent->*R;
  if (w->m_color == e_red) {
    w->m_color = e_black;
    parent->m_color = e_red;
    RotateLeft<L, R>(parent, root);
    w = parent->*R;
  }
  if (!IsRed(w->*L) && !IsRed(w->*R)) {
    w->m_color = e_red;
    place = {parent, parent->m_parent};
    return false;
  }
  if (!IsRed(w->*R)) {
    if (w->*L != nullptr) (w->*L)->m_color = e_black;
    w->m_color = e_red;
    RotateLeft<R, L>(w, root);
    w = parent->*R;
  }
  w->m_color = parent->m_color;
  parent->m_color = e_black;
  if (w->*R != nullptr) (w->*R)->m_color = e_black;
  RotateLeft<L, R>(parent, root);
  return true;
}

void RestoreBlackCount(Place place, Node*& root) {
  bool done = false;
  while (!done && place.x != root && !IsRed(place.x))
    done = place.x == place.parent->m_left ? AddBlack<left, right>(place, root)
                                           : AddBlack<right, left>(place, root);
  if (place.x != nullptr) place.x->m_color = e_black;
}

} // namespace

void HYLBasTreeRotateLeft(Node* x, Node*& root) { RotateLeft<left, right>(x, root); }

void HYLBasTreeRotateRight(Node* x, Node*& root) { RotateLeft<right, left>(x, root); }

void HYLBasTreeRebalance(Node* x, Node*& root) {
  x->m_color = e_red;
  while (x != root && x->m_parent->m_color == e_red)
    x = x->m_parent == x->m_parent->m_parent->m_left ? RepairRedPair<left, right>(x, root)
                                                     : RepairRedPair<right, left>(x, root);
  root->m_color = e_black;
}

Node* HYLBasTreeRebalanceForErase(Node* z, Node*& root, Node*& leftmost, Node*& rightmost) {
  bool const hasTwoChildren = z->m_left != nullptr && z->m_right != nullptr;
  Place const vacated =
      hasTwoChildren ? ReplaceBySuccessor(z, root) : Unlink(z, root, leftmost, rightmost);
  if (z->m_color == e_black) RestoreBlackCount(vacated, root);
  return z;
}
