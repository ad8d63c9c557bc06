/// \file
/// A model of the type-erased trees: the steps of each operation carried out one by one on numbered
/// nodes, with every call that they make. Nodes have the number of their block; sides are 0 and 1.
#pragma once

#include <array>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "HYLBasNodeOffsets.h"
#include "HYLBasTreeNodeGeneric.h"
#include "support/RecordingMemory.h"

namespace model {

using recording::Event;
using recording::Place;

struct Value {
  int key, mapped;
  bool operator==(Value const&) const = default;
};
/// A value, and where it lies.
struct Held {
  Place place;
  Value value;
};
struct PlainNode {
  int parent = 0, child[2] = {0, 0};
  bool isRed = true;
  Value value = {};
};

inline HYLBasNodeOffsets const offsets(sizeof(HYLBasTreeNodeGeneric),
                                       sizeof(HYLBasTreeNodeGeneric) + sizeof(Value));

/// What all trees of one walk share.
struct TreeMemory {
  int nextNumber = 1;
  std::vector<Event> events;
};

/// Nothing is number 0, the header a number like others. The header's child 0 is the root.
class PlainTree {
public:
  /// With the kinds of its calls that can be seen, in a rising order (1) or a falling one (-1).
  PlainTree(TreeMemory& memory, std::string seenCalls, int order)
      : seen(std::move(seenCalls)), m_memory(&memory), m_order(order) {
    header = Allocate();
  }

  std::string seen;
  std::map<int, PlainNode> nodes;
  int header;

  unsigned int Size() const { return static_cast<unsigned int>(nodes.size() - 1); }
  int Root() const { return nodes.at(header).child[0]; }
  int First() const { return Root() ? Extreme(Root(), 0) : header; }
  int Last() const { return Root() ? Extreme(Root(), 1) : header; }
  /// The neighbour in order; the header comes after the last.
  int Neighbour(int x, int side) const {
    if (x == header) return Last();
    if (int const child = nodes.at(x).child[side]) return Extreme(child, !side);
    while (SideOf(x) == side && nodes.at(x).parent != header)
      x = nodes.at(x).parent;
    return nodes.at(x).parent;
  }
  Held At(int x) const { return {{x, offsets.m_valueOffset}, nodes.at(x).value}; }

  int Bound(Held const& key, bool isUpper) {
    int y = header;
    for (int x = Root(); x;) {
      bool const goesRight = isUpper ? !Before(key, At(x)) : Before(At(x), key);
      if (!goesRight) y = x;
      x = nodes[x].child[goesRight];
    }
    return y;
  }
  int Find(Held const& key) {
    int const y = Bound(key, false);
    return y == header || Before(key, At(y)) ? header : y;
  }

  std::pair<int, bool> InsertUnique(Held const& value) {
    auto const [y, before] = Descend(value);
    int j = y;
    if (before) {
      if (j == First()) return {Insert(false, y, value), true};
      j = Neighbour(j, 0);
    }
    if (Before(At(j), value)) return {Insert(false, y, value), true};
    return {j, false};
  }
  int InsertEqual(Held const& value) { return Insert(false, Descend(value).first, value); }
  int InsertAt(int position, Held const& value, bool isUnique) {
    auto const inOrder = [&](Held const& a, Held const& b) {
      return isUnique ? Before(a, b) : !Before(b, a);
    };
    if (position == First()) {
      if (Size() && inOrder(value, At(position))) return Insert(true, position, value);
    } else if (position == header) {
      if (inOrder(At(Last()), value)) return Insert(false, Last(), value);
    } else if (int const before = Neighbour(position, 0);
               inOrder(At(before), value) && inOrder(value, At(position))) {
      return nodes[before].child[1] ? Insert(true, position, value) : Insert(false, before, value);
    }
    return isUnique ? InsertUnique(value).first : InsertEqual(value);
  }

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
    for (int x = Last(); x != header; x = x == First() ? header : Neighbour(x, 0))
      Release(x);
    PlainNode const empty;
    nodes = {{header, empty}};
  }
  /// The whole tree; it must not be used afterwards.
  void Destroy() {
    Clear();
    Log('F', {header, 0}, {-1, 0}, 0);
  }

  PlainTree Copy() const {
    PlainTree copy(*m_memory, seen, m_order);
    if (Root()) CopyBelow(Root(), copy, copy.header, 0);
    return copy;
  }
  /// The comparisons of the self-check of a tree that is whole.
  void Verify() {
    for (int x = First(); x != header; x = Neighbour(x, 1)) {
      if (int const l = nodes[x].child[0]) Before(At(x), At(l));
      if (int const r = nodes[x].child[1]) Before(At(r), At(x));
    }
  }
  /// Whether the elements from `a` on come before those of `other`.
  bool IsBefore(int a, PlainTree const& other) {
    int b = other.First();
    for (; a != header; a = Neighbour(a, 1), b = other.Neighbour(b, 1)) {
      if (b == other.header) return false;
      if (Before(At(a), other.At(b))) return true;
      if (Before(other.At(b), At(a))) return false;
    }
    return b != other.header;
  }

private:
  void Log(char kind, Place a, Place b, std::size_t n) {
    if (seen.find(kind) != seen.npos) m_memory->events.push_back({kind, a, b, n});
  }
  bool Before(Held const& a, Held const& b) {
    Log('<', a.place, b.place, 0);
    return m_order > 0 ? a.value.key < b.value.key : b.value.key < a.value.key;
  }
  int Allocate() {
    int const x = m_memory->nextNumber++;
    Log('A', {-1, 0}, {-1, 0}, static_cast<std::size_t>(offsets.m_nodeSize));
    nodes[x] = PlainNode();
    return x;
  }
  int Create(Held const& from) {
    int const x = Allocate();
    Log('C', from.place, At(x).place, 1);
    nodes[x].value = from.value;
    return x;
  }
  void Release(int x) {
    Log('D', {x, offsets.m_valueOffset}, {-1, 0}, 1);
    Log('F', {x, 0}, {-1, 0}, 0);
  }

  int Extreme(int x, int side) const {
    while (nodes.at(x).child[side])
      x = nodes.at(x).child[side];
    return x;
  }
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

  std::pair<int, bool> Descend(Held const& value) {
    int y = header;
    bool before = true;
    for (int x = Root(); x; x = nodes[x].child[!before]) {
      y = x;
      before = Before(value, At(x));
    }
    return {y, before};
  }
  int Insert(bool toTheLeft, int y, Held const& value) {
    bool const isLeft = y == header || toTheLeft || Before(value, At(y));
    int const x = Create(value);
    SetChild(y, !isLeft, x);
    RepairBelow(x);
    return x;
  }
  void RepairBelow(int x) {
    while (IsRed(nodes[x].parent)) {
      int p = nodes[x].parent;
      int const g = nodes[p].parent, s = SideOf(p), uncle = nodes[g].child[!s];
      nodes[g].isRed = true;
      if (IsRed(uncle)) {
        nodes[p].isRed = nodes[uncle].isRed = false;
        x = g;
        continue;
      }
      if (SideOf(x) != s) {
        Rotate(p, s);
        std::swap(x, p);
      }
      nodes[p].isRed = false;
      Rotate(g, !s);
    }
    nodes[Root()].isRed = false;
  }

  void ExchangePlaces(int z, int y) {
    std::swap(nodes[z], nodes[y]);
    std::swap(nodes[z].value, nodes[y].value);
    for (auto& [x, node] : nodes)
      for (int* const link : {&node.parent, &node.child[0], &node.child[1]})
        if (*link == z || *link == y) *link = *link == z ? y : z;
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

  void CopyBelow(int x, PlainTree& copy, int parent, int side) const {
    int const top = copy.Create(At(x));
    copy.SetChild(parent, side, top);
    copy.nodes[top].isRed = nodes.at(x).isRed;
    for (int const s : {1, 0})
      if (nodes.at(x).child[s]) CopyBelow(nodes.at(x).child[s], copy, top, s);
  }

  TreeMemory* m_memory;
  int m_order;
};

} // namespace model
