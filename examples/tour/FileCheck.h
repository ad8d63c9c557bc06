/// \file
/// Looks at a vector file before the library reads it. The library's reader takes what it can and
/// skips the rest without a word; this tells a person where a file is not what they think.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

/// A file that is no whole vector of numbers. The reason names it.
struct BrokenFile : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct CheckedFile {
  bool isInteger = false; ///< as the banner says; real numbers without one
  std::vector<std::string> comments;
  unsigned int count = 0; ///< of the values that it announces and holds
};

/// Throws `BrokenFile`, or another exception for a file that cannot be read at all. Says on the
/// standard error stream which lines the reader will skip or cut.
CheckedFile CheckFile(char const* fileName);
