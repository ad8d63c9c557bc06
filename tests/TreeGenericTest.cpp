// The type-erased trees beside a model that follows every link, colour, value and call.
#include <algorithm>
#include <climits>
#include <cstring>
#include <map>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HYLBasTreeGeneric.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "support/PlainTree.h"
#include "support/RecordingMemory.h"
#include "support/SameShape.h"

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

using model::PlainTree;
using model::Value;
using recording::Event;
using recording::Place;
using Node = HYLBasTreeNodeGeneric;

int const context = 0;
HYLBasNodeOffsets const offsets(sizeof(Node), sizeof(Node) + sizeof(Value));

bool RecordingCompare(void const* a, void const* b, void const* givenContext) {
  EXPECT_EQ(givenContext, &context);
  recording::Events().push_back({'<', recording::Locate(a), recording::Locate(b), 0});
  return *static_cast<int const*>(a) < *static_cast<int const*>(b);
}
void RecordingCopy(void const* source, void* destination, unsigned int count) {
  recording::Events().push_back(
      {'C', recording::Locate(source), recording::Locate(destination), count});
  *static_cast<Value*>(destination) = *static_cast<Value const*>(source);
}
void RecordingDestroy(void const* first, unsigned int count) {
  recording::Events().push_back({'D', recording::Locate(first), {-1, 0}, count});
}
struct Kind {
  char const* name;
  HYLBasCompareFunction compare;
  HYLBasReplicatorGeneric replicator;
  std::string recorded; // kinds of the calls that can be observed
};

HYLBasReplicatorGeneric const pairs = HYLBasGetReplicator<HYLBasPair<int const, int>>();

// The first one's calls are the library's own, which nobody sees.
Kind const kinds[] = {
    {"int and pair", HYLBasStandardComparitor<int>, pairs, "AF"},
    {"own order", RecordingCompare, pairs, "AF<"},
    {"own copy", HYLBasStandardComparitor<int>, {8, RecordingCopy, nullptr}, "AFC"},
    {"own destruction",
     HYLBasStandardComparitor<int>,
     {8, HYLBasPODCopy<double>, RecordingDestroy},
     "AFD"},
    {"own order, copy and destruction",
     RecordingCompare,
     {8, RecordingCopy, RecordingDestroy},
     "AFCD<"},
};

template <class A>
constexpr bool isRegion = std::is_same_v<A, HYLBasMemTruePool>;

// Two trees and their models, driven through the same operations.
template <class A>
class TreesAndModels {
  using Tree = HYLBasTreeGeneric<A>;

public:
  TreesAndModels(Kind const& kind, unsigned int seed) : m_kind(kind), m_random(seed) {
    int const extremes[] = {INT_MIN, INT_MAX, -1, 0};
    for (int i = 0; i != 32; ++i)
      m_own[i] = {i < 4 ? extremes[i] : Below(seed % 3 == 0 ? 8 : 40), i};
    recording::Reset(m_own, sizeof m_own);
    m_memory.probes.assign(m_own, m_own + 32);
    m_memory.valueOffset = offsets.m_valueOffset;
    m_memory.nodeSize = offsets.m_nodeSize;
    for (int i = 0; i != 2; ++i) {
      m_trees[i] = std::make_unique<Tree>(offsets, kind.replicator, kind.compare, &context);
      m_models.emplace_back(m_memory);
      EXPECT_EQ(m_trees[i]->Begin(), m_trees[i]->End());
    }
  }

  ~TreesAndModels() {
    for (int i : {1, 0}) {
      m_trees[i].reset();
      m_models[i].Destroy();
    }
    CompareCalls("destruction");
    EXPECT_EQ(recording::LiveBlocks(), 0u);
  }

  void Step() {
    int const i = Below(2), other = Below(2), action = Below(12);
    Tree& tree = *m_trees[i];
    PlainTree& m = m_models[i];
    auto const [value, place] = SomeValue(i);
    auto [position, p] = SomePosition(i);
    if (Below(3) == 0) position = tree.UpperBound(value), p = m.UpperBound(place);
    switch (action) {
    case 0: {
      auto const result = tree.InsertUnique(value);
      auto const [number, inserted] = m.InsertUnique(place);
      EXPECT_EQ(result.second, inserted);
      Expect(result.first, number);
      break;
    }
    case 1:
      Expect(tree.InsertEqual(value), m.InsertEqual(place));
      break;
    case 2:
    case 3:
      Expect(tree.InsertUniqueAtPosition(position, value), m.InsertUniqueAt(p, place));
      break;
    case 4:
    case 5:
      Expect(tree.InsertEqualAtPosition(position, value), m.InsertEqualAt(p, place));
      break;
    case 6:
      Expect(tree.Find(value), m.Find(place));
      Expect(tree.LowerBound(value), m.LowerBound(place));
      break;
    case 7:
      if (p != m.header) tree.Erase(position), m.Erase(p);
      break;
    case 8: {
      Node* last = position;
      int number = p;
      for (int steps = Below(8) ? Below(6) : 1000; steps && number != m.header; --steps) {
        last = Next(last);
        number = m.Neighbour(number, 1);
      }
      tree.Erase(position, last), m.Erase(p, number);
      break;
    }
    case 9:
      if (Below(8) == 0) tree.Clear(), m.Clear();
      break;
    case 10:
      if (Below(2) == 0) {
        tree.Swap(m_trees[other].get());
        if (other != i) std::swap(m, m_models[other]);
      } else {
        EXPECT_EQ(&(tree = *m_trees[other]), &tree);
        if (other == i) break; // to itself: nothing happens
        PlainTree copy = m_models[other].Copy();
        std::swap(m, copy);
        copy.Destroy();
      }
      break;
    case 11:
      EXPECT_EQ(tree < *m_trees[other], m.IsBefore(m_models[other]));
      EXPECT_EQ(tree > *m_trees[other], m_models[other].IsBefore(m));
      EXPECT_EQ(tree <= *m_trees[other], !m_models[other].IsBefore(m));
      EXPECT_EQ(tree >= *m_trees[other], !m.IsBefore(m_models[other]));
      break;
    }
    CompareCalls(std::to_string(action));
    CompareContents();
  }

private:
  int Below(int n) { return static_cast<int>(m_random() % static_cast<unsigned int>(n)); }

  std::pair<void const*, Place> SomeValue(int i) {
    auto const [position, p] = SomePosition(i);
    if (Below(8) == 0 && p != m_models[i].header)
      return {m_trees[i]->Value(position), {p, offsets.m_valueOffset}};
    int const k = Below(32);
    return {&m_own[k], {0, static_cast<std::ptrdiff_t>(sizeof(Value)) * k}};
  }
  std::pair<Node*, int> SomePosition(int i) {
    int const size = static_cast<int>(m_models[i].Size());
    Node* position = m_trees[i]->Begin();
    int number = m_models[i].First();
    for (int steps = Below(4) ? Below(size + 1) : Below(2) * size; steps != 0; --steps) {
      position = Next(position);
      number = m_models[i].Neighbour(number, 1);
    }
    return {position, number};
  }
  static Node* Next(Node* x) {
    HYLBasTreeIteratorGeneric position(x);
    position.Next();
    return position.m_node;
  }

  // The number of the block that a node lies at the start of. Nodes of a region pool get their
  // model's number when they are first seen, and must keep it.
  int Number(Node* x) const {
    if (x == nullptr) return 0;
    if (auto const known = m_numbers.find(x); known != m_numbers.end()) return known->second;
    Place const place = recording::Locate(x);
    EXPECT_EQ(place.offset, 0);
    return place.block;
  }
  void Learn(Node* x, PlainTree const& tree, int number) {
    if (x == nullptr || number == 0) return;
    EXPECT_EQ(m_places.emplace(number, x).first->second, x);
    m_numbers[x] = number;
    if (number == tree.header) return Learn(x->m_parent, tree, tree.Root());
    Learn(x->m_left, tree, tree.nodes.at(number).child[0]);
    Learn(x->m_right, tree, tree.nodes.at(number).child[1]);
  }
  void LearnRegions() {
    for (int i = 0; isRegion<A> && i != 2; ++i)
      Learn(m_trees[i]->End(), m_models[i], m_models[i].header);
  }
  void Expect(Node* x, int number) {
    LearnRegions();
    EXPECT_EQ(Number(x), number);
  }

  // Releases whose order nobody can tell are compared as a set.
  void Normalize(std::vector<Event>& events) const {
    std::erase_if(events, [&](Event const& e) {
      return m_kind.recorded.find(e.kind) == std::string::npos || isRegion<A>;
    });
    if (m_kind.recorded.find('D') != std::string::npos) return;
    auto const isRelease = [](Event const& e) { return e.kind == 'F'; };
    for (auto run = events.begin(); run != events.end();) {
      auto const first = std::find_if(run, events.end(), isRelease);
      run = std::find_if_not(first, events.end(), isRelease);
      std::sort(first, run, [](Event const& a, Event const& b) { return a.a.block < b.a.block; });
    }
  }
  void CompareCalls(std::string const& what) {
    Normalize(recording::Events());
    Normalize(m_memory.events);
    ASSERT_TRUE(recording::Events() == m_memory.events) << m_kind.name << " after action " << what;
    recording::Events().clear();
    m_memory.events.clear();
  }

  void CompareContents() {
    LearnRegions();
    for (int i : {0, 1}) {
      Tree& tree = *m_trees[i];
      ASSERT_EQ(model::Difference(m_models[i], tree.End(), [&](Node* x) { return Number(x); }), "");
      ASSERT_EQ(tree.Size(), m_models[i].Size());
      ASSERT_EQ(tree.Empty(), m_models[i].Size() == 0);
      for (HYLBasTreeIteratorGeneric x(tree.Begin()); x.NotEqual(tree.End()); x.Next()) {
        ASSERT_EQ(x.Dereference(), tree.Value(x.m_node));
        ASSERT_EQ(*static_cast<Value*>(x.Dereference()),
                  m_models[i].nodes.at(Number(x.m_node)).value);
      }
      ASSERT_TRUE(tree.VerifyTree());
      m_models[i].Verify();
    }
    CompareCalls("self-check");
  }

  Kind const& m_kind;
  std::mt19937 m_random;
  Value m_own[32];
  model::TreeMemory m_memory;
  std::vector<PlainTree> m_models;
  std::unique_ptr<Tree> m_trees[2];
  std::map<Node*, int> m_numbers;
  std::map<int, Node*> m_places;
};

template <class A>
struct TreeGeneric : testing::Test {};
using Allocators =
    testing::Types<HYLBasMemTruePool, HYLBasNodeAllocator, HYLBasNodeTrackingAllocator>;
TYPED_TEST_SUITE(TreeGeneric, Allocators);

TYPED_TEST(TreeGeneric, FollowsTheModelInShapeContentsAndEveryCall) {
  for (Kind const& kind : kinds)
    for (unsigned int seed = 1; seed != 25; ++seed) {
      // A region's addresses cannot be recorded.
      if (isRegion<TypeParam> && &kind != kinds) break;
      SCOPED_TRACE(std::string(kind.name) + ", seed " + std::to_string(seed));
      TreesAndModels<TypeParam> trees(kind, seed);
      for (int step = 0; step != 200 && !testing::Test::HasFailure(); ++step)
        trees.Step();
      if (testing::Test::HasFailure()) return;
    }
}

bool CalledIntOrder(void const* a, void const* b, void const*) {
  return *static_cast<int const*>(a) < *static_cast<int const*>(b);
}

// Where the comparator is the library's own, its calls are inlined and some are left out: the same
// tree must come out as with another comparator of the same order, however large.
template <class A>
void ExpectSameShape(HYLBasTreeGeneric<A>& a, HYLBasTreeGeneric<A>& b) {
  ASSERT_EQ(a.Size(), b.Size());
  ASSERT_TRUE(SameShape(a.Root(), b.Root(), [](Node* x, Node* y) {
    return std::memcmp(x + 1, y + 1, sizeof(Value)) == 0;
  }));
  ASSERT_TRUE(a.VerifyTree());
}

TYPED_TEST(TreeGeneric, InlinedComparisonsMakeTheSameTree) {
  recording::Reset(nullptr, 0);
  using Tree = HYLBasTreeGeneric<TypeParam>;
  int const size = 3000;
  std::mt19937 random(7);
  for (int const order : {1, -1, 0}) { // ascending, descending, random
    Tree inlined(offsets, pairs, HYLBasStandardComparitor<int>, nullptr);
    Tree called(offsets, pairs, CalledIntOrder, nullptr);
    auto const both = [&](auto operation) { operation(inlined), operation(called); };
    auto const key = [&](int i) {
      return order ? order * i : static_cast<int>(random() % (2 * size)) - size;
    };
    for (int i = 0; i != size; ++i) {
      Value const value = {key(i), i};
      bool const isEqual = random() % 4 == 0;
      both([&](Tree& tree) {
        isEqual ? static_cast<void>(tree.InsertEqual(&value))
                : static_cast<void>(tree.InsertUnique(&value));
      });
    }
    ExpectSameShape(inlined, called);
    for (int i = 0; i != size; ++i) {
      Value const value = {key(i), i};
      auto const action = random() % 3;
      both([&](Tree& tree) {
        Node* const x = tree.Find(&value);
        if (action == 0 && x != tree.End()) tree.Erase(x);
        if (action == 1) tree.InsertUniqueAtPosition(tree.LowerBound(&value), &value);
        if (action == 2) tree.InsertEqualAtPosition(tree.UpperBound(&value), &value);
      });
    }
    ExpectSameShape(inlined, called);
  }
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

// One key after the other, `last` left out.
template <class A>
HYLBasTreeGeneric<A> TreeOf(int first, int last) {
  HYLBasTreeGeneric<A> tree(offsets, pairs, HYLBasStandardComparitor<int>, nullptr);
  for (int key = first; key != last; key += first < last ? 1 : -1) {
    Value const value = {key, key};
    tree.InsertUnique(&value);
  }
  return tree;
}

template <class A>
void ExpectKeys(HYLBasTreeGeneric<A> const& tree, int first, int last) {
  EXPECT_TRUE(tree.VerifyTree());
  EXPECT_EQ(tree.Size(), static_cast<unsigned int>(last - first));
  for (HYLBasTreeIteratorGeneric x(tree.Begin()); x.NotEqual(tree.End()); x.Next())
    EXPECT_EQ(static_cast<Value*>(x.Dereference())->key, first++);
  EXPECT_EQ(first, last);
}

// Nodes outlive the tree that they were made in when they have changed hands; the address sanitizer
// sees it when their memory does not.
TYPED_TEST(TreeGeneric, NodesStayWithTheMemoryThatGoesWithTheirTree) {
  recording::Reset(nullptr, 0);
  using Tree = HYLBasTreeGeneric<TypeParam>;
  auto a = std::make_unique<Tree>(TreeOf<TypeParam>(0, 300));
  {
    Tree b = TreeOf<TypeParam>(1000, 1005);
    a->Swap(&b);
  }
  ExpectKeys(*a, 1000, 1005);
  auto c = std::make_unique<Tree>(TreeOf<TypeParam>(-50, 50));
  *a = *c;
  Tree const d(*c);
  c.reset();
  ExpectKeys(*a, -50, 50);
  Value const value = {50, 0};
  a->Erase(a->Begin());
  EXPECT_TRUE(a->InsertUnique(&value).second);
  ExpectKeys(*a, -49, 51);
  a.reset();
  ExpectKeys(d, -50, 50);
}

bool ContextOrder(void const* a, void const* b, void const* factor) {
  int const f = *static_cast<int const*>(factor);
  return f * *static_cast<int const*>(a) < f * *static_cast<int const*>(b);
}
unsigned int destroyed;
void CountingDestroy(void const*, unsigned int count) { destroyed += count; }

// Comparator, context and replicator go with the values when trees are exchanged and assigned, and
// each comparison of two trees is computed by the tree that it belongs to.
TYPED_TEST(TreeGeneric, PoliciesGoWithTheValues) {
  recording::Reset(nullptr, 0);
  using Tree = HYLBasTreeGeneric<TypeParam>;
  int const up = 1, down = -1;
  Value const values[] = {{1, 0}, {2, 0}, {3, 0}};
  HYLBasReplicatorGeneric const counted(8, HYLBasPODCopy<double>, CountingDestroy);
  auto const first = [](Tree& tree) { return static_cast<Value*>(tree.Value(tree.Begin()))->key; };
  for (bool const assigns : {false, true}) {
    destroyed = 0;
    Tree rising(offsets, pairs, ContextOrder, &up);
    Tree falling(offsets, counted, ContextOrder, &down);
    Tree inlined(offsets, pairs, HYLBasStandardComparitor<int>, nullptr);
    for (Value const& value : values) {
      rising.InsertUnique(&value);
      if (value.key != 2) falling.InsertUnique(&value);
      inlined.InsertUnique(&value);
    }
    // {1, 2, 3} and {3, 1}: the rising tree finds 1 before 3, the falling one 3 before 1.
    EXPECT_TRUE(rising < falling);
    EXPECT_TRUE(falling < rising);
    EXPECT_TRUE(rising > falling);
    EXPECT_TRUE(falling > rising);
    EXPECT_FALSE(rising <= falling);
    EXPECT_FALSE(rising >= falling);

    assigns ? static_cast<void>(rising = falling) : rising.Swap(&falling);
    EXPECT_EQ(first(rising), 3);
    rising.InsertUnique(&values[1]);
    EXPECT_TRUE(rising.VerifyTree());
    rising.Clear();
    EXPECT_EQ(destroyed, 3u);
    falling.Clear();
    EXPECT_EQ(destroyed, assigns ? 5u : 3u);
    inlined.Swap(&rising);
    inlined.InsertUnique(&values[0]);
    inlined.InsertUnique(&values[1]);
    EXPECT_EQ(first(inlined), 2);
    EXPECT_EQ(first(rising), 1);
  }
}

using Tree = HYLBasTreeGeneric<HYLBasNodeAllocator>;

TEST(TreeGenericSelfCheck, FindsEveryKindOfDamage) {
  recording::Reset(nullptr, 0);
  Tree tree = TreeOf<HYLBasNodeAllocator>(0, 20);
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

  for (int const last : {4, -4}) {
    Tree small =
        TreeOf<HYLBasNodeAllocator>(0, last); // with one red node, below a child of the root
    EXPECT_TRUE(small.VerifyTree());
    Tree::Color(Tree::Left(small.Root())) = Tree::Color(Tree::Right(small.Root())) = e_red;
    EXPECT_FALSE(small.VerifyTree()) << "red below red, by as many black nodes on all ways";
  }

  Tree empty = TreeOf<HYLBasNodeAllocator>(0, 0);
  empty.Leftmost() = empty.Rightmost() = tree.Begin();
  EXPECT_FALSE(empty.VerifyTree()) << "size 0 over nodes";
  empty.Leftmost() = empty.End();
  EXPECT_FALSE(empty.VerifyTree()) << "size 0 with a rightmost node";
  empty.TreeInitialize();
  EXPECT_TRUE(empty.VerifyTree());

  EXPECT_EQ(tree.BlackCount(tree.Leftmost(), tree.Root()),
            tree.BlackCount(tree.Rightmost(), tree.Root()));
  EXPECT_EQ(tree.BlackCount(tree.Root(), tree.Root()), 1u);
  EXPECT_EQ(tree.BlackCount(nullptr, tree.Root()), 0u);
}

TEST(TreeGenericExhaustion, LeavesTheTreeUnchangedAndLosesNothing) {
  Value values[] = {{7, 1}, {30, 2}};
  recording::Reset(values, sizeof values);
  HYLBasReplicatorGeneric const recorded(8, RecordingCopy, RecordingDestroy);
  Tree source(offsets, recorded, HYLBasStandardComparitor<int>, nullptr);
  for (values[0].key = 11; values[0].key >= 0; --values[0].key)
    source.InsertUnique(&values[0]);
  using Operation = void (*)(Tree&, Tree const&, Value const*);
  Operation const operations[] = {
      [](Tree& tree, Tree const&, Value const* v) { tree.InsertUnique(v + 1); },
      [](Tree& tree, Tree const&, Value const* v) { tree.InsertEqual(v); },
      [](Tree& tree, Tree const&, Value const* v) { tree.InsertEqualAtPosition(tree.Begin(), v); },
      [](Tree& tree, Tree const& from, Value const*) { tree = from; },
  };
  for (Operation const operation : operations) {
    Tree tree(offsets, recorded, HYLBasStandardComparitor<int>, nullptr);
    for (int key = 0; key != 5; ++key)
      tree.InsertUnique(source.Value(source.Find(&key)));
    std::size_t const live = recording::LiveBlocks();
    for (unsigned int k = 1;; ++k) {
      recording::Events().clear();
      recording::FailRequest(k);
      try {
        operation(tree, source, values);
        EXPECT_GT(k, 1u);
        break;
      } catch (std::bad_alloc const&) {
        ExpectKeys(tree, 0, 5);
        ASSERT_EQ(recording::LiveBlocks(), live);
        auto const count = [](char kind) {
          return std::count_if(recording::Events().begin(), recording::Events().end(),
                               [&](Event const& e) { return e.kind == kind; });
        };
        EXPECT_EQ(count('C'), count('D'));
      }
    }
    EXPECT_TRUE(recording::FailurePending());
    recording::FailRequest(0);
  }
}

// Parts of trees, and the members that the other tests reach only through others.
TEST(TreeGenericNodes, ServeCallersThatBuildTreesThemselves) {
  recording::Reset(nullptr, 0);
  Tree tree = TreeOf<HYLBasNodeAllocator>(0, 10);
  std::size_t const live = recording::LiveBlocks();
  Node* const x = tree.Root();
  Node* const clone = tree.CloneNode(x);
  EXPECT_EQ(clone->m_color, x->m_color);
  EXPECT_EQ(clone->m_valueOffset, offsets.m_valueOffset);
  EXPECT_EQ(clone->m_left, nullptr);
  EXPECT_EQ(clone->m_right, nullptr);
  Node* const copy = tree.TreeCopy(x->m_left, clone);
  EXPECT_EQ(&Tree::Parent(copy), &copy->m_parent);
  EXPECT_EQ(copy->m_parent, clone);
  tree.DestroyNode(clone);
  EXPECT_GT(recording::LiveBlocks(), live);
  tree.TreeNodeErase(copy);
  tree.TreeNodeErase(nullptr);
  EXPECT_EQ(recording::LiveBlocks(), live);

  // The side hint decides without a comparison.
  Tree other = TreeOf<HYLBasNodeAllocator>(0, 0);
  Value const values[] = {{5, 0}, {5, 1}, {9, 0}};
  Node* const root = other.TreeNodeInsert(nullptr, other.End(), &values[0]);
  EXPECT_EQ(other.TreeNodeInsert(root, root, &values[1]), root->m_left);
  EXPECT_EQ(other.TreeNodeInsert(nullptr, root, &values[2]), root->m_right);
  EXPECT_TRUE(other.VerifyTree());
  EXPECT_EQ(other.Size(), 3u);
  EXPECT_EQ(other.MaxSize(), 4294967295u);
  EXPECT_EQ(other.Value(static_cast<void const*>(root)), root + 1);
}

// Each node tells where its value is, whatever tree computes the comparison.
TEST(TreeGenericNodes, FindTheirValueByTheirOwnOffset) {
  recording::Reset(nullptr, 0);
  Tree const near = TreeOf<HYLBasNodeAllocator>(1, 4);
  Tree far(HYLBasNodeOffsets(offsets.m_valueOffset + 8, offsets.m_nodeSize + 8), pairs,
           CalledIntOrder, nullptr);
  for (int key : {1, 2, 4}) {
    Value const value = {key, 0};
    HYLBasTreeNodeGeneric* const node = far.InsertUnique(&value).first;
    *reinterpret_cast<Value*>(node + 1) = {-key, 0}; // where a near node has its value
  }
  EXPECT_TRUE(near < far);
  EXPECT_FALSE(far < near);
  auto const precedes = [&](Node* first1, Node* last1, Node* first2, Node* last2) {
    return near.LexicographicalCompare(first1, last1, first2, last2);
  };
  Node *const one = near.Begin(), *const three = near.Rightmost();
  EXPECT_TRUE(precedes(one, three, far.Begin(), far.End()));
  EXPECT_FALSE(precedes(one, three, far.Begin(), far.Rightmost()));
  EXPECT_TRUE(precedes(one, one, three, near.End()));
  EXPECT_FALSE(precedes(three, near.End(), one, one));
  EXPECT_FALSE(precedes(one, one, three, three));

  near.Root()->m_valueOffset = 77;
  Node* const clone = far.CloneNode(near.Root());
  EXPECT_EQ(clone->m_valueOffset, 77);
  far.DeallocateNode(clone);
}

TEST(TreeGenericNodes, TreesOverTheTrackingAllocatorFetchAndActivateItsPool) {
  recording::Reset(nullptr, 0);
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
TEST(TreeGenericNodes, ClearReleasesTreesOfAnyShape) {
  recording::Reset(nullptr, 0);
  auto tree = TreeOf<HYLBasNodeAllocator>(0, 0);
  std::size_t const live = recording::LiveBlocks();
  Value const value{1, 0};
  std::vector<Node*> leaves{tree.TreeNodeInsert(nullptr, tree.End(), &value)};
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
  EXPECT_EQ(recording::LiveBlocks(), live + 1 + 200 * 510);
  tree.Clear();
  EXPECT_EQ(recording::LiveBlocks(), live);
}

static_assert(sizeof(Tree) == (sizeof(void*) == 4 ? 40 : 64));
static_assert(sizeof(HYLBasNodeOffsets) == 8);
static_assert(sizeof(HYLBasTreeIteratorGeneric) == sizeof(void*));

} // namespace
