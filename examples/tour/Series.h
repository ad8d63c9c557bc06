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

/// Reads the integer or real vector file, which may hold anything. Throws an exception that says
/// what is wrong with it: `BrokenFile` where another file would do.
Series ReadSeries(char const* fileName);
