/// \file
/// The data of the tour: one value per year, from a vector file.
#pragma once

#include <string>
#include <vector>

#include "HYLBasVector.h"

struct Series {
  std::vector<std::string> description; ///< the file's comments, or its name
  HYLBasVector<double> values;
  int firstYear = 0;

  int YearOf(unsigned int i) const { return firstYear + static_cast<int>(i); }
};

/// Reads the integer or real vector file into `series`. Returns whether the file is whole: where it
/// is not, the reason is on the standard error stream.
bool ReadSeries(char const* fileName, Series& series);
