#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "HYLBasMap.h"
#include "TourReport.h"

namespace {

constexpr int mostClasses = 12;
constexpr int longestBar = 30;

// Classes of equal width, numbered from 0; width and lowest limit are round numbers.
class Classes {
public:
  Classes(double lowest, double highest) {
    // Not so small that the limits could not be told apart.
    double const least = 1e-9 * std::max(std::abs(lowest), std::abs(highest));
    double range = std::max(highest - lowest, least);
    if (range == 0) range = 1;
    double const unit = std::pow(10, std::floor(std::log10(range / mostClasses)));
    for (double const factor : {1, 2, 5, 10, 20}) {
      m_width = unit * factor;
      m_start = std::floor(lowest / m_width) * m_width;
      if ((highest - m_start) / m_width < mostClasses) break;
    }
  }
  int Of(double value) const {
    return std::max(0, static_cast<int>(std::floor((value - m_start) / m_width)));
  }
  double Start(int number) const { return m_start + number * m_width; }

private:
  double m_start = 0;
  double m_width = 1;
};

} // namespace

bool ReportMap(Series const& series) {
  HYLBasVector<double> const& values = series.values;
  Classes const classes(*std::min_element(values.begin(), values.end()),
                        *std::max_element(values.begin(), values.end()));
  HYLBasMap<int, int> counts, firstYears, lastYears;
  for (unsigned int i = 0; i != values.size(); ++i) {
    int const number = classes.Of(values[i]);
    ++counts[number];                               // 0 when it is new
    firstYears.Insert(number, series.YearOf(i));    // keeps the year that is there
    lastYears.InsertOver(number, series.YearOf(i)); // replaces it
  }

  int most = 0;
  for (auto const& element : counts)
    most = std::max(most, element.second);
  std::printf("  %10s %6s   %6s %6s\n", "flow from", "years", "first", "last");
  unsigned int years = 0;
  bool isWhole = true;
  auto first = firstYears.begin(), last = lastYears.begin();
  for (auto const& [number, count] : counts) {
    auto const length = static_cast<std::size_t>((count * longestBar + most - 1) / most);
    std::printf("  %10.6g %6d   %6d %6d  %s\n", classes.Start(number), count, first->second,
                last->second, std::string(length, '#').c_str());
    years += static_cast<unsigned int>(count);
    isWhole =
        isWhole && first->first == number && last->first == number && first->second <= last->second;
    ++first;
    ++last;
  }
  if (!isWhole || years != values.size() || first != firstYears.end() || last != lastYears.end()) {
    std::fprintf(stderr, "tour: the maps do not hold what was put into them\n");
    return false;
  }
  std::printf(
      "\n  Insert kept the first year of each class, InsertOver replaced it by the last.\n");
  return true;
}
