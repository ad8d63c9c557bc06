#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <string>

#include "HYLBasVectorTextFile.h"
#include "Printable.h"
#include "TourReport.h"

namespace {

// The reader takes longer lines in pieces, and would take the second for the size line.
constexpr std::size_t longestComment = 252;

// A file of this run alone, in the system's folder for such files; gone with the object.
class ScratchFile {
public:
  ScratchFile()
      : m_path((std::filesystem::temp_directory_path() /
                ("tour-" + std::to_string(std::random_device()()) + ".mtx"))
                   .string()) {}
  ~ScratchFile() {
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
  }
  ScratchFile(ScratchFile const&) = delete;
  ScratchFile& operator=(ScratchFile const&) = delete;
  char const* Name() const { return m_path.c_str(); }

private:
  std::string m_path;
};

HYLBasVector<double> PlacesBetweenExtremes(HYLBasVector<double> const& values) {
  double const lowest = *std::min_element(values.begin(), values.end());
  double const range = *std::max_element(values.begin(), values.end()) - lowest;
  HYLBasVector<double> places;
  places.reserve(values.size());
  for (double const value : values)
    places.push_back(range > 0 ? 100 * (value - lowest) / range : 0);
  return places;
}

void PrintBeginning(char const* fileName, int lines) {
  std::ifstream in(fileName);
  std::string line;
  for (; lines != 0 && std::getline(in, line); --lines)
    std::printf("    %s\n", Printable(line).c_str());
  if (std::getline(in, line)) std::printf("    ...\n");
}

double LargestDifference(HYLBasVector<double> const& a, HYLBasVector<double> const& b) {
  double largest = 0;
  for (unsigned int i = 0; i != a.size(); ++i)
    largest = std::max(largest, std::abs(a[i] - b[i]));
  return largest;
}

} // namespace

bool ReportTextFile(Series const& series) {
  HYLBasVector<double> const places = PlacesBetweenExtremes(series.values);
  ScratchFile const file;
  std::string const origin = series.description.front().substr(0, longestComment);
  HYLBasVectorWrite(places, file.Name(), "Place between the lowest (0) and the highest (100) value",
                    origin.c_str());
  std::printf("  A vector of double computed from these values, as a file:\n\n");
  PrintBeginning(file.Name(), 7);

  std::unique_ptr<HYLBasVector<double>> const back(HYLBasVectorRead<double>(file.Name()));
  if (back->size() != places.size()) {
    std::fprintf(stderr, "tour: %u values were written to %s and %u read back\n", places.size(),
                 file.Name(), back->size());
    return false;
  }
  // Files keep six digits after the decimal point: half a unit of the sixth may be lost, and a
  // little more in the places' own last bits.
  double const difference = LargestDifference(places, *back);
  if (!(difference <= 0.5e-6 + 1e-13)) {
    std::fprintf(stderr, "tour: a value came back with a difference of %g\n", difference);
    return false;
  }
  std::printf("\n  Read back: %u value%s, with a difference of at most %.1e;\n"
              "  the six digits that a file keeps allow 5.0e-07.\n",
              back->size(), back->size() == 1 ? "" : "s", difference);
  return true;
}
