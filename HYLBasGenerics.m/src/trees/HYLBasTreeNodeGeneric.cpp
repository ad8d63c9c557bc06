// Every step exists in two mirror images. It is written once: for a side that is an index, or
// for a link L that stands for left and a link R that stands for right; then the mirror image is
// the same function with them exchanged.
#include "HYLBasTreeNodeGeneric.h"

#include <utility>

// Holds the iterator's inline members for callers that do not inline them.
#include "HYLBasTreeIteratorGeneric.h"
#include "TreeLinks.h"

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

bool IsRightChild(Node const* x) { return x->m_parent->m_left != x; }

// The field that holds the node `x`, chosen without a jump: on which side a node is cannot be
// predicted. The root's parent is not looked at, since a caller's tree may have none there; the
// root's own fields stand in for it.
Node*& Holder(Node* x, Node*& root) {
  Node* const parent = hylbas_detail::Choose(x == root, x, x->m_parent);
  Node** const field = &hylbas_detail::Child(parent, parent->m_left != x);
  return *(x == root ? &root : field);
}

// Sets the parent of `x`, if there is a node, without a jump.
void SetParent(Node* x, Node* parent) {
  Node* nobodys;
  *(x != nullptr ? &x->m_parent : &nobodys) = parent;
}

// Repairs red `x` below red `p` below `g`, whose other child is not red: the middle one in order of
// the three becomes the parent of the other two. This is the rotation around `g`, after that around
// `p` where `x` is the inner child, in one: no jump tells the four shapes apart, since none could
// be predicted.
void Restructure(Node* x, Node* p, Node* g, Node*& root) {
  using hylbas_detail::Child;
  bool const side = IsRightChild(p);
  bool const isInner = IsRightChild(x) != side;
  Node* const middle = hylbas_detail::Choose(isInner, x, p);
  Node* const outer = hylbas_detail::Choose(isInner, p, x);
  Node* const nextToOuter = Child(x, isInner == side);
  Node* const nextToG = Child(middle, !side);
  Holder(g, root) = middle;
  middle->m_parent = g->m_parent;
  Child(outer, !side) = nextToOuter;
  SetParent(nextToOuter, outer);
  Child(g, side) = nextToG;
  SetParent(nextToG, g);
  Child(middle, side) = outer;
  outer->m_parent = middle;
  Child(middle, !side) = g;
  g->m_parent = middle;
  middle->m_color = e_black;
  g->m_color = e_red;
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

// The paths from the root through `place`, the `L` child of its parent, pass one black node less
// than all others. Makes up for it by recolouring and rotating around the parent, and returns true.
// Where no node nearby is red there is none to turn black: then takes a black node from the other
// side too, so that all paths through the parent are one short, moves `place` to the parent, and
// returns false.
template <Link L, Link R>
bool LengthenPaths(Place& place, Node*& root) {
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
    done = place.x == place.parent->m_left ? LengthenPaths<left, right>(place, root)
                                           : LengthenPaths<right, left>(place, root);
  if (place.x != nullptr) place.x->m_color = e_black;
}

} // namespace

void HYLBasTreeRotateLeft(Node* x, Node*& root) { RotateLeft<left, right>(x, root); }

void HYLBasTreeRotateRight(Node* x, Node*& root) { RotateLeft<right, left>(x, root); }

void HYLBasTreeRebalance(Node* x, Node*& root) {
  x->m_color = e_red;
  while (x != root && x->m_parent->m_color == e_red) {
    Node* const p = x->m_parent;
    Node* const g = p->m_parent;
    Node* const u = hylbas_detail::Child(g, !IsRightChild(p));
    if (!IsRed(u)) {
      Restructure(x, p, g, root);
      break;
    }
    p->m_color = e_black;
    u->m_color = e_black;
    g->m_color = e_red;
    x = g;
  }
  root->m_color = e_black;
}

Node* HYLBasTreeRebalanceForErase(Node* z, Node*& root, Node*& leftmost, Node*& rightmost) {
  bool const hasTwoChildren = z->m_left != nullptr && z->m_right != nullptr;
  Place const vacated =
      hasTwoChildren ? ReplaceBySuccessor(z, root) : Unlink(z, root, leftmost, rightmost);
  if (z->m_color == e_black) RestoreBlackCount(vacated, root);
  return z;
}
