// What the record vector has beside the type-erased core, whose operations VectorGenericTest covers
// for both.
#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>

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

bool IsZero(void const* first, void const* last) {
  return std::all_of(static_cast<char const*>(first), static_cast<char const*>(last),
                     [](char byte) { return byte == 0; });
}

// Built from a size alone: no copy function is there, and records are bytes.
TYPED_TEST(RecordVector, HoldsRecordsOfASizeAlone) {
  char const text[] = "firstsecondthird";
  recording::Reset(text, sizeof text);
  {
    TypeParam v(12, 3);
    EXPECT_EQ(v.Size(), 3u);
    EXPECT_EQ(v.size(), 3u);
    EXPECT_EQ(v.Capacity(), 3u);
    EXPECT_EQ(static_cast<char*>(v.End()) - static_cast<char*>(v.Begin()), 36);
    EXPECT_TRUE(IsZero(v.Begin(), v.End()));

    TypeParam words(5, 2, text); // fewer than are filled bytewise
    words.PushBack(text + 5);
    words.Insert(words.Begin(), text + 11);
    words.Erase(words.Item(1));
    EXPECT_EQ(std::string(static_cast<char*>(words.Begin()), 15), "thirdfirstsecon");
    TypeParam const copy(words);
    EXPECT_EQ(std::string(static_cast<char const*>(copy[1]), 5), "first");
    words.clear();
    words.assign(2, text);
    words.resize(3, text + 11);
    EXPECT_EQ(std::string(static_cast<char*>(words[0]), 15), "firstfirstthird");
    EXPECT_EQ(copy.ItemConst(2), static_cast<char const*>(copy.End()) - 5);
    EXPECT_EQ(words.Item(-1), static_cast<char*>(words.Begin()) - 5);

    TypeParam none(12, 0);
    EXPECT_EQ(none.Begin(), nullptr);
    none.Init(2u);
    EXPECT_EQ(none.Capacity(), 2u);
    EXPECT_TRUE(IsZero(none.Begin(), none.End()));
  }
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}

TYPED_TEST(RecordVector, ResizesToZerosUpToTheEndOfStorage) {
  recording::Reset(nullptr, 0);
  TypeParam v(6, 2);
  std::memset(v.Begin(), 'x', 12);
  v.Resize(5);
  EXPECT_EQ(v.Size(), 5u);
  EXPECT_EQ(v.Capacity(), 10u);
  char* const first = static_cast<char*>(v.Begin());
  EXPECT_EQ(std::string(first, 12), "xxxxxxxxxxxx");
  EXPECT_TRUE(IsZero(first + 12, first + 60));
  v.Resize(v.Size());
  EXPECT_NE(v.Begin(), first);
  EXPECT_EQ(v.Capacity(), 16u);
  void* const block = v.Begin();
  v.resize(1);
  EXPECT_EQ(v.Size(), 1u);
  EXPECT_EQ(v.Begin(), block);
  recording::FailRequest(1);
  EXPECT_THROW(v.Resize(40), std::bad_alloc);
  EXPECT_EQ(v.Begin(), block);
}

TYPED_TEST(RecordVector, IsWalkedByItsIterator) {
  recording::Reset(nullptr, 0);
  TypeParam v(8, 3);
  unsigned int count = 0;
  for (void* record : v)
    EXPECT_EQ(record, v.Item(static_cast<int>(count++)));
  EXPECT_EQ(count, 3u);

  using Iterator = typename TypeParam::iterator;
  Iterator it = v.begin(), later = it++;
  EXPECT_EQ(later, v.begin());
  EXPECT_EQ(*it, v[1]);
  EXPECT_EQ((++it).operator->(), v[2]);
  EXPECT_EQ(it--.Dereference(), v[2]);
  EXPECT_EQ(*--it, v[0]);
  it.Increment(), it.Increment(), it.Decrement();
  EXPECT_EQ(*it, v[1]);
  EXPECT_EQ(it, Iterator(static_cast<char*>(v[1]), 3)); // whatever the steps
  it = v[2];
  EXPECT_EQ(++it, v.end());
  EXPECT_TRUE(Iterator() != v.begin());
  EXPECT_EQ(*++Iterator(), nullptr); // a step of 0

  Iterator of(&v);
  EXPECT_EQ(*of, nullptr);
  of.Set(v[0]);
  EXPECT_EQ(*++of, v[1]);
  Iterator steps;
  steps = of; // with the step
  EXPECT_EQ(*++steps, v[2]);
  EXPECT_EQ(sizeof(Iterator), 3 * sizeof(void*));
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
