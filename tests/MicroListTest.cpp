#include <gtest/gtest.h>

#include "HYLBasMicroList.h"
#include "support/RecordingMemory.h"

namespace {

using List = HYLBasMicroList<int>;
static_assert(sizeof(List) == 2 * sizeof(void*));

// The bytes of every request since the last call; every other event is a release.
std::vector<std::size_t> Requests() {
  std::vector<std::size_t> bytes;
  for (auto const& event : recording::Events())
    if (event.kind == 'A') bytes.push_back(event.n);
  recording::Events().clear();
  return bytes;
}

TEST(MicroList, OwnsABlockOfItsLength) {
  recording::Reset(nullptr, 0);
  {
    List list(3);
    EXPECT_EQ(Requests(), std::vector<std::size_t>{12});
    for (int i : {0, 1, 2})
      list[i] = 10 * i;
    EXPECT_EQ(&list.Get(2), &list[2]);

    List copy(list);
    EXPECT_EQ(Requests(), std::vector<std::size_t>{12});
    copy[1] = -1;
    EXPECT_EQ(list[1], 10);
    EXPECT_EQ(copy.Get(2), 20);

    int* const block = &copy[0];
    EXPECT_EQ(&(copy = list), &copy); // keeps what it has
    EXPECT_EQ(&copy[0], block);
    EXPECT_EQ(copy[1], -1);
    EXPECT_EQ(recording::LiveBlocks(), 2u);
  }
  EXPECT_EQ(recording::LiveBlocks(), 0u);
  List const longest(127);
  EXPECT_EQ(Requests(), std::vector<std::size_t>{508});
}

TEST(MicroList, DestructionLeavesNothingBehind) {
  recording::Reset(nullptr, 0);
  alignas(List) unsigned char place[sizeof(List)] = {};
  (new (place) List(3))->~List();
  for (std::size_t i = 0; i != sizeof(void*) + 1; ++i)
    EXPECT_EQ(static_cast<unsigned char volatile*>(place)[i], 0);
}

TEST(MicroList, IsEmptyWithoutALengthOrMemory) {
  recording::Reset(nullptr, 0);
  { List const none, negative(-1), tooLong(128), huge(1073741825), copy(huge); }
  EXPECT_EQ(Requests(), std::vector<std::size_t>{0}); // the copy's, of no elements
  { List const noElements(0); }
  EXPECT_EQ(Requests(), std::vector<std::size_t>{0});
  recording::FailRequest(1);
  List const failed(4);
  recording::Events().clear();
  List const copyOfFailed(failed);
  EXPECT_EQ(Requests(), std::vector<std::size_t>{0});

  List source(2);
  source[0] = source[1] = 5;
  Requests();
  recording::FailRequest(1);
  { List const failedCopy(source); }
  EXPECT_TRUE(recording::Events().empty()); // nothing obtained, nothing given back
  EXPECT_EQ(recording::LiveBlocks(), 2u);
}

} // namespace
