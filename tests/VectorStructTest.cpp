// What the record vector has beside the type-erased core, whose operations VectorGenericTest covers
// for both.
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "HYLBasVectorStruct.h"
#include "support/RecordingMemory.h"

namespace {

using ByFunction = HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>;
using Bytewise = HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator>;

template <class V>
class RecordVector : public testing::Test {};
using RecordVectors = testing::Types<ByFunction, Bytewise>;
TYPED_TEST_SUITE(RecordVector, RecordVectors, );

std::string Text(void const* first, std::size_t bytes) {
  return std::string(static_cast<char const*>(first), bytes);
}

// Built from a size alone: no copy function is there, and records are bytes.
TYPED_TEST(RecordVector, HoldsRecordsOfASizeAlone) {
  char const text[] = "firstsecondthird";
  recording::Reset(text, sizeof text);
  {
    TypeParam v(12, 3), none(12, 0);
    EXPECT_EQ(none.Begin(), nullptr);
    none.Init(2u);
    EXPECT_TRUE(v.size() == 3 && v.Capacity() == 3 && none.Capacity() == 2);
    EXPECT_EQ(Text(v.Begin(), 36), std::string(36, '\0'));
    EXPECT_EQ(Text(none.Begin(), 24), std::string(24, '\0'));

    TypeParam words(5, 2, text); // fewer than are filled bytewise
    words.PushBack(text + 5);
    words.Insert(words.Begin(), text + 11);
    words.Erase(words.Item(1));
    EXPECT_EQ(Text(words.Begin(), 15), "thirdfirstsecon");
    TypeParam const copy(words);
    EXPECT_EQ(Text(copy[1], 5), "first");
    TypeParam other(12, 0);
    swap(words, other); // found by its argument
    swap(words, other);
    words.clear();
    EXPECT_EQ(words.size(), 0u);
    words.assign(2, text);
    words.resize(3, text + 11);
    EXPECT_EQ(Text(words[0], 15), "firstfirstthird");
    EXPECT_EQ(copy.ItemConst(2), static_cast<char const*>(copy.End()) - 5);
    EXPECT_EQ(words.Item(-1), static_cast<char*>(words.Begin()) - 5);
  }
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

TYPED_TEST(RecordVector, ResizesToZerosUpToTheEndOfStorage) {
  recording::Reset(nullptr, 0);
  TypeParam v(6, 2, "xxxxxx");
  v.Resize(5);
  void* const block = v.Begin();
  EXPECT_EQ(Text(block, 60), std::string(12, 'x') + std::string(48, '\0'));
  recording::FailRequest(1);
  EXPECT_THROW(v.Resize(40), std::bad_alloc);
  EXPECT_TRUE(v.Begin() == block && v.Size() == 5 && v.Capacity() == 10);
}

TYPED_TEST(RecordVector, IsWalkedByItsIterator) {
  recording::Reset(nullptr, 0);
  TypeParam v(8, 3);
  int count = 0;
  for (void* record : v)
    EXPECT_EQ(record, v.Item(count++));
  EXPECT_EQ(count, 3);

  using Iterator = typename TypeParam::iterator;
  Iterator it = v.begin(), later = it++;
  EXPECT_EQ(later, v.begin());
  EXPECT_EQ(*it, v[1]);
  EXPECT_EQ((++it).operator->(), v[2]);
  EXPECT_EQ(it--.Dereference(), v[2]);
  EXPECT_EQ(*--it, v[0]);
  it.Increment(), it.Increment(), it.Decrement();
  EXPECT_EQ(it, Iterator(static_cast<char*>(v[1]), 3)); // whatever the steps
  it = v[2];
  EXPECT_EQ(++it, v.end());
  EXPECT_TRUE(Iterator() != v.begin());
  EXPECT_EQ(*++Iterator(), nullptr); // a step of 0

  Iterator of(&v), assigned;
  EXPECT_EQ(*of, nullptr);
  of.Set(v[0]);
  EXPECT_EQ(*++of, v[1]);
  assigned = of; // with the step
  EXPECT_EQ(*++assigned, v[2]);
  EXPECT_EQ(sizeof(Iterator), 3 * sizeof(void*));
  static_assert(std::is_convertible_v<TypeParam*, Iterator>);
  static_assert(std::is_convertible_v<int, HYLBasReplicatorGeneric> &&
                std::is_convertible_v<int, HYLAspStructReplicator>);
}

TEST(RecordReplicator, MovesWithOverlapInEitherDirection) {
  HYLAspStructReplicator replicator(3);
  EXPECT_EQ(replicator.m_size, 3);
  EXPECT_EQ(replicator.m_destroy, nullptr);
  std::string text = "abcdefghijkl";
  replicator.m_copy(text.data(), text.data() + 3, 3);
  EXPECT_EQ(text, "abcabcdefghi");
  replicator.m_copy(text.data() + 3, text.data(), 3);
  EXPECT_EQ(text, "abcdefghighi");
  replicator.m_copy(nullptr, nullptr, 0);
  EXPECT_EQ(sizeof replicator, sizeof(void*) * 2);
  EXPECT_EQ(sizeof(Bytewise), sizeof(ByFunction) - sizeof(void*));
}

} // namespace
