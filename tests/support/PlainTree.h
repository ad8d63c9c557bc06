/// \file
/// A model of the type-erased trees: the steps of each operation carried out one by one on numbered
/// nodes, with every call that they make. Nodes have the number of their block; sides are 0 and 1.
#pragma once

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "HYLBasTreeNodeGeneric.h"
#include "RecordingMemory.h"

namespace model {

using recording::Event;
using recording::Place;

struct Value {
  int key, mapped;
  bool operator==(Value const&) const = default;
};

struct PlainNode {
  int parent = 0, child[2] = {0, 0};
  bool isRed = true;
  Value value = {};
};

/// What all trees of one test share. `probes` are the values in the test's own memory, block 0.
struct TreeMemory {
  std::vector<Value> probes;
  int nextNumber = 1;
  std::vector<Event> events;
  int valueOffset = 0, nodeSize = 0;
};

/// Nothing is number 0, the header a number like others. The header's child 0 is the root.
class PlainTree {
public:
  explicit PlainTree(TreeMemory& memory) : m_memory(&memory) { header = Allocate(); }

  std::map<int, PlainNode> nodes;
  int header;

  unsigned int Size() const { return static_cast<unsigned int>(nodes.size() - 1); }
  int Root() const { return nodes.at(header).child[0]; }
  int Extreme(int x, int side) const {
    while (nodes.at(x).child[side])
      x = nodes.at(x).child[side];
    return x;
  }
  int First() const { return Root() ? Extreme(Root(), 0) : header; }
  int Last() const { return Root() ? Extreme(Root(), 1) : header; }
  /// The neighbour in order; the header comes after the last.
  int Neighbour(int x, int side) const {
    if (x == header) return Last();
    if (int const child = nodes.at(x).child[side]) return Extreme(child, !side);
    while (x != header && SideOf(x) == side && nodes.at(x).parent != header)
      x = nodes.at(x).parent;
    return nodes.at(x).parent;
  }

  void LinkLeaf(int x, int parent, int side) {
    SetChild(parent, parent == header ? 0 : side, x);
    nodes[x].isRed = true;
    while (IsRed(nodes[x].parent)) {
      int p = nodes[x].parent;
      int const g = nodes[p].parent, s = SideOf(p), uncle = nodes[g].child[!s];
      if (IsRed(uncle)) {
        nodes[p].isRed = nodes[uncle].isRed = false;
        nodes[g].isRed = true;
        x = g;
        continue;
      }
      if (SideOf(x) != s) {
        Rotate(p, s);
        std::swap(x, p);
      }
      nodes[p].isRed = false;
      nodes[g].isRed = true;
      Rotate(g, !s);
    }
    nodes[Root()].isRed = false;
  }

  void Unlink(int z) {
    if (nodes[z].child[0] && nodes[z].child[1]) ExchangePlaces(z, Extreme(nodes[z].child[1], 0));
    int x = nodes[z].child[nodes[z].child[0] ? 0 : 1], p = nodes[z].parent, s = SideOf(z);
    bool const wasRed = nodes[z].isRed;
    SetChild(p, s, x);
    nodes.erase(z);
    if (wasRed) return;
    for (; p != header && !IsRed(x); x = p, p = nodes[x].parent, s = SideOf(x)) {
      int w = nodes[p].child[!s];
      if (IsRed(w)) {
        nodes[w].isRed = false;
        nodes[p].isRed = true;
        Rotate(p, s);
        w = nodes[p].child[!s];
      }
      if (!IsRed(nodes[w].child[0]) && !IsRed(nodes[w].child[1])) {
        nodes[w].isRed = true;
        continue;
      }
      if (!IsRed(nodes[w].child[!s])) {
        nodes[nodes[w].child[s]].isRed = false;
        nodes[w].isRed = true;
        Rotate(w, !s);
        w = nodes[p].child[!s];
      }
      nodes[w].isRed = std::exchange(nodes[p].isRed, false);
      nodes[nodes[w].child[!s]].isRed = false;
      Rotate(p, s);
      return;
    }
    if (x) nodes[x].isRed = false;
  }

  int LowerBound(Place key) { return Bound(key, false); }
  int UpperBound(Place key) { return Bound(key, true); }
  int Find(Place key) {
    int const y = LowerBound(key);
    return y == header || Before(key, At(y)) ? header : y;
  }

  std::pair<int, bool> InsertUnique(Place value) {
    auto const [y, before] = Descend(value);
    int j = y;
    if (before) {
      if (j == First()) return {NodeInsert(0, y, value), true};
      j = Neighbour(j, 0);
    }
    if (Before(At(j), value)) return {NodeInsert(0, y, value), true};
    return {j, false};
  }
  int InsertEqual(Place value) {
    int const y = Descend(value).first;
    return NodeInsert(0, y, value);
  }
  int InsertUniqueAt(int position, Place value) { return InsertAt(position, value, true); }
  int InsertEqualAt(int position, Place value) { return InsertAt(position, value, false); }

  void Erase(int x) {
    Unlink(x);
    Release(x);
  }
  void Erase(int first, int last) {
    if (first == First() && last == header) return Clear();
    while (first != last)
      Erase(std::exchange(first, Neighbour(first, 1)));
  }
  void Clear() {
    for (int x = Last(); x != header;) {
      int const next = x == First() ? header : Neighbour(x, 0);
      Release(x);
      x = next;
    }
    PlainNode const empty;
    nodes = {{header, empty}};
  }
  /// The whole tree; it must not be used afterwards.
  void Destroy() {
    Clear();
    Log({'F', {header, 0}, {-1, 0}, 0});
  }

  PlainTree Copy() const {
    PlainTree copy(*m_memory);
    if (Root()) CopyBelow(Root(), copy, copy.header, 0);
    return copy;
  }
  /// The comparisons of the self-check of a tree that is whole.
  void Verify() {
    for (int x = Root() ? First() : header; x != header; x = Neighbour(x, 1)) {
      if (int const l = nodes[x].child[0]) Before(At(x), At(l));
      if (int const r = nodes[x].child[1]) Before(At(r), At(x));
    }
  }
  bool IsBefore(PlainTree const& other) {
    int a = First(), b = other.First();
    for (; a != header; a = Neighbour(a, 1), b = other.Neighbour(b, 1)) {
      if (b == other.header) return false;
      if (Less(At(a), nodes[a].value, At(b), other.nodes.at(b).value)) return true;
      if (Less(At(b), other.nodes.at(b).value, At(a), nodes[a].value)) return false;
    }
    return b != other.header;
  }

private:
  TreeMemory* m_memory;

  void Log(Event const& event) { m_memory->events.push_back(event); }
  Place At(int x) const { return {x, m_memory->valueOffset}; }

  int SideOf(int x) const { return nodes.at(nodes.at(x).parent).child[1] == x; }
  bool IsRed(int x) const { return x && x != header && nodes.at(x).isRed; }
  void SetChild(int p, int side, int x) {
    nodes[p].child[side] = x;
    if (x) nodes[x].parent = p;
  }
  void Rotate(int x, int side) {
    int const y = nodes[x].child[!side], p = nodes[x].parent, s = SideOf(x);
    SetChild(x, !side, nodes[y].child[side]);
    SetChild(p, s, y);
    SetChild(y, side, x);
  }
  void ExchangePlaces(int z, int y) {
    std::swap(nodes[z], nodes[y]);
    std::swap(nodes[z].value, nodes[y].value);
    for (auto& [x, node] : nodes)
      for (int* const link : {&node.parent, &node.child[0], &node.child[1]})
        if (*link == z || *link == y) *link = *link == z ? y : z;
  }

  bool Less(Place a, Value const& x, Place b, Value const& y) {
    Log({'<', a, b, 0});
    return x.key < y.key;
  }
  Value const& ValueAt(Place p) const {
    return p.block == 0 ? m_memory->probes.at(static_cast<std::size_t>(p.offset) / sizeof(Value))
                        : nodes.at(p.block).value;
  }
  bool Before(Place a, Place b) { return Less(a, ValueAt(a), b, ValueAt(b)); }

  int Allocate() {
    int const x = m_memory->nextNumber++;
    Log({'A', {-1, 0}, {-1, 0}, static_cast<std::size_t>(m_memory->nodeSize)});
    nodes[x] = PlainNode();
    return x;
  }
  int Create(Place from, Value const& value) {
    int const x = Allocate();
    Log({'C', from, At(x), 1});
    nodes[x].value = value;
    return x;
  }
  void Release(int x) {
    Log({'D', At(x), {-1, 0}, 1});
    Log({'F', {x, 0}, {-1, 0}, 0});
  }

  int Bound(Place key, bool isUpper) {
    int y = header;
    for (int x = Root(); x;) {
      bool const goesRight = isUpper ? !Before(key, At(x)) : Before(At(x), key);
      if (!goesRight) y = x;
      x = nodes[x].child[goesRight];
    }
    return y;
  }
  int InsertAt(int position, Place value, bool isUnique) {
    auto const inOrder = [&](Place a, Place b) { return isUnique ? Before(a, b) : !Before(b, a); };
    if (position == First()) {
      if (Size() && inOrder(value, At(position))) return NodeInsert(position, position, value);
    } else if (position == header) {
      if (inOrder(At(Last()), value)) return NodeInsert(0, Last(), value);
    } else if (int const before = Neighbour(position, 0);
               inOrder(At(before), value) && inOrder(value, At(position))) {
      return nodes[before].child[1] ? NodeInsert(position, position, value)
                                    : NodeInsert(0, before, value);
    }
    return isUnique ? InsertUnique(value).first : InsertEqual(value);
  }
  std::pair<int, bool> Descend(Place value) {
    int y = header;
    bool before = true;
    for (int x = Root(); x; x = nodes[x].child[!before]) {
      y = x;
      before = Before(value, At(x));
    }
    return {y, before};
  }
  int NodeInsert(int hint, int y, Place value) {
    bool const isLeft = y == header || hint || Before(value, At(y));
    Value const copied = ValueAt(value);
    int const x = Create(value, copied);
    LinkLeaf(x, y, !isLeft);
    return x;
  }
  void CopyBelow(int x, PlainTree& copy, int parent, int side) const {
    int const top = copy.Create(At(x), nodes.at(x).value);
    copy.SetChild(parent, side, top);
    copy.nodes[top].isRed = nodes.at(x).isRed;
    for (int const s : {1, 0})
      if (nodes.at(x).child[s]) CopyBelow(nodes.at(x).child[s], copy, top, s);
  }
};

/// Where a real tree's links differ from its model's; empty when nowhere. `number` gives a node's
/// number, 0 for null.
template <class Number>
std::string Difference(PlainTree const& model, HYLBasTreeNodeGeneric* header, Number number) {
  using Node = HYLBasTreeNodeGeneric;
  auto const links = [&](Node* x) {
    return std::array{number(x->m_parent), number(x->m_left), number(x->m_right),
                      int{x->m_color == e_red}};
  };
  if (number(header) != model.header ||
      links(header) != std::array{model.Root(), model.First(), model.Last(), 1})
    return "header";
  unsigned int found = 0;
  for (std::vector<Node*> open{header->m_parent}; !open.empty();) {
    Node* const x = open.back();
    open.pop_back();
    if (x == nullptr) continue;
    auto const place = model.nodes.find(number(x));
    if (place == model.nodes.end()) return "unknown node " + std::to_string(number(x));
    auto const& [parent, child, isRed, value] = place->second;
    if (links(x) != std::array{parent, child[0], child[1], int{isRed}})
      return "node " + std::to_string(number(x));
    open.insert(open.end(), {x->m_left, x->m_right});
    ++found;
  }
  return found == model.Size() ? "" : "number of nodes";
}

} // namespace model
