// The type-erased trees beside a model that follows every link, colour, value and call.
#include <array>
#include <climits>
#include <memory>
#include <optional>
#include <type_traits>

#include "HYLBasTreeGeneric.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "walks/Choices.h"
#include "walks/PlainTree.h"

// The tracking allocator's pool, on the recording memory.
void* HYLBasMemPool::Alloc(unsigned int size) {
  EXPECT_TRUE(this == &omi_Singleton<HYLBasMemPoolMap>::Instance() && m_active);
  return mem_Malloc_Handled(size);
}
unsigned int HYLBasMemPool::Free(void* block) {
  mem_Free(block);
  return 0;
}

namespace {

using model::offsets;
using model::PlainNode;
using model::PlainTree;
using model::Value;
using recording::Event;
using Node = HYLBasTreeNodeGeneric;

bool callsAreRecorded;
void Record(char kind, void const* a, void const* b, unsigned int n) {
  if (callsAreRecorded)
    recording::Events().push_back({kind, recording::Locate(a), recording::Locate(b), n});
}
bool RecordingCompare(void const* a, void const* b, void const* order) {
  Record('<', a, b, 0);
  bool const rises = *static_cast<int const*>(order) > 0;
  return *static_cast<int const*>(rises ? a : b) < *static_cast<int const*>(rises ? b : a);
}
void RecordingCopy(void const* source, void* destination, unsigned int count) {
  Record('C', source, destination, count);
  *static_cast<Value*>(destination) = *static_cast<Value const*>(source);
}
void RecordingDestroy(void const* first, unsigned int count) { Record('D', first, nullptr, count); }

struct Kind {
  HYLBasCompareFunction compare;
  HYLBasReplicatorGeneric replicator;
  char const* seen; // the kinds of calls that can be observed
};
HYLBasReplicatorGeneric const pairs = HYLBasGetReplicator<HYLBasPair<int const, int>>();
HYLBasCompareFunction const inlined = HYLBasStandardComparitor<int>;

// The first one's calls are the library's own, which nobody sees.
Kind const kinds[] = {
    {inlined, pairs, "AF"},
    {RecordingCompare, pairs, "AF<"},
    {inlined, {8, RecordingCopy, nullptr}, "AFC"},
    {inlined, {8, HYLBasPODCopy<double>, RecordingDestroy}, "AFD"},
    {RecordingCompare, {8, RecordingCopy, RecordingDestroy}, "AFCD<"},
};
int const rising = 1, falling = -1;

int& Key(Node* x) { return static_cast<Value*>(HYLBasTreeIteratorGeneric(x).Dereference())->key; }
int& Key(PlainNode* x) { return x->value.key; }

// What the self-check says while two fields are exchanged.
template <class Tree, class Field>
bool IsWholeWith(Tree& tree, Field& field, Field& other) {
  std::swap(field, other);
  bool const isWhole = tree.VerifyTree();
  std::swap(field, other);
  return isWhole;
}

// What an operation works with: real trees, or their models, which have the same interface.
template <class Tree, class Node, class Value>
struct Operands {
  Tree &tree, &other;
  Node *position, *last;
  Value value;
};

// Releases whose order nobody can tell are compared as a set.
void SortReleases(std::vector<Event>& events) {
  auto const isRelease = [](Event const& e) { return e.kind == 'F'; };
  for (auto run = events.begin(); run != events.end();) {
    auto const first = std::find_if(run, events.end(), isRelease);
    run = std::find_if_not(first, events.end(), isRelease);
    std::sort(first, run, [](Event const& a, Event const& b) { return a.a.block < b.a.block; });
  }
}
void CompareCalls(std::vector<Event>& plain) {
  SortReleases(recording::Events());
  SortReleases(plain);
  ASSERT_EQ(recording::Events(), plain);
  recording::Events().clear();
  plain.clear();
}

// Two trees and their models, driven through the same operations.
template <class A>
class TreeWalk {
  using Tree = HYLBasTreeGeneric<A>;
  struct Twin {
    Tree tree;
    PlainTree model;
  };
  static constexpr bool isRegion = std::is_same_v<A, HYLBasMemTruePool>;

public:
  TreeWalk(Choices& choices, model::TreeMemory& memory)
      : m_choices(choices), m_memory(memory), m_twins{Empty(), Empty()} {
    // Extremes, few different keys, and keys in a row.
    int const extremes[] = {INT_MIN, INT_MAX, -1, 0}, range = m_choices.OneIn(3) ? 8 : 40;
    for (int i = 0; i != 64; ++i) {
      own[i].value = {i < 4 ? extremes[i] : i < 32 ? Below(range) : 8 + i, i};
      own[i].place = recording::Locate(&own[i].value);
    }
    Compare();
  }

  void Step() {
    m_twin = &m_choices.Of(m_twins);
    m_other = &m_choices.Of(m_twins);
    PlainTree& m = m_twin->model;
    m_value = &own[Below(32)];
    m_position = m_choices.OneIn(3) ? m.UpperBound(m_value) : Later(m.Begin(), Below(64));
    m_last = m_choices.OneIn(8) ? m.End() : Later(m_position, Below(6));
    m_memory.events.clear(); // of looking for operands
    bool const isNode = m_position != m.End();
    if (isNode && m_choices.OneIn(8)) m_value = m_position;
    int const action = Below(20);
    SCOPED_TRACE("action " + std::to_string(action));
    if (action == 0) Both([](auto o) { return o.tree.InsertUnique(o.value); });
    if (action == 1) Both([](auto o) { return o.tree.InsertEqual(o.value); });
    if (action == 2)
      Both([](auto o) { return o.tree.InsertUniqueAtPosition(o.position, o.value); });
    if (action == 3) Both([](auto o) { return o.tree.InsertEqualAtPosition(o.position, o.value); });
    if (action == 4) // a row of keys, upwards or downwards
      for (int n = Below(32), step = Below(2) ? 1 : -1, k = step > 0 ? 32 : 63; n-- != 0;
           k += step) {
        m_value = &own[k];
        Both([](auto o) { return o.tree.InsertUnique(o.value); });
      }
    if (action == 5 && isNode && m.Left(m_position) == model::Nil()) {
      m_value = m_position;
      Both([](auto o) { return o.tree.TreeNodeInsert(o.position, o.position, o.value); });
    }
    if (action == 6) Both([](auto o) { return o.tree.Find(o.value); });
    if (action == 7) Both([](auto o) { return o.tree.LowerBound(o.value); });
    if (action == 8) Both([](auto o) { return o.tree.UpperBound(o.value); });
    if (action == 9 && isNode) Both([](auto o) { o.tree.Erase(o.position); });
    if (action == 10) Both([](auto o) { o.tree.Erase(o.position, o.last); });
    if (action == 11 && m_choices.OneIn(4)) Both([](auto o) { o.tree.Clear(); });
    if (action == 12) Both([](auto o) { o.tree.Swap(&o.other); });
    if (action == 13) Both([](auto o) { o.tree = o.other; });
    if (action == 14) {
      HYLBasNodeTrackingAllocator::m_pool = nullptr; // which each construction fetches
      Both([](auto o) {
        auto copy(o.other);
        o.tree.Swap(&copy);
      });
    }
    if (action == 15) {
      Twin empty = Empty();
      m_twin->tree.Swap(&empty.tree);
      m.Swap(&empty.model);
    }
    if (action == 16)
      Both([](auto o) {
        bool const isBefore =
            o.tree.LexicographicalCompare(o.position, o.tree.End(), o.other.Begin(), o.other.End());
        return std::array{o.tree > o.other, o.tree < o.other, o.tree <= o.other, o.tree >= o.other,
                          isBefore};
      });
    if (action == 17 && isNode)
      Both([](auto o) {
        o.tree.DestroyNode(o.tree.CloneNode(o.position));
        o.tree.TreeNodeErase(o.tree.TreeCopy(o.position, o.tree.End()));
      });
    if (action == 18)
      Both([](auto o) {
        auto* other = o.tree.Empty() ? o.other.End() : o.position;
        bool const hasNodes = o.position != o.tree.End() && o.last != o.tree.End();
        return std::array{IsWholeWith(o.tree, o.tree.Leftmost(), other),
                          IsWholeWith(o.tree, o.tree.Rightmost(), other),
                          IsWholeWith(o.tree, o.tree.Color(o.position), o.tree.Color(o.last)),
                          hasNodes && IsWholeWith(o.tree, Key(o.position), Key(o.last))};
      });
    if (action == 18) Both([](auto o) { return o.tree.BlackCount(o.position, o.tree.Root()); });
    if (action == 18)
      Both([](auto o) { return o.tree.BlackCount(o.tree.Left(o.position), o.tree.Root()); });
    if (action == 19 && isNode && m_position->child[1] != model::Nil())
      Both([](auto o) { // and back
        HYLBasTreeRotateLeft(o.position, o.tree.Root());
        auto* const above = o.tree.Parent(o.position);
        HYLBasTreeRotateRight(above, o.tree.Root());
        return above;
      });
    Compare();
  }

  static inline PlainNode own[64]; // the caller's values

private:
  int Below(int n) { return static_cast<int>(m_choices.Below(static_cast<unsigned int>(n))); }
  static PlainNode* Later(PlainNode* x, int steps) {
    for (; steps != 0 && !x->isHeader; --steps)
      x = Neighbour(x, 1);
    return x;
  }
  Twin Empty() {
    Kind const& kind = m_choices.Of(kinds);
    int const& order = kind.compare != inlined && m_choices.OneIn(2) ? falling : rising;
    HYLBasNodeTrackingAllocator::m_pool = nullptr;
    return {Tree(offsets, kind.replicator, kind.compare, &order),
            PlainTree(m_memory, isRegion ? "" : kind.seen, order)};
  }

  // Carries out the operation with the real trees, at times with memory failing, and with the
  // models where it was completed. Else nothing has happened.
  template <class Operation>
  void Both(Operation operation) {
    Tree& tree = m_twin->tree;
    void* const value = m_value->real ? tree.Value(m_value->real) : &m_value->value;
    Operands<Tree, Node, void*> real = {tree, m_other->tree, m_position->real, m_last->real, value};
    Operands<PlainTree, PlainNode, PlainNode*> plain = {m_twin->model, m_other->model, m_position,
                                                        m_last, m_value};
    CompareCalls(m_memory.events);
    std::size_t const live = recording::LiveBlocks();
    std::optional<decltype(ResultOf(operation, real))> result;
    if (Completes(m_choices.FailingRequest(), [&] { result = ResultOf(operation, real); }))
      return Expect(*result, ResultOf(operation, plain));
    EXPECT_EQ(recording::LiveBlocks(), live);
    std::string const calls = TakeCalls();
    m_memory.nextBlock += static_cast<int>(std::count(calls.begin(), calls.end(), 'A'));
    if (m_twin->model.seen == "AFCD<" && m_other->model.seen == "AFCD<") {
      EXPECT_EQ(std::count(calls.begin(), calls.end(), 'C'),
                std::count(calls.begin(), calls.end(), 'D'));
    }
  }

  // Each node stays where it was first seen.
  void Expect(Node* x, PlainNode* n) {
    if (n->real == nullptr && n != model::Nil()) n->real = x;
    ASSERT_EQ(n->real, x);
    ASSERT_TRUE(isRegion || recording::Locate(x) == (recording::Place{n->place.block, 0}));
  }
  void Expect(HYLBasPairIterBoolGeneric real, std::pair<PlainNode*, bool> plain) {
    Expect(real.first, plain.first);
    ASSERT_EQ(real.second, plain.second);
  }
  template <class T>
  void Expect(T const& real, T const& plain) {
    ASSERT_EQ(real, plain);
  }

  void Compare() {
    for (auto& [tree, model] : m_twins) {
      std::vector<PlainNode*> const nodes = model.Nodes();
      ASSERT_EQ(tree.Size(), nodes.size() - 1);
      ASSERT_EQ(tree.Empty(), model.Empty());
      HYLBasTreeIteratorGeneric x(tree.Begin());
      for (PlainNode* const n : nodes) {
        Expect(x.m_node, n);
        if (testing::Test::HasFailure()) return;
        Expect(x.m_node->m_parent, n->parent);
        Expect(x.m_node->m_left, n->child[0]);
        Expect(x.m_node->m_right, n->child[1]);
        ASSERT_EQ(x.m_node->m_color == e_red, n->isRed);
        HYLBasTreeIteratorGeneric before = x;
        if (n != nodes.front()) before.Previous();
        if (n != nodes.front()) Expect(before.m_node, Neighbour(n, 0));
        if (n->isHeader) break;
        ASSERT_EQ(*static_cast<Value*>(x.Dereference()), n->value);
        x.Next();
      }
      ASSERT_TRUE(tree.VerifyTree() && model.VerifyTree());
    }
    CompareCalls(m_memory.events);
  }

  Choices& m_choices;
  model::TreeMemory& m_memory;
  Twin m_twins[2];
  Twin *m_twin, *m_other; // of a step
  PlainNode *m_position, *m_last, *m_value;
};

template <class A>
void WalkTrees(Choices& choices) {
  callsAreRecorded = !std::is_same_v<A, HYLBasMemTruePool>; // whose addresses cannot be told
  recording::Reset(TreeWalk<A>::own, sizeof TreeWalk<A>::own);
  model::TreeMemory memory;
  {
    TreeWalk<A> walk(choices, memory);
    while (choices.More())
      walk.Step();
  }
  CompareCalls(memory.events);
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

} // namespace

WALK(400, 500) {
  void (*const walks[])(Choices&) = {
      WalkTrees<HYLBasMemTruePool>, WalkTrees<HYLBasNodeTrackingAllocator>,
      WalkTrees<HYLBasNodeAllocator>, WalkTrees<HYLBasNodeAllocator>};
  choices.Of(walks)(choices);
}

namespace {

using Tree = HYLBasTreeGeneric<HYLBasNodeAllocator>;

// Each node tells where its value is, whatever tree computes the comparison.
TEST(Tree, ValuesAreFoundByTheirNodesOwnOffset) {
  Tree near(offsets, pairs, inlined, nullptr), far = near;
  Tree wide({offsets.m_valueOffset + 8, offsets.m_nodeSize + 8}, pairs, inlined, nullptr);
  for (int key : {1, 2, 4}) {
    Value const value = {key, 0};
    if (key != 4) near.InsertUnique(&value);
    Node* const node = wide.InsertUnique(&value).first;
    *reinterpret_cast<Value*>(node + 1) = {-key, 0}; // where a near node has its value
  }
  EXPECT_TRUE(near < wide);
  EXPECT_FALSE(wide < near);
  Node* const clone = near.CloneNode(wide.Begin());
  EXPECT_EQ(clone->m_valueOffset, offsets.m_valueOffset + 8);
  near.DeallocateNode(clone);
  HYLBasTreeIteratorGeneric const x(near.Begin()), y(near.End());
  EXPECT_TRUE(x.Equal(&x) && x.Equal(x) && !x.Equal(&y) && !x.Equal(y));
  EXPECT_TRUE(!x.NotEqual(&x) && !x.NotEqual(x) && x.NotEqual(&y));
  EXPECT_EQ(std::as_const(near).Value(static_cast<void const*>(x.m_node)), x.m_node + 1);
  EXPECT_EQ(near.MaxSize(), 4294967295u);
}

// Bushes that hang from each other's last nodes leave more to be visited than any balanced tree
// does.
TEST(Tree, ClearReleasesTreesOfAnyShape) {
  Tree tree(offsets, pairs, inlined, nullptr), bush = tree;
  for (Value value = {0, 0}; value.key != 255; ++value.key)
    bush.InsertEqual(&value);
  Node* last = tree.InsertEqual(bush.Value(bush.Root()));
  std::size_t const live = recording::LiveBlocks();
  for (int i = 0; i != 200; ++i)
    last = Tree::Maximum(Tree::Right(last) = tree.TreeCopy(bush.Root(), last));
  EXPECT_EQ(recording::LiveBlocks(), live + 200 * 255);
  tree.Clear();
  EXPECT_EQ(recording::LiveBlocks(), live - 1);
}

TEST(Tree, InsertionNeverLooksThroughTheRootsParent) {
  Node a = {e_black, 0, nullptr, nullptr, nullptr}, b = {e_red, 0, &a, nullptr, nullptr}, c = b;
  Node* root = &a;
  a.m_right = &b;
  c.m_parent = &b;
  b.m_right = &c;
  HYLBasTreeRebalance(&c, root);
  EXPECT_TRUE(root == &b && b.m_left == &a && b.m_right == &c && b.m_parent == nullptr);
}

static_assert(sizeof(Tree) == (sizeof(void*) == 4 ? 40 : 64));
static_assert(sizeof(HYLBasNodeOffsets) == 8);
static_assert(sizeof(HYLBasTreeIteratorGeneric) == sizeof(void*));

} // namespace
