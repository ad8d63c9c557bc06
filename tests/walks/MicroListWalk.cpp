// Micro lists beside vectors of their numbers, with every request and release.
#include "HYLBasMicroList.h"
#include "walks/Choices.h"

namespace {

using List = HYLBasMicroList<int>;
static_assert(sizeof(List) == 2 * sizeof(void*));

struct Slot {
  alignas(List) unsigned char place[sizeof(List)] = {};
  List& list = *new (place) List;
  std::vector<int> items;
  int block = -1;
};

} // namespace

WALK(60, 400) {
  recording::Reset(nullptr, 0);
  int const oddLengths[] = {-1, 0, 127, 128, 1073741825};
  int const notInitialised = static_cast<int>(0xA5A5A5A5);
  int nextNumber = 1;
  Slot slots[3];
  while (choices.More()) {
    Slot &slot = choices.Of(slots), &other = choices.Of(slots);
    std::vector<recording::Event> expected;
    if (choices.OneIn(4)) {
      EXPECT_EQ(&(slot.list = other.list), &slot.list); // keeps what it has
      for (std::size_t i = 0; i != slot.items.size(); ++i)
        slot.list[static_cast<int>(i)] = slot.items[i] = static_cast<int>(i * choices.Below(256));
    } else {
      if (slot.block >= 0) expected.push_back({'F', {slot.block, 0}, {-1, 0}, 0});
      slot.list.~List();
      for (std::size_t i = 0; i != sizeof(void*) + 1; ++i)
        ASSERT_EQ(static_cast<unsigned char volatile*>(slot.place)[i], 0) << "left behind";
      bool const copies = &slot != &other && choices.OneIn(2), fails = choices.OneIn(4);
      int const length = static_cast<int>(choices.Below(128)),
                n = copies             ? static_cast<int>(other.items.size())
                    : choices.OneIn(2) ? choices.Of(oddLengths)
                                       : length;
      recording::FailRequest(fails);
      copies ? new (slot.place) List(std::as_const(other.list)) : new (slot.place) List(n);
      recording::FailRequest(0);
      bool const hasBlock = !fails && n >= 0 && n < 128;
      slot.block = hasBlock ? nextNumber++ : -1;
      std::vector<int> const fresh(hasBlock ? static_cast<std::size_t>(n) : 0, notInitialised);
      slot.items = hasBlock && copies ? other.items : fresh;
      if (hasBlock) expected.push_back({'A', {-1, 0}, {-1, 0}, 4 * slot.items.size()});
    }
    ASSERT_TRUE(recording::Events() == expected);
    recording::Events().clear();
    for (Slot& each : slots)
      for (int i = 0; i != std::ssize(each.items); ++i) {
        ASSERT_EQ(recording::Locate(&each.list[i]), (recording::Place{each.block, 4 * i}));
        ASSERT_TRUE(each.list[i] == each.items[i] && &each.list.Get(i) == &each.list[i]);
      }
  }
  for (Slot& slot : slots)
    slot.list.~List();
  EXPECT_EQ(recording::LiveBlocks(), 0u);
}
