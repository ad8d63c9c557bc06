#include <algorithm>
#include <cstdio>
#include <string>

#include "HYLBasArray2D.h"
#include "TourReport.h"

namespace {

constexpr int mostRows = 12;

using ByRows = HYLBasArray2D<double, 0>;    // a decade is a row
using ByColumns = HYLBasArray2D<double, 1>; // a decade is a column

// Both look at the vector's own block, where the years of a decade lie side by side: nothing is
// copied, and none of them releases it.
struct Decades {
  explicit Decades(HYLBasVector<double>& values)
      : block(values.begin()), years(std::min(10, static_cast<int>(values.size()))),
        count(static_cast<int>(values.size()) / years) {}

  ByRows Rows() const { return {count, years, block, ByRows::e_pointerValue, ByRows::e_borrow}; }
  ByColumns Columns() const {
    return {years, count, block, ByColumns::e_pointerValue, ByColumns::e_borrow};
  }

  double* block;
  int years; // of a decade; fewer when there are not ten
  int count; // whole decades
};

double MeanOf(HYLBasVector<double> const& values) {
  double sum = 0;
  for (double const value : values)
    sum += value;
  return sum / values.size();
}

HYLBasVector<double> RowMeans(Decades const& decades) {
  ByRows const rows = decades.Rows();
  HYLBasVector<double> means, decade;
  for (int i = 0; i < rows.GetNumberOfRows(); ++i) {
    rows.GetRowCopy(i, decade);
    means.push_back(MeanOf(decade));
  }
  return means;
}

// A borrowing array made in place as the argument: the norms copy nothing.
bool PrintNorms(Series const& series, Decades const& decades, HYLBasVector<double> const& means) {
  std::printf("  %-13s %10s %12s %12s %10s\n", "decade", "mean", "sum of |x|", "length", "largest");
  for (int i = 0; i < std::min(decades.count, mostRows); ++i) {
    double const sum = RowNorm(decades.Rows(), i, ByRows::e_norm1);
    double const length = RowNorm(decades.Rows(), i, ByRows::e_norm2);
    double const largest = RowNorm(decades.Rows(), i, ByRows::e_normInf);
    auto const first = static_cast<unsigned int>(i * decades.years);
    std::printf("  %5d - %-5d %10.2f %12.2f %12.2f %10.10g\n", series.YearOf(first),
                series.YearOf(first + static_cast<unsigned int>(decades.years) - 1),
                means[static_cast<unsigned int>(i)], sum, length, largest);
    if (ColumnNorm(decades.Columns(), i, ByColumns::e_norm2) != length) {
      std::fprintf(stderr, "tour: decade %d has one length as a row, another as a column\n", i);
      return false;
    }
  }
  if (decades.count > mostRows) std::printf("  and %d more\n", decades.count - mostRows);
  return true;
}

void PrintExtremes(Series const& series, Decades const& decades,
                   HYLBasVector<double> const& means) {
  int const chosen[] = {
      static_cast<int>(std::max_element(means.begin(), means.end()) - means.begin()),
      static_cast<int>(std::min_element(means.begin(), means.end()) - means.begin())};
  ByRows extremes(0, 0, 0.0);
  decades.Rows().ExtractRows(chosen, std::min(2, decades.count), extremes);
  std::printf("\n  The decades of the highest and of the lowest mean, extracted:\n\n");
  for (int i = 0; i < extremes.GetNumberOfRows(); ++i) {
    std::printf("  from %5d ", series.YearOf(static_cast<unsigned int>(chosen[i] * decades.years)));
    for (int j = 0; j < extremes.GetNumberOfColumns(); ++j) {
      // Not as wide by itself: mingw-w64's %g comes out short where the number ends in zeros.
      char text[32];
      std::snprintf(text, sizeof text, "%.10g", extremes(i, j));
      std::printf(" %5s", text);
    }
    std::printf("\n");
  }
}

} // namespace

bool ReportDecades(Series const& series) {
  HYLBasVector<double> values = series.values; // an array that borrows could change them
  Decades const decades(values);
  HYLBasVector<double> const means = RowMeans(decades);
  std::printf("  %d by %d values, seen by rows and by columns in the vector's own block\n\n",
              decades.count, decades.years);
  if (!PrintNorms(series, decades, means)) return false;
  PrintExtremes(series, decades, means);

  ByRows rows = decades.Rows();
  if (rows.GetPointerToMemory() != values.begin() ||
      decades.Columns().GetPointerToMemory() != values.begin()) {
    std::fprintf(stderr, "tour: a borrowed block was copied\n");
    return false;
  }
  return true;
}
