// The algorithms on links beside an independent model: every link and colour after every step.
#include <algorithm>
#include <numeric>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "HYLBasTreeIteratorGeneric.h"
#include "HYLBasTreeNodeGeneric.h"
#include "support/PlainTree.h"

namespace {

using Node = HYLBasTreeNodeGeneric;

// Nodes in an array, the header first; the model's numbers are places in it, counted from 1.
class NodesAndModel {
public:
  explicit NodesAndModel(unsigned int size) : m_model(m_memory), m_nodes(size + 1) {
    Header()->m_color = e_red;
    Header()->m_left = Header()->m_right = Header();
  }

  void Insert(int key) {
    int y = m_model.header, side = 0;
    for (int x = m_model.Root(); x; x = m_model.nodes[x].child[side]) {
      y = x;
      side = m_model.nodes[x].value.key < key;
    }
    int const x = key + 2;
    m_model.nodes[x].value.key = key;
    m_model.LinkLeaf(x, y, side);

    Node* const node = &m_nodes[static_cast<std::size_t>(x - 1)];
    Node* const parent = &m_nodes[static_cast<std::size_t>(y - 1)];
    *node = {e_black, key, parent, nullptr, nullptr};
    bool const isRoot = parent == Header();
    if (isRoot) Header()->m_parent = node;
    if (isRoot || (side == 0 && parent == Header()->m_left)) Header()->m_left = node;
    if (isRoot || (side == 1 && parent == Header()->m_right)) Header()->m_right = node;
    if (!isRoot) (side == 0 ? parent->m_left : parent->m_right) = node;
    HYLBasTreeRebalance(node, Header()->m_parent);
  }

  void Erase(int key) {
    m_model.Unlink(key + 2);
    Node* const z = &m_nodes[static_cast<std::size_t>(key + 1)];
    EXPECT_EQ(
        HYLBasTreeRebalanceForErase(z, Header()->m_parent, Header()->m_left, Header()->m_right), z);
    *z = {};
  }

  std::string Difference() {
    return model::Difference(m_model, Header(),
                             [&](Node* x) { return x ? static_cast<int>(x - Header()) + 1 : 0; });
  }

  // Each step forward, and back again.
  void ExpectOrder() {
    int number = m_model.First();
    for (HYLBasTreeIteratorGeneric x(Header()->m_left); x.NotEqual(Header());) {
      HYLBasTreeIteratorGeneric const before = x;
      ASSERT_EQ(x.m_node->m_valueOffset + 2, number);
      x.Next();
      number = m_model.Neighbour(number, 1);
      HYLBasTreeIteratorGeneric back = x;
      back.Previous();
      ASSERT_TRUE(back.Equal(before));
    }
    EXPECT_EQ(number, m_model.header);
  }

  Node* Header() { return m_nodes.data(); }

private:
  model::TreeMemory m_memory;
  model::PlainTree m_model;
  std::vector<Node> m_nodes;
};

TEST(TreeNode, EveryOrderOfInsertionWithEachSingleErasure) {
  std::vector<int> insertion(7);
  std::iota(insertion.begin(), insertion.end(), 0);
  do {
    for (int erased = 0; erased != 7; ++erased) {
      NodesAndModel tree(7);
      for (int const key : insertion) {
        tree.Insert(key);
        if (erased == 0) {
          ASSERT_EQ(tree.Difference(), "");
          tree.ExpectOrder();
        }
      }
      tree.Erase(erased);
      ASSERT_EQ(tree.Difference(), "");
    }
  } while (std::next_permutation(insertion.begin(), insertion.end()));
}

TEST(TreeNode, LongRandomSequences) {
  for (unsigned int size : {20u, 200u, 1000u}) {
    std::mt19937 random(size);
    NodesAndModel tree(size);
    std::vector<bool> isIn(size);
    for (int step = 0; step != 3000; ++step) {
      // Waves, so that the tree also becomes full and empty.
      bool const grows = random() % 100 < (step / 500 % 2 == 0 ? 80u : 20u);
      auto const key = static_cast<unsigned int>(random() % size);
      if (isIn[key] == grows) continue;
      isIn[key] = grows;
      grows ? tree.Insert(static_cast<int>(key)) : tree.Erase(static_cast<int>(key));
      ASSERT_EQ(tree.Difference(), "") << "step " << step << " of size " << size;
      if (step % 10 == 0) tree.ExpectOrder();
    }
  }
}

TEST(TreeNode, InsertionNeverLooksThroughTheRootsParent) {
  Node a = {e_black, 0, nullptr, nullptr, nullptr}, b = {e_red, 0, &a, nullptr, nullptr}, c = b;
  Node* root = &a;
  a.m_right = &b;
  c.m_parent = &b;
  b.m_right = &c;
  HYLBasTreeRebalance(&c, root);
  EXPECT_TRUE(root == &b && b.m_left == &a && b.m_right == &c && b.m_parent == nullptr);
}

TEST(TreeNode, RotationsAreEachOthersInverse) {
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

TEST(TreeNode, ValueLiesAtTheNodesOwnOffset) {
  alignas(Node) char block[sizeof(Node) + 64];
  Node* const node = reinterpret_cast<Node*>(block);
  for (int const offset : {24, 40}) {
    node->m_valueOffset = offset;
    HYLBasTreeIteratorGeneric const position(static_cast<Node const*>(node));
    EXPECT_EQ(position.Dereference(), block + offset);
    EXPECT_TRUE(position.Equal(&position));
    EXPECT_FALSE(position.NotEqual(&position));
    EXPECT_FALSE(position.Equal(HYLBasTreeIteratorGeneric(node + 1)));
  }
}

} // namespace
