// A small host that supplies the two services the library asks of it: a memory library that counts
// and keeps to a budget, and a report of failed assertions that throws. docs/hosting.md tells how
// it is built.
#include <cstdio>
#include <new>

#include <HYLBasGenerics.h>

#include "HostError.h"
#include "HostHeap.h"

namespace {

void Show(char const* when) {
  host::HeapUse const use = host::InUse();
  std::printf("%-28s %6llu bytes in %3llu blocks\n", when, use.bytes, use.blocks);
}

int extensions = 0;

void ExtendBudget() {
  ++extensions;
  host::SetBudget(host::InUse().bytes + 4000);
}

// Appends far more than the budget: each time it is used up, the new handler extends it.
void OutgrowTheBudget() {
  host::SetBudget(host::InUse().bytes + 100);
  std::set_new_handler(ExtendBudget);
  HYLBasMap<int, int> map;
  for (int i = 0; i != 1000; ++i)
    map[i] = i;
  Show("a map of 1000, over budget:");
  std::printf("the budget was extended %s\n", extensions > 5 ? "several times" : "too rarely");
  std::set_new_handler(nullptr);
  host::SetBudget(~0ull);
}

void LookOutsideAnArray() {
  HYLBasArray2D<double, 0> array(2, 3, 1.5);
  try {
    array(2, 0) = 0;
  } catch (host::FailedAssertion const& failure) {
    std::printf("caught: %s\n", failure.what());
  }
}

} // namespace

int main() {
  unsigned long long const before = host::InUse().blocks;
  {
    HYLBasVector<int> squares;
    for (int i = 0; i != 100; ++i)
      squares.push_back(i * i);
    Show("a vector of 100 numbers:");
    OutgrowTheBudget();
    LookOutsideAnArray();
  }
  Show("at the end:");
  return host::InUse().blocks == before ? 0 : 1;
}
