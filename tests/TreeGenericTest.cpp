// The type-erased trees beside a model that follows every link, colour, value and call.
#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HYLBasTreeGeneric.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "support/PlainTree.h"
#include "support/RecordingMemory.h"

// The tracking allocator's pool, on the recording memory.
void* HYLBasMemPool::Alloc(unsigned int size) { return mem_Malloc_Handled(size); }
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
bool CalledIntOrder(void const* a, void const* b, void const*) {
  return *static_cast<int const*>(a) < *static_cast<int const*>(b);
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

// The number of the block that a node lies at the start of. Nodes of a region pool get their
// model's number when they are first seen, and must keep it.
class Numbers {
public:
  int operator()(Node* x) const {
    if (x == nullptr) return 0;
    auto const known = m_known.find(x);
    if (known != m_known.end()) return known->second;
    Place const place = recording::Locate(x);
    EXPECT_EQ(place.offset, 0);
    return place.block;
  }

  void Learn(std::initializer_list<std::pair<Node*, PlainTree const*>> trees) {
    std::map<Node*, int> const before = std::exchange(m_known, {});
    std::map<int, Node*> places;
    for (auto const& [x, number] : before)
      places[number] = x;
    for (auto const& [header, tree] : trees) {
      m_known[header] = tree->header;
      Learn(header->m_parent, *tree, tree->Root());
    }
    for (auto const& [x, number] : m_known)
      if (places.contains(number)) {
        EXPECT_EQ(places[number], x);
      }
  }

private:
  void Learn(Node* x, PlainTree const& tree, int number) {
    if (x == nullptr || number == 0) return;
    m_known[x] = number;
    Learn(x->m_left, tree, tree.nodes.at(number).child[0]);
    Learn(x->m_right, tree, tree.nodes.at(number).child[1]);
  }
  std::map<Node*, int> m_known;
};

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
    int const i = Below(2), action = Below(20);
    Tree& tree = *m_trees[i];
    PlainTree& m = m_models[i];
    auto const [value, place] = SomeValue(i);
    auto const [position, p] = SomePosition(i);
    switch (action) {
    case 0:
    case 1:
    case 2: {
      auto const result = tree.InsertUnique(value);
      auto const [number, inserted] = m.InsertUnique(place);
      EXPECT_EQ(result.second, inserted);
      Expect(result.first, number);
      break;
    }
    case 3:
    case 4:
      Expect(tree.InsertEqual(value), m.InsertEqual(place));
      break;
    case 5:
    case 6:
      Expect(tree.InsertUniqueAtPosition(position, value), m.InsertUniqueAt(p, place));
      break;
    case 7:
      Expect(tree.InsertEqualAtPosition(position, value), m.InsertEqualAt(p, place));
      break;
    case 8: // the right hint
      Expect(tree.InsertUniqueAtPosition(tree.LowerBound(value), value),
             m.InsertUniqueAt(m.LowerBound(place), place));
      break;
    case 9:
      Expect(tree.InsertEqualAtPosition(tree.UpperBound(value), value),
             m.InsertEqualAt(m.UpperBound(place), place));
      break;
    case 10:
    case 11:
      Expect(tree.Find(value), m.Find(place));
      Expect(tree.LowerBound(value), m.LowerBound(place));
      Expect(tree.UpperBound(value), m.UpperBound(place));
      break;
    case 12:
    case 13:
    case 14:
      if (p != m.header) tree.Erase(position), m.Erase(p);
      break;
    case 15: {
      Node* last = position;
      int number = p;
      for (int steps = Below(4) ? Below(6) : 1000; steps && number != m.header; --steps) {
        HYLBasTreeIteratorGeneric next(last);
        next.Next();
        last = next.m_node;
        number = m.Neighbour(number, 1);
      }
      tree.Erase(position, last), m.Erase(p, number);
      break;
    }
    case 16:
      if (Below(4) == 0) tree.Clear(), m.Clear();
      break;
    case 17: {
      int const other = Below(2);
      PlainTree copy = m_models[other].Copy();
      EXPECT_EQ(&(tree = *m_trees[other]), &tree);
      if (other == i) {
        m_memory.nextNumber -= static_cast<int>(copy.nodes.size());
        m_memory.events.clear(); // to itself: nothing happens
      } else {
        std::swap(m, copy);
        copy.Destroy();
      }
      break;
    }
    case 18: {
      int const other = Below(2);
      tree.Swap(m_trees[other].get());
      if (other != i) std::swap(m, m_models[other]);
      break;
    }
    case 19: {
      Tree& other = *m_trees[!i];
      EXPECT_EQ(tree < other, m.IsBefore(m_models[!i]));
      EXPECT_EQ(tree > other, m_models[!i].IsBefore(m));
      EXPECT_EQ(tree <= other, !m_models[!i].IsBefore(m));
      EXPECT_EQ(tree >= other, !m.IsBefore(m_models[!i]));
      break;
    }
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
    HYLBasTreeIteratorGeneric position(m_trees[i]->Begin());
    int number = m_models[i].First();
    int const way = Below(4), steps = way ? Below(static_cast<int>(m_models[i].Size()) + 1) : 0;
    for (int k = 0; k != steps; ++k) {
      position.Next();
      number = m_models[i].Neighbour(number, 1);
    }
    if (way == 1) return {m_trees[i]->End(), m_models[i].header};
    return {position.m_node, number};
  }

  void Expect(Node* x, int number) {
    if (isRegion<A>) Learn();
    EXPECT_EQ(m_numbers(x), number);
  }
  void Learn() {
    m_numbers.Learn({{m_trees[0]->End(), &m_models[0]}, {m_trees[1]->End(), &m_models[1]}});
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
    if (isRegion<A>) Learn();
    for (int i : {0, 1}) {
      Tree& tree = *m_trees[i];
      ASSERT_EQ(model::Difference(m_models[i], tree.End(), m_numbers), "");
      ASSERT_EQ(tree.Size(), m_models[i].Size());
      ASSERT_EQ(tree.Empty(), m_models[i].Size() == 0);
      for (HYLBasTreeIteratorGeneric x(tree.Begin()); x.NotEqual(tree.End()); x.Next()) {
        ASSERT_EQ(x.Dereference(), tree.Value(x.m_node));
        ASSERT_EQ(*static_cast<Value*>(x.Dereference()),
                  m_models[i].nodes.at(m_numbers(x.m_node)).value);
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
  Numbers m_numbers;
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

// Where the comparator is the library's own, its calls are inlined and some are left out: the same
// tree must come out as with another comparator of the same order, however large.
template <class A>
void ExpectSameShape(HYLBasTreeGeneric<A>& a, HYLBasTreeGeneric<A>& b) {
  ASSERT_EQ(a.Size(), b.Size());
  auto const same = [](auto&& self, Node* x, Node* y) -> bool {
    if (x == nullptr || y == nullptr) return x == y;
    return x->m_color == y->m_color && std::memcmp(x + 1, y + 1, sizeof(Value)) == 0 &&
           self(self, x->m_left, y->m_left) && self(self, x->m_right, y->m_right);
  };
  ASSERT_TRUE(same(same, a.Root(), b.Root()));
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

template <class A>
HYLBasTreeGeneric<A> TreeOf(int first, int last) {
  HYLBasTreeGeneric<A> tree(offsets, pairs, HYLBasStandardComparitor<int>, nullptr);
  for (int key = first; key != last; ++key) {
    Value const value = {key, key};
    tree.InsertUnique(&value);
  }
  return tree;
}

template <class A>
void ExpectKeys(HYLBasTreeGeneric<A> const& tree, int first, int last) {
  EXPECT_TRUE(tree.VerifyTree());
  HYLBasTreeIteratorGeneric x(tree.Begin());
  for (; first != last && x.NotEqual(tree.End()); ++first, x.Next())
    EXPECT_EQ(static_cast<Value*>(x.Dereference())->key, first);
  EXPECT_EQ(first, last);
  EXPECT_TRUE(x.Equal(tree.End()));
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
  int const key = -50;
  a->Erase(a->Find(&key));
  Value const value = {50, 0};
  EXPECT_TRUE(a->InsertUnique(&value).second);
  ExpectKeys(*a, -49, 51);
  a.reset();
  ExpectKeys(d, -50, 50);
  Tree e = TreeOf<TypeParam>(0, 0);
  e.Swap(&e);
  e = d;
  e.Clear();
  EXPECT_TRUE(e.InsertUnique(&value).second);
  ExpectKeys(e, 50, 51);
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

TEST(TreeGenericSelfCheck, FindsEveryKindOfDamage) {
  recording::Reset(nullptr, 0);
  using Tree = HYLBasTreeGeneric<HYLBasNodeAllocator>;
  Tree tree = TreeOf<HYLBasNodeAllocator>(0, 20);
  ASSERT_TRUE(tree.VerifyTree());
  auto const expectDamage = [&](auto& field, auto broken, char const* name) {
    auto const whole = std::exchange(field, broken);
    EXPECT_FALSE(tree.VerifyTree()) << name;
    field = whole;
    EXPECT_TRUE(tree.VerifyTree()) << name;
  };
  auto const node = [&](int key) { return tree.Find(&key); };
  auto const keyOf = [&](Node* x) -> int& { return static_cast<Value*>(tree.Value(x))->key; };
  Node* const red = [&] {
    HYLBasTreeIteratorGeneric x(tree.Begin());
    while (x.m_node->m_color == e_black || x.m_node->m_left == nullptr)
      x.Next();
    return x.m_node;
  }();
  expectDamage(red->m_left->m_color, e_red, "left child as red as its parent");
  expectDamage(red->m_right->m_color, e_red, "right child as red as its parent");
  expectDamage(keyOf(tree.Root()->m_left), 1000, "left child after its parent");
  expectDamage(keyOf(tree.Root()->m_right), -1000, "right child before its parent");
  expectDamage(tree.Rightmost()->m_color, e_black, "one black node more on one way");
  expectDamage(tree.Leftmost(), node(1), "leftmost node");
  expectDamage(tree.Rightmost(), node(18), "rightmost node");
  expectDamage(tree.Leftmost(), tree.End(), "no leftmost node in a filled tree");

  Tree empty = TreeOf<HYLBasNodeAllocator>(0, 0);
  EXPECT_TRUE(empty.VerifyTree());
  Node* const header = empty.End();
  empty.Leftmost() = empty.Rightmost() = node(3);
  EXPECT_FALSE(empty.VerifyTree()) << "size 0 over nodes";
  empty.Leftmost() = header;
  EXPECT_FALSE(empty.VerifyTree()) << "size 0 with a rightmost node";
  empty.TreeInitialize();
  EXPECT_TRUE(empty.VerifyTree());

  unsigned int const black = tree.BlackCount(tree.Leftmost(), tree.Root());
  EXPECT_EQ(black, tree.BlackCount(tree.Rightmost(), tree.Root()));
  EXPECT_EQ(tree.BlackCount(tree.Root(), tree.Root()), 1u);
  EXPECT_EQ(tree.BlackCount(nullptr, tree.Root()), 0u);
}

TEST(TreeGenericExhaustion, LeavesTheTreeUnchangedAndLosesNothing) {
  Value values[] = {{7, 1}, {30, 2}};
  recording::Reset(values, sizeof values);
  using Tree = HYLBasTreeGeneric<HYLBasNodeAllocator>;
  HYLBasReplicatorGeneric const recorded(8, RecordingCopy, RecordingDestroy);
  Tree source(offsets, recorded, CalledIntOrder, nullptr);
  for (values[0].key = 11; values[0].key >= 0; --values[0].key)
    source.InsertUnique(&values[0]);
  using Operation = void (*)(Tree&, Tree const&, Value const*);
  Operation const operations[] = {
      [](Tree& tree, Tree const&, Value const* v) { tree.InsertUnique(v + 1); },
      [](Tree& tree, Tree const&, Value const* v) { tree.InsertEqual(v); },
      [](Tree& tree, Tree const&, Value const* v) {
        tree.InsertUniqueAtPosition(tree.End(), v + 1);
      },
      [](Tree& tree, Tree const&, Value const* v) { tree.InsertEqualAtPosition(tree.Begin(), v); },
      [](Tree& tree, Tree const& from, Value const*) { tree = from; },
      [](Tree&, Tree const& from, Value const*) { Tree const copy(from); },
  };
  for (Operation const operation : operations) {
    Tree tree(offsets, recorded, CalledIntOrder, nullptr);
    for (int key = 0; key != 5; ++key)
      tree.InsertUnique(source.Value(source.LowerBound(&key)));
    std::size_t const live = recording::LiveBlocks();
    unsigned int failures = 0;
    for (unsigned int k = 1;; ++k) {
      recording::Events().clear();
      recording::FailRequest(k);
      try {
        operation(tree, source, values);
        break;
      } catch (std::bad_alloc const&) {
        ++failures;
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
    EXPECT_GE(failures, 1u);
  }
}

// Parts of trees, and the members that the other tests reach only through others.
TEST(TreeGenericNodes, ServeCallersThatBuildTreesThemselves) {
  recording::Reset(nullptr, 0);
  using Tree = HYLBasTreeGeneric<HYLBasNodeAllocator>;
  Tree tree = TreeOf<HYLBasNodeAllocator>(0, 10);
  Node* const x = tree.Root();
  EXPECT_EQ(&Tree::Left(x), &x->m_left);
  EXPECT_EQ(&Tree::Right(x), &x->m_right);
  EXPECT_EQ(&Tree::Parent(x), &x->m_parent);
  EXPECT_EQ(&Tree::Color(x), &x->m_color);
  EXPECT_EQ(Tree::Minimum(x), tree.Begin());
  EXPECT_EQ(Tree::Maximum(x), tree.Rightmost());
  EXPECT_EQ(tree.MaxSize(), 4294967295u);

  std::size_t const live = recording::LiveBlocks();
  Node* const clone = tree.CloneNode(x);
  EXPECT_EQ(clone->m_color, x->m_color);
  EXPECT_EQ(clone->m_valueOffset, offsets.m_valueOffset);
  EXPECT_EQ(clone->m_left, nullptr);
  EXPECT_EQ(clone->m_right, nullptr);
  tree.DestroyNode(clone);
  Node* const copy = tree.TreeCopy(x->m_left, clone);
  EXPECT_EQ(copy->m_parent, clone);
  EXPECT_GT(recording::LiveBlocks(), live);
  tree.TreeNodeErase(copy);
  tree.TreeNodeErase(nullptr);
  EXPECT_EQ(recording::LiveBlocks(), live);

  // The side hint decides without a comparison.
  Tree other(offsets, pairs, HYLBasStandardComparitor<int>, nullptr);
  Value const values[] = {{5, 0}, {3, 0}, {9, 0}};
  Node* const root = other.TreeNodeInsert(nullptr, other.End(), &values[0]);
  EXPECT_EQ(other.TreeNodeInsert(root, root, &values[1]), root->m_left);
  EXPECT_EQ(other.TreeNodeInsert(nullptr, root, &values[2]), root->m_right);
  EXPECT_TRUE(other.VerifyTree());
  EXPECT_EQ(other.Size(), 3u);
  EXPECT_EQ(other.Value(static_cast<void const*>(root)), root + 1);
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
        children.push_back(x->m_left = tree.CloneNode(x));
        children.push_back(x->m_right = tree.CloneNode(x));
      }
      leaves.swap(children);
    }
  }
  EXPECT_EQ(recording::LiveBlocks(), live + 1 + 200 * 510);
  tree.Clear();
  EXPECT_EQ(recording::LiveBlocks(), live);
}

static_assert(sizeof(void*) != 4 || sizeof(HYLBasTreeGeneric<HYLBasNodeAllocator>) == 40);
static_assert(sizeof(void*) != 8 || sizeof(HYLBasTreeGeneric<HYLBasNodeAllocator>) == 64);
static_assert(sizeof(HYLBasNodeOffsets) == 8);
static_assert(sizeof(HYLBasTreeIteratorGeneric) == sizeof(void*));

} // namespace
