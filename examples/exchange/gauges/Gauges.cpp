#include "Gauges.h"

#include <memory>

#include <HYLBasVector.h>
#include <HYLBasVectorTextFile.h>

namespace {

bool HasLessFlow(void const* a, void const* b, void const* /*context*/) {
  return static_cast<Reading const*>(a)->flow < static_cast<Reading const*>(b)->flow;
}

} // namespace

HYLBasVectorGeneric Gauges_NoReadings() { return {HYLBasGetReplicator<Reading>(), 0, nullptr}; }

void Gauges_Read(char const* file, int firstYear, HYLBasVectorGeneric& readings) {
  std::unique_ptr<HYLBasVector<int>> const flows(HYLBasVectorRead<int>(file));
  HYLBasVectorGeneric read = Gauges_NoReadings();
  read.Reserve(flows->size());
  for (int const flow : *flows) {
    Reading const reading{firstYear + static_cast<int>(read.Size()), static_cast<double>(flow)};
    read.PushBack(&reading);
  }
  readings.swap(read); // the block is the caller's now, and the caller's old one goes with `read`
}

ReadingsByFlow Gauges_Index(HYLBasVectorGeneric const& readings) {
  constexpr int offset = sizeof(HYLBasTreeNodeGeneric);
  static_assert(offset % alignof(Reading) == 0);
  ReadingsByFlow index(HYLBasNodeOffsets(offset, offset + static_cast<int>(sizeof(Reading))),
                       HYLBasGetReplicator<Reading>(), HasLessFlow, nullptr);
  auto const* const end = static_cast<Reading const*>(readings.End());
  for (auto const* each = static_cast<Reading const*>(readings.Begin()); each != end; ++each)
    index.InsertEqual(each);
  return index;
}

char const* Gauges_Compiler() { return EXCHANGE_COMPILER; }
