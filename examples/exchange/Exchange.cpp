// Hands containers to and fro between two libraries that different compilers built: a vector whose
// block changes owner, a tree that one fills and the other empties, a table that looks at the
// vector's own block, a map. At the end the memory library says whether anything was left behind.
// Argument: a text file of whole numbers, one a year from 1871 on.
#include <cstdio>

#include <HYLBasMap.h>
#include <HYLBasVector.h>

#include "forecast/Forecast.h"
#include "gauges/Gauges.h"

namespace {

constexpr int firstYear = 1871, years = 10; // of the series, and of a decade

void ShowPool(char const* when) {
  HYLBasMemPoolMap& pool = omi_Singleton<HYLBasMemPoolMap>::Instance();
  std::printf("  %-28s %6u bytes in use, %6u at most\n", when, pool.MemoryCurrent(),
              pool.MemoryPeak());
}

// The driest years are taken out of the index, which has the others left.
void ShowDriest(HYLBasVectorGeneric const& readings) {
  ReadingsByFlow index = Gauges_Index(readings);
  ShowPool("index made by gauges:");
  HYLBasMap<int, double> const driest = Forecast_TakeDriest(index, index.Size() / 2);
  ShowPool("half taken by forecast:");
  auto const* const next = static_cast<Reading const*>(index.Value(index.Begin()));
  std::printf("\ndrier than %d, which had %.0f, were %u years:", next->year, next->flow,
              driest.size());
  for (auto const& [year, flow] : driest)
    if (flow < 700) std::printf(" %d (%.0f)", year, flow);
  std::printf(" and others\n");
}

void ShowDecades(HYLBasVectorGeneric const& readings) {
  HYLBasVector<double> flows, means;
  for (unsigned int i = 0; i != readings.Size(); ++i)
    flows.push_back(static_cast<Reading const*>(readings.Begin())[i].flow);
  int const decades = static_cast<int>(flows.size()) / years;
  Forecast_RowMeans(flows.begin(), decades, years, means);
  std::printf("\nmeans of the decades from %d on:", firstYear);
  for (double const mean : means)
    std::printf(" %.1f", mean);
  std::printf("\n");
}

} // namespace

int main(int argc, char** argv) {
  if (argc != 2) return std::fputs("usage: exchange FILE\n", stderr), 2;
  std::printf("gauges was compiled by   %s\nforecast was compiled by %s\n\nmap pool\n",
              Gauges_Compiler(), Forecast_Compiler());
  ShowPool("at the start:");
  {
    HYLBasVectorGeneric readings = Gauges_NoReadings();
    Gauges_Read(argv[1], firstYear, readings);
    if (readings.Size() == 0) return 1; // which the reader has told of
    ShowDriest(readings);
    ShowDecades(readings);
  }
  std::printf("\nmap pool\n");
  ShowPool("at the end:");
  return omi_Singleton<HYLBasMemPoolMap>::Instance().MemoryCurrent() == 0 ? 0 : 1;
}
