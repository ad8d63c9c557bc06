#include <algorithm>
#include <cmath>
#include <cstdio>

#include "HYLBasSortGenericIx.h"
#include "HYLBasSortSpecial.h"
#include "TourReport.h"

namespace {

constexpr unsigned int longestList = 5;

bool IsDrier(unsigned int a, unsigned int b, void const* values, void const* /*unused*/) {
  auto const& v = *static_cast<HYLBasVector<double> const*>(values);
  return v[a] < v[b];
}

void PrintYears(char const* what, Series const& series, unsigned int const* order, int step,
                unsigned int count) {
  std::printf("  %s", what);
  for (unsigned int k = 0; k != count; ++k, order += step)
    std::printf("%8d %8.0f", series.YearOf(*order), series.values[*order]);
  std::printf("\n");
}

} // namespace

bool ReportSorts(Series const& series) {
  unsigned int const n = series.values.size();
  unsigned int const shown = std::min(n, longestList);

  // The values stay where they are; the years come out in the order of their flows.
  HYLBasVector<unsigned int> order;
  HYLBasSortGenericIx(nullptr, n, order, {IsDrier, &series.values, nullptr});
  PrintYears("driest  ", series, order.begin(), 1, shown);
  PrintYears("wettest ", series, order.end() - 1, -1, shown);

  // Two arrays sorted as one: whole flows, and the years in which they were.
  HYLBasVector<int> flows, years;
  for (unsigned int i = 0; i != n; ++i) {
    double const flow = std::clamp(std::floor(series.values[i]), -2147483648.0, 2147483647.0);
    flows.push_back(static_cast<int>(flow));
    years.push_back(series.YearOf(i));
  }
  HYLBasSort2Special(flows.begin(), flows.end(), years.begin(), years.end());
  unsigned int const middle = (n - shown) / 2;
  std::printf("\n  In the middle of all, flows and their years sorted together:\n  flow ");
  for (unsigned int k = middle; k != middle + shown; ++k)
    std::printf("%8d", flows[k]);
  std::printf("\n  year ");
  for (unsigned int k = middle; k != middle + shown; ++k)
    std::printf("%8d", years[k]);
  std::printf("\n");
  return true;
}
