#include "Forecast.h"

#include <HYLBasArray2D.h>

HYLBasMap<int, double> Forecast_TakeDriest(ReadingsByFlow& index, unsigned int count) {
  HYLBasMap<int, double> driest;
  for (; count != 0 && !index.Empty(); --count) {
    auto const* const least = static_cast<Reading const*>(index.Value(index.Begin()));
    driest.Insert(least->year, least->flow);
    index.Erase(index.Begin()); // a node that the other library made
  }
  return driest;
}

void Forecast_RowMeans(double* block, int rows, int columns, HYLBasVector<double>& means) {
  using Table = HYLBasArray2D<double, 0>;
  Table const table(rows, columns, block, Table::e_pointerValue, Table::e_borrow);
  for (int i = 0; i != rows; ++i) {
    double sum = 0;
    for (int j = 0; j != columns; ++j)
      sum += table(i, j);
    means.push_back(sum / columns);
  }
}

char const* Forecast_Compiler() { return EXCHANGE_COMPILER; }
