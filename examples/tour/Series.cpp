#include "Series.h"

#include <cmath>
#include <memory>
#include <stdexcept>

#include "FileCheck.h"
#include "HYLBasVectorTextFile.h"
#include "Printable.h"

namespace {

// Values beyond this are no measurements, and sums of smaller ones cannot overflow.
constexpr double largestValue = 1e100;

template <class T>
HYLBasVector<double> ReadValues(char const* fileName) {
  std::unique_ptr<HYLBasVector<T>> const read(HYLBasVectorRead<T>(fileName));
  HYLBasVector<double> values;
  values.reserve(read->size());
  for (T const value : *read)
    values.push_back(static_cast<double>(value));
  return values;
}

} // namespace

Series ReadSeries(char const* fileName) {
  CheckedFile const file = CheckFile(fileName);
  Series series;
  series.values = file.isInteger ? ReadValues<int>(fileName) : ReadValues<double>(fileName);
  std::string const name = Printable(fileName);
  if (series.values.size() != file.count)
    throw std::runtime_error(name + ": it changed while it was read");
  for (unsigned int i = 0; i != series.values.size(); ++i)
    if (!(std::abs(series.values[i]) <= largestValue)) // also when it is not a number
      throw BrokenFile(name + ": value " + std::to_string(i + 1) + " is " +
                       std::to_string(series.values[i]) + ", which cannot be charted");
  series.description = file.comments;
  if (series.description.empty()) series.description.push_back(name);
  return series;
}
