#include "Series.h"

#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <sstream>

#include "HYLBasVectorTextFile.h"

namespace {

// Values beyond this are no measurements, and sums of smaller ones cannot overflow.
constexpr double largestValue = 1e100;

struct Header {
  bool isInteger = false;
  std::vector<std::string> comments;
};

// Which vector a file belongs into is for its reader to know. Its banner tells, by the fourth word.
Header ReadHeader(char const* fileName) {
  Header header;
  std::ifstream in(fileName);
  for (std::string line; std::getline(in, line) && line.starts_with('%');) {
    if (line.ends_with('\r')) line.pop_back();
    if (!line.starts_with("%%MatrixMarket")) {
      std::size_t const text = line.find_first_not_of("% ");
      if (text != line.npos) header.comments.push_back(line.substr(text));
      continue;
    }
    std::istringstream words(line);
    std::string field;
    if (words >> field >> field >> field >> field)
      header.isInteger = field == "integer" || (header.isInteger && field != "real");
  }
  return header;
}

template <class T>
bool ReadValues(char const* fileName, HYLBasVector<double>& values) {
  std::unique_ptr<HYLBasVector<T>> const read(HYLBasVectorRead<T>(fileName));
  if (read->empty()) {
    std::fprintf(stderr, "tour: there are no values in %s\n", fileName);
    return false;
  }
  // The capacity is the number of values that the file announces.
  if (read->size() != read->capacity()) {
    std::fprintf(stderr, "tour: %s announces %u values and holds %u\n", fileName, read->capacity(),
                 read->size());
    return false;
  }
  values.reserve(read->size());
  for (T const value : *read)
    values.push_back(static_cast<double>(value));
  return true;
}

} // namespace

bool ReadSeries(char const* fileName, Series& series) {
  Header const header = ReadHeader(fileName);
  if (!(header.isInteger ? ReadValues<int>(fileName, series.values)
                         : ReadValues<double>(fileName, series.values)))
    return false;
  for (unsigned int i = 0; i != series.values.size(); ++i)
    if (!(std::abs(series.values[i]) <= largestValue)) { // also when it is not a number
      std::fprintf(stderr, "tour: value %u of %s is %g, which cannot be charted\n", i + 1, fileName,
                   series.values[i]);
      return false;
    }
  series.description = header.comments;
  if (series.description.empty()) series.description.emplace_back(fileName);
  return true;
}
