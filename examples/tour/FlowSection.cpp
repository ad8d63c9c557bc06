#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>

#include "TourReport.h"

namespace {

constexpr unsigned int longestBar = 40;
constexpr unsigned int mostBars = 25;

double MeanOf(double const* first, double const* last) {
  double sum = 0;
  for (double const* p = first; p != last; ++p)
    sum += *p;
  return sum / static_cast<double>(last - first);
}

// Ten years a bar; more for long series, so that the chart fits a screen.
unsigned int YearsPerBar(unsigned int years) {
  for (unsigned int unit = 10;; unit *= 10)
    for (unsigned int const factor : {1u, 2u, 5u})
      if (years / (unit * factor) < mostBars || unit == 100000000) return unit * factor;
}

void PrintExtreme(char const* name, Series const& series, double extreme) {
  std::printf("  %-8s %10.10g  in", name, extreme);
  unsigned int shown = 0, found = 0;
  for (unsigned int i = 0; i != series.values.size(); ++i) {
    if (series.values[i] != extreme || ++found > 4) continue;
    std::printf("%s %d", shown++ == 0 ? "" : ",", series.YearOf(i));
  }
  if (found > shown) std::printf(" and %u more years", found - shown);
  std::printf("\n");
}

void PrintChart(Series const& series) {
  unsigned int const size = series.values.size();
  unsigned int const step = YearsPerBar(size);
  HYLBasVector<double> means;
  for (unsigned int i = 0; i < size; i += step)
    means.push_back(
        MeanOf(series.values.begin() + i, series.values.begin() + std::min(i + step, size)));

  double const floor = std::min(0.0, *std::min_element(means.begin(), means.end()));
  double const height = *std::max_element(means.begin(), means.end()) - floor;
  std::printf("\n  Mean of every %u years\n\n", step);
  for (unsigned int bar = 0; bar != means.size(); ++bar) {
    unsigned int const first = bar * step, last = std::min(first + step, size) - 1;
    double const share = height > 0 ? (means[bar] - floor) / height : 0;
    auto const length = static_cast<std::size_t>(std::lround(share * longestBar));
    std::printf("  %5d - %-5d %10.2f  %s\n", series.YearOf(first), series.YearOf(last), means[bar],
                std::string(length, '#').c_str());
  }
}

} // namespace

bool ReportFlow(Series const& series) {
  HYLBasVector<double> const& values = series.values;
  std::printf("  %u value%s, %d to %d\n", values.size(), values.size() == 1 ? "" : "s",
              series.YearOf(0), series.YearOf(values.size() - 1));
  std::printf("  %-8s %10.2f\n", "mean", MeanOf(values.begin(), values.end()));
  PrintExtreme("highest", series, *std::max_element(values.begin(), values.end()));
  PrintExtreme("lowest", series, *std::min_element(values.begin(), values.end()));
  PrintChart(series);
  return true;
}
