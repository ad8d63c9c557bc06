// The type-erased trees beside a model that follows every link, colour, value and call.
#include <climits>
#include <cstring>
#include <map>
#include <memory>
#include <tuple>

#include "HYLBasTreeGeneric.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "walks/Choices.h"
#include "walks/PlainTree.h"

// The tracking allocator's pool, on the recording memory.
static HYLBasMemPool* askedPool;
void* HYLBasMemPool::Alloc(unsigned int size) {
  askedPool = m_active ? this : nullptr;
  return mem_Malloc_Handled(size);
}
unsigned int HYLBasMemPool::Free(void* block) {
  mem_Free(block);
  return 0;
}

namespace {

using model::offsets;
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

template <class A>
constexpr bool isRegion = std::is_same_v<A, HYLBasMemTruePool>;

// Two trees and their models, driven through the same operations.
template <class A>
class TreesAndModels {
  using Tree = HYLBasTreeGeneric<A>;

public:
  explicit TreesAndModels(Choices& choices) : m_choices(choices) {
    // Extremes, few different keys, and keys in a row.
    int const extremes[] = {INT_MIN, INT_MAX, -1, 0}, range = m_choices.OneIn(3) ? 8 : 40;
    for (int i = 0; i != 64; ++i)
      m_own[i] = {i < 4 ? extremes[i] : i < 32 ? Below(range) : 8 + i, i};
    callsAreRecorded = !isRegion<A>; // whose addresses cannot be told
    recording::Reset(m_own, sizeof m_own);
    for (int i : {0, 1})
      MakeAnew(i, i);
    CompareContents();
  }
  ~TreesAndModels() {
    for (int i : {1, 0}) {
      m_trees[i].reset();
      m_models[i].Destroy();
    }
    CompareCalls();
    EXPECT_EQ(recording::LiveBlocks(), 0u);
  }

  void Step() {
    int const i = Below(2), other = Below(2), action = Below(12);
    Tree& tree = *m_trees[i];
    PlainTree& m = m_models[i];
    void const* value = nullptr;
    model::Held held = {};
    std::tie(value, held) = SomeValue(m);
    int p = SomePosition(m);
    if (m_choices.OneIn(3)) {
      p = m.Bound(held, true);
      Expect(tree.UpperBound(value), p);
    }
    Node* const position = m_places.at(p);
    SCOPED_TRACE("action " + std::to_string(action));
    if (action < 2) InsertUnique(i, value, held);
    if (action == 2)
      Do([&] { m_result = tree.InsertEqual(value); }, [&] { return m.InsertEqual(held); });
    if (action == 3)
      Do([&] { m_result = tree.InsertUniqueAtPosition(position, value); },
         [&] { return m.InsertAt(p, held, true); });
    if (action == 4)
      Do([&] { m_result = tree.InsertEqualAtPosition(position, value); },
         [&] { return m.InsertAt(p, held, false); });
    if (action == 5) // a row of keys, upwards or downwards
      for (int n = Below(32), step = Below(2) ? 1 : -1, k = step > 0 ? 32 : 63; n-- != 0; k += step)
        InsertUnique(i, &m_own[k], Own(k));
    if (action == 6) {
      Expect(tree.Find(value), m.Find(held));
      Expect(tree.LowerBound(value), m.Bound(held, false));
    }
    if (action == 7 && p != m.header) tree.Erase(position), m.Erase(p);
    if (action == 8) {
      int const last = m_choices.OneIn(8) ? m.header : Later(m, p, Below(6));
      tree.Erase(position, m_places.at(last)), m.Erase(p, last);
      if (m_choices.OneIn(8)) tree.Clear(), m.Clear();
    }
    if (action == 9) {
      tree.Swap(m_trees[other].get());
      if (other != i) std::swap(m, m_models[other]);
    }
    if (action == 10) MakeAnew(i, other);
    if (action == 11) {
      Tree& second = *m_trees[other];
      PlainTree& n = m_models[other];
      EXPECT_EQ(tree < second, m.IsBefore(m.First(), n));
      EXPECT_EQ(tree > second, n.IsBefore(n.First(), m));
      EXPECT_EQ(tree <= second, !n.IsBefore(n.First(), m));
      EXPECT_EQ(tree >= second, !m.IsBefore(m.First(), n));
      EXPECT_EQ(tree.LexicographicalCompare(position, tree.End(), second.Begin(), second.End()),
                m.IsBefore(p, n));
    }
    CompareCalls();
    CompareContents();
  }

private:
  int Below(int n) { return static_cast<int>(m_choices.Below(static_cast<unsigned int>(n))); }
  model::Held Own(int k) { return {{0, static_cast<std::ptrdiff_t>(sizeof(Value)) * k}, m_own[k]}; }
  int Later(PlainTree const& m, int p, int steps) {
    for (; steps != 0 && p != m.header; --steps)
      p = m.Neighbour(p, 1);
    return p;
  }
  int SomePosition(PlainTree const& m) {
    return Later(m, m.First(), Below(static_cast<int>(m.Size()) + 1));
  }
  std::pair<void const*, model::Held> SomeValue(PlainTree const& m) {
    int const k = Below(32), p = m_choices.OneIn(8) ? SomePosition(m) : m.header;
    if (p != m.header) return {m_trees[0]->Value(m_places.at(p)), m.At(p)};
    return {&m_own[k], Own(k)};
  }

  // Carries out what may need memory; the model returns the number of the resulting node. When
  // there is no memory, nothing has happened.
  template <class Real, class Model>
  void Do(Real real, Model modelled) {
    CompareCalls();
    std::size_t const live = recording::LiveBlocks();
    if (Completes(m_choices.FailingRequest(), real)) return Expect(m_result, modelled());
    auto const count = [](char kind) {
      auto const& calls = recording::Events();
      return std::count_if(calls.begin(), calls.end(), [&](auto& e) { return e.kind == kind; });
    };
    bool const allSeen = m_models[0].seen == "AFCD<" && m_models[1].seen == "AFCD<";
    EXPECT_TRUE(!allSeen || count('C') == count('D'));
    EXPECT_EQ(recording::LiveBlocks(), live);
    m_memory.nextNumber += static_cast<int>(count('A'));
    recording::Events().clear();
  }
  void InsertUnique(int i, void const* value, model::Held const& held) {
    bool isNew = false;
    Do(
        [&] {
          auto const result = m_trees[i]->InsertUnique(value);
          m_result = result.first;
          isNew = result.second;
        },
        [&] {
          auto const [number, inserted] = m_models[i].InsertUnique(held);
          EXPECT_EQ(isNew, inserted);
          return number;
        });
  }
  // A new tree, a copy of the other or an assignment of it takes the place of what was there.
  void MakeAnew(int i, int other) {
    Kind const& kind = m_choices.Of(kinds);
    int const& order = kind.compare != inlined && m_choices.OneIn(2) ? falling : rising;
    int const way = m_trees[i] ? Below(3) : 0;
    auto const replace = [&](PlainTree model) {
      std::swap(m_models[i], model);
      model.Destroy();
    };
    if (way == 0) {
      m_trees[i] = std::make_unique<Tree>(offsets, kind.replicator, kind.compare, &order);
      replace(PlainTree(m_memory, isRegion<A> ? "" : kind.seen, order));
    }
    Do(
        [&] {
          if (way == 1) m_trees[i] = std::make_unique<Tree>(*m_trees[other]);
          if (way == 2) m_trees[i]->operator=(*m_trees[other]);
          m_result = m_trees[i]->End();
        },
        [&] {
          if (way == 1 || (way == 2 && i != other)) replace(m_models[other].Copy());
          return m_models[i].header;
        });
  }

  // Each node stays where it was first seen.
  void Expect(Node* x, int number) {
    ASSERT_EQ(m_places.emplace(number, x).first->second, x);
    ASSERT_TRUE(isRegion<A> || recording::Locate(x) == (recording::Place{number, 0}));
  }

  // Releases whose order nobody can tell are compared as a set.
  static void SortReleases(std::vector<Event>& events) {
    auto const isRelease = [](Event const& e) { return e.kind == 'F'; };
    for (auto run = events.begin(); run != events.end();) {
      auto const first = std::find_if(run, events.end(), isRelease);
      run = std::find_if_not(first, events.end(), isRelease);
      std::sort(first, run, [](Event const& a, Event const& b) { return a.a.block < b.a.block; });
    }
  }
  void CompareCalls() {
    SortReleases(recording::Events());
    SortReleases(m_memory.events);
    ASSERT_EQ(recording::Events(), m_memory.events);
    recording::Events().clear();
    m_memory.events.clear();
  }

  void CompareBelow(Node* x, Node* parent, PlainTree const& m, int number) {
    ASSERT_EQ(x == nullptr, number == 0);
    if (x == nullptr) return;
    Expect(x, number);
    model::PlainNode const& node = m.nodes.at(number);
    ASSERT_TRUE(x->m_parent == parent && (x->m_color == e_red) == node.isRed);
    ASSERT_EQ(*static_cast<Value*>(HYLBasTreeIteratorGeneric(x).Dereference()), node.value);
    CompareBelow(x->m_left, x, m, node.child[0]);
    CompareBelow(x->m_right, x, m, node.child[1]);
  }
  void CompareContents() {
    for (int i : {0, 1}) {
      Tree& tree = *m_trees[i];
      PlainTree& m = m_models[i];
      Expect(tree.End(), m.header);
      ASSERT_EQ(tree.End()->m_color, e_red);
      CompareBelow(tree.Root(), tree.End(), m, m.Root());
      Expect(tree.Begin(), m.First());
      Expect(tree.Rightmost(), m.Last());
      ASSERT_EQ(tree.Size(), m.Size());
      ASSERT_EQ(tree.Empty(), m.Size() == 0);
      int p = m.First();
      for (HYLBasTreeIteratorGeneric x(tree.Begin()); x.NotEqual(tree.End());) {
        HYLBasTreeIteratorGeneric back = x;
        x.Next();
        Expect(x.m_node, p = m.Neighbour(p, 1));
        (back = x).Previous();
        Expect(back.m_node, m.Neighbour(p, 0));
      }
      ASSERT_EQ(p, m.header);
      ASSERT_TRUE(tree.VerifyTree());
      m.Verify();
    }
    CompareCalls();
  }

  Choices& m_choices;
  Value m_own[64];
  model::TreeMemory m_memory, m_nobodys;
  std::vector<PlainTree> m_models = std::vector(2, PlainTree(m_nobodys, "", rising));
  std::unique_ptr<Tree> m_trees[2];
  Node* m_result = nullptr;
  std::map<int, Node*> m_places;
};

template <class A>
void WalkTrees(Choices& choices) {
  TreesAndModels<A> trees(choices);
  while (choices.More())
    trees.Step();
}

} // namespace

WALK(300, 400) {
  switch (choices.Below(4)) {
  case 0:
    return WalkTrees<HYLBasMemTruePool>(choices);
  case 1:
    return WalkTrees<HYLBasNodeTrackingAllocator>(choices);
  default:
    return WalkTrees<HYLBasNodeAllocator>(choices);
  }
}

namespace {

using Tree = HYLBasTreeGeneric<HYLBasNodeAllocator>;

struct TreeTable : testing::Test {
  void SetUp() override {
    recording::Reset(nullptr, 0);
    callsAreRecorded = false;
  }
};

// One key after the other, `last` left out.
template <class A = HYLBasNodeAllocator>
HYLBasTreeGeneric<A> TreeOf(int first, int last) {
  HYLBasTreeGeneric<A> tree(offsets, pairs, inlined, nullptr);
  for (int key = first; key != last; key += first < last ? 1 : -1) {
    Value const value = {key, key};
    tree.InsertUnique(&value);
  }
  return tree;
}

TEST_F(TreeTable, SelfCheckFindsEveryKindOfDamage) {
  Tree tree = TreeOf(0, 20);
  auto const expectDamage = [&](auto& field, auto broken, char const* name) {
    auto const whole = std::exchange(field, broken);
    EXPECT_FALSE(tree.VerifyTree()) << name;
    field = whole;
    EXPECT_TRUE(tree.VerifyTree()) << name;
  };
  auto const keyOf = [&](Node* x) -> int& { return static_cast<Value*>(tree.Value(x))->key; };
  expectDamage(keyOf(tree.Root()->m_left), 1000, "left child after its parent");
  expectDamage(keyOf(tree.Root()->m_right), -1000, "right child before its parent");
  expectDamage(tree.Rightmost()->m_color, e_black, "one black node more on one way");
  expectDamage(tree.Leftmost(), tree.Leftmost()->m_parent, "leftmost node");
  expectDamage(tree.Rightmost(), tree.Rightmost()->m_parent, "rightmost node");
  expectDamage(tree.Leftmost(), tree.End(), "no leftmost node in a filled tree");
  EXPECT_EQ(tree.BlackCount(tree.Leftmost(), tree.Root()),
            tree.BlackCount(tree.Rightmost(), tree.Root()));
  EXPECT_EQ(tree.BlackCount(tree.Root(), tree.Root()), 1u);
  EXPECT_EQ(tree.BlackCount(nullptr, tree.Root()), 0u);

  for (int const last : {4, -4}) { // with one red node, below a child of the root
    Tree small = TreeOf(0, last);
    Tree::Color(Tree::Left(small.Root())) = Tree::Color(Tree::Right(small.Root())) = e_red;
    EXPECT_FALSE(small.VerifyTree()) << "red below red, by as many black nodes on all ways";
  }
  Tree empty = TreeOf(0, 0);
  empty.Leftmost() = empty.Rightmost() = tree.Begin();
  EXPECT_FALSE(empty.VerifyTree()) << "size 0 over nodes";
  empty.Leftmost() = empty.End();
  EXPECT_FALSE(empty.VerifyTree()) << "size 0 with a rightmost node";
  empty.TreeInitialize();
  EXPECT_TRUE(empty.VerifyTree());
}

TEST_F(TreeTable, NodesServeCallersThatBuildTreesThemselves) {
  Tree tree = TreeOf(0, 10), other = TreeOf(0, 0);
  std::size_t const live = recording::LiveBlocks();
  tree.Root()->m_valueOffset = 77;
  Node* const clone = other.CloneNode(tree.Root());
  EXPECT_EQ(clone->m_color, e_black);
  EXPECT_EQ(clone->m_valueOffset, 77);
  EXPECT_TRUE(clone->m_left == nullptr && clone->m_right == nullptr);
  Node* const copy = tree.TreeCopy(tree.Root()->m_left, clone);
  EXPECT_EQ(Tree::Parent(copy), clone);
  tree.DestroyNode(clone);
  EXPECT_GT(recording::LiveBlocks(), live);
  tree.TreeNodeErase(copy);
  tree.TreeNodeErase(nullptr);
  EXPECT_EQ(recording::LiveBlocks(), live);

  // The side hint decides without a comparison.
  Value const values[] = {{5, 0}, {5, 1}, {9, 0}};
  Node* const root = other.TreeNodeInsert(nullptr, other.End(), &values[0]);
  EXPECT_EQ(other.TreeNodeInsert(root, root, &values[1]), root->m_left);
  EXPECT_EQ(other.TreeNodeInsert(nullptr, root, &values[2]), root->m_right);
  EXPECT_TRUE(other.VerifyTree());
  EXPECT_EQ(other.MaxSize(), 4294967295u);
  EXPECT_EQ(std::as_const(other).Value(static_cast<void const*>(root)), root + 1);
}

// Each node tells where its value is, whatever tree computes the comparison.
TEST_F(TreeTable, ComparisonFindsValuesByTheirNodesOwnOffset) {
  Tree const near = TreeOf(1, 4);
  Tree far({offsets.m_valueOffset + 8, offsets.m_nodeSize + 8}, pairs, inlined, nullptr);
  for (int key : {1, 2, 4}) {
    Value const value = {key, 0};
    Node* const node = far.InsertUnique(&value).first;
    *reinterpret_cast<Value*>(node + 1) = {-key, 0}; // where a near node has its value
  }
  EXPECT_TRUE(near < far);
  EXPECT_FALSE(far < near);
  Node *const one = near.Begin(), *const three = near.Rightmost();
  EXPECT_TRUE(near.LexicographicalCompare(one, three, far.Begin(), far.End()));
  EXPECT_FALSE(near.LexicographicalCompare(one, three, far.Begin(), far.Rightmost()));
  HYLBasTreeIteratorGeneric const x(one), y(three);
  EXPECT_TRUE(x.Equal(&x) && x.Equal(x) && !x.Equal(&y) && !x.Equal(y));
  EXPECT_TRUE(!x.NotEqual(&x) && !x.NotEqual(x) && x.NotEqual(&y));
}

TEST_F(TreeTable, TreesOverTheTrackingAllocatorFetchAndActivateItsPool) {
  auto const construct = [](auto make) {
    HYLBasNodeTrackingAllocator::m_pool = nullptr;
    askedPool = nullptr;
    auto const tree = make();
    EXPECT_EQ(HYLBasNodeTrackingAllocator::m_pool, &omi_Singleton<HYLBasMemPoolMap>::Instance());
    EXPECT_EQ(askedPool, HYLBasNodeTrackingAllocator::m_pool);
  };
  auto const empty = TreeOf<HYLBasNodeTrackingAllocator>(0, 0);
  construct([] { return TreeOf<HYLBasNodeTrackingAllocator>(0, 1); });
  construct([&] { return HYLBasTreeGeneric<HYLBasNodeTrackingAllocator>(empty); });
}

// Bushes that hang from each other's last leaves leave more nodes to be visited than any balanced
// tree does.
TEST_F(TreeTable, ClearReleasesTreesOfAnyShape) {
  Tree tree = TreeOf(0, 1);
  std::size_t const live = recording::LiveBlocks();
  std::vector<Node*> leaves{tree.Root()};
  for (int bush = 0; bush != 200; ++bush) {
    leaves = {leaves.back()};
    while (leaves.size() != 256) {
      std::vector<Node*> children;
      for (Node* const x : leaves) {
        children.push_back(Tree::Left(x) = tree.CloneNode(x));
        children.push_back(Tree::Right(x) = tree.CloneNode(x));
      }
      leaves.swap(children);
    }
  }
  EXPECT_EQ(recording::LiveBlocks(), live + 200 * 510);
  tree.Clear();
  EXPECT_EQ(recording::LiveBlocks(), live - 1);
}

TEST_F(TreeTable, RotationsAreEachOthersInverse) {
  Node header = {}, x = {}, y = {}, inner = {};
  header.m_parent = &x;
  x = {e_black, 0, &header, nullptr, &y};
  y = {e_red, 0, &x, &inner, nullptr};
  inner = {e_red, 0, &y, nullptr, nullptr};
  auto const links = [&] {
    return std::vector<Node*>{header.m_parent, x.m_parent, x.m_left,      x.m_right,
                              y.m_parent,      y.m_left,   inner.m_parent};
  };
  auto const before = links();
  HYLBasTreeRotateLeft(&x, header.m_parent);
  EXPECT_EQ(links(), (std::vector<Node*>{&y, &y, nullptr, &inner, &header, &x, &x}));
  HYLBasTreeRotateRight(&y, header.m_parent);
  EXPECT_EQ(links(), before);
}

TEST_F(TreeTable, InsertionNeverLooksThroughTheRootsParent) {
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
