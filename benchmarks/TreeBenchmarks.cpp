// The type-erased tree: its three allocators beside each other, and a caller's own comparator
// beside the same tree written plainly.
#include <algorithm>
#include <cstring>
#include <vector>

#include "Compare.h"
#include "HYLBasTreeGeneric.h"
#include "HYLBasTreeIteratorGeneric.h"

namespace {

using benchmark::State;
using Node = HYLBasTreeNodeGeneric;
using Pair = HYLBasPair<int const, double>;
using Heap = HYLBasTreeGeneric<HYLBasNodeAllocator>;

HYLBasNodeOffsets const offsets(sizeof(Node), sizeof(Node) + sizeof(Pair));

bool OwnOrder(void const* a, void const* b, void const*) {
  return *static_cast<int const*>(a) < *static_cast<int const*>(b);
}

// What a caller would write without the library's tree, over its balancing: one call of the
// comparator after the other.
class PlainTree {
public:
  PlainTree(HYLBasNodeOffsets const&, HYLBasReplicatorGeneric const& replicator,
            HYLBasCompareFunction const& compare, void const* context)
      : m_replicator(replicator), m_compare(compare), m_context(context) {
    Initialize();
  }
  ~PlainTree() { Clear(); }

  Node* Find(void const* key) {
    Node* y = &m_header;
    for (Node* x = m_header.m_parent; x != nullptr;) {
      if (!m_compare(x + 1, key, m_context)) {
        y = x;
        x = x->m_left;
      } else {
        x = x->m_right;
      }
    }
    return y == &m_header || m_compare(key, y + 1, m_context) ? &m_header : y;
  }
  void InsertUnique(void const* value) {
    Node* y = &m_header;
    bool before = true;
    for (Node* x = m_header.m_parent; x != nullptr;) {
      y = x;
      before = m_compare(value, x + 1, m_context);
      x = before ? x->m_left : x->m_right;
    }
    HYLBasTreeIteratorGeneric j(y);
    if (before) {
      if (y == &m_header || y == m_header.m_left) return Link(y, value);
      j.Previous();
    }
    if (m_compare(j.m_node + 1, value, m_context)) Link(y, value);
  }
  void Erase(Node* x) {
    Release(HYLBasTreeRebalanceForErase(x, m_header.m_parent, m_header.m_left, m_header.m_right));
  }
  void Clear() {
    EraseBelow(m_header.m_parent);
    Initialize();
  }

private:
  void Initialize() { m_header = {e_red, 0, nullptr, &m_header, &m_header}; }
  void Link(Node* y, void const* value) {
    bool const isLeft = y == &m_header || m_compare(value, y + 1, m_context);
    auto* const x = static_cast<Node*>(mem_Malloc_Handled(sizeof(Node) + sizeof(Pair)));
    m_replicator.m_copy(value, x + 1, 1);
    *x = {e_red, sizeof(Node), y, nullptr, nullptr};
    if (isLeft) {
      y->m_left = x;
      if (y == &m_header) m_header.m_parent = m_header.m_right = x;
      if (y == m_header.m_left) m_header.m_left = x;
    } else {
      y->m_right = x;
      if (y == m_header.m_right) m_header.m_right = x;
    }
    HYLBasTreeRebalance(x, m_header.m_parent);
  }
  void Release(Node* x) {
    m_replicator.m_destroy(x + 1, 1);
    mem_Free(x);
  }
  void EraseBelow(Node* x) {
    while (x != nullptr) {
      EraseBelow(x->m_right);
      Node* const left = x->m_left;
      Release(x);
      x = left;
    }
  }

  Node m_header;
  HYLBasReplicatorGeneric m_replicator;
  HYLBasCompareFunction m_compare;
  void const* m_context;
};

std::vector<int> Shuffled(unsigned int n) {
  std::vector<int> keys(n);
  for (unsigned int i = 0; i != n; ++i)
    keys[i] = static_cast<int>(i);
  std::shuffle(keys.begin(), keys.end(), compare::FreshRandom());
  return keys;
}

template <class Tree>
void InsertAll(Tree& tree, std::vector<int> const& keys) {
  for (int const key : keys) {
    Pair const value(key, key);
    tree.InsertUnique(&value);
  }
}

template <class Tree, HYLBasCompareFunction compareFunction>
struct Cases {
  static Tree Make() {
    HYLBasCompareFunction volatile hidden = compareFunction; // its calls must not be inlined
    HYLBasCompareFunction const compare = hidden;
    return Tree(offsets, HYLBasGetReplicator<Pair>(), compare, nullptr);
  }

  // From the first element to the release of all memory.
  static void FillAndClear(State& state, unsigned int n) {
    std::vector<int> const keys = Shuffled(n);
    for (auto _ : state) {
      Tree tree = Make();
      InsertAll(tree, keys);
    }
  }

  static void Find(State& state, unsigned int n) {
    Tree tree = Make();
    InsertAll(tree, Shuffled(n));
    std::vector<int> const keys = Shuffled(n);
    for (auto _ : state)
      for (int const& key : keys)
        benchmark::DoNotOptimize(tree.Find(&key));
  }

  static void Erase(State& state, unsigned int n) {
    std::vector<int> const keys = Shuffled(n), erased = Shuffled(n);
    Tree tree = Make();
    for (auto _ : state) {
      state.PauseTiming();
      InsertAll(tree, keys);
      state.ResumeTiming();
      for (int const& key : erased)
        tree.Erase(tree.Find(&key));
    }
  }

  static void Register(char const* family, char const* who) {
    for (unsigned int const size : {1000u, 100000u}) {
      compare::Register(std::string(family) + "/fill and clear/int-double", size, who,
                        FillAndClear);
      compare::Register(std::string(family) + "/find/int-double", size, who, Find);
      compare::Register(std::string(family) + "/erase/int-double", size, who, Erase);
    }
  }
};

[[maybe_unused]] bool const registered = [] {
  Cases<Heap, OwnOrder>::Register("tree, own order", "ours");
  Cases<PlainTree, OwnOrder>::Register("tree, own order", "plain");
  constexpr HYLBasCompareFunction standard = HYLBasStandardComparitor<int>;
  Cases<Heap, standard>::Register("tree, by allocator", "heap");
  using Tracking = HYLBasTreeGeneric<HYLBasNodeTrackingAllocator>;
  Cases<Tracking, standard>::Register("tree, by allocator", "tracking");
  using Region = HYLBasTreeGeneric<HYLBasMemTruePool>;
  Cases<Region, standard>::Register("tree, by allocator", "region");
  return true;
}();

} // namespace
