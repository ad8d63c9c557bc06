// A tour of the library on real data: reads a vector file and prints a report, section by section.
// Uses the public headers only, as any library of a host would.
#include <charconv>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>
#include <system_error>

#include "TourReport.h"

namespace {

constexpr char usage[] = "Usage: tour [FILE [START_YEAR]]\n"
                         "Reads a vector file and prints a report on its values, one per year.\n"
                         "\n"
                         "  FILE        a text file with a vector of integers or real numbers;\n"
                         "              without it, the annual flow of the Nile at Aswan\n"
                         "  START_YEAR  the year of the first value; 1871 without it\n";

struct Section {
  char const* heading;
  bool (*report)(Series const& series);
};

constexpr Section sections[] = {
    {"The flow", ReportFlow},
    {"How often which flow, in a map", ReportMap},
    {"Driest and wettest, sorted", ReportSorts},
    {"Decades by years", ReportDecades},
    {"There and back as a text file", ReportTextFile},
};

void PrintUnderlined(std::string const& text) {
  std::printf("%s\n%s\n", text.c_str(), std::string(text.size(), '-').c_str());
}

// Years of at most six digits leave room to count on from them.
bool ParseYear(char const* text, int& year) {
  char const* const end = text + std::strlen(text);
  auto const result = std::from_chars(text, end, year);
  return result.ec == std::errc() && result.ptr == end && year > -1000000 && year < 1000000;
}

int Run(int argc, char** argv) {
  if (argc == 2 && std::strcmp(argv[1], "--help") == 0) {
    std::fputs(usage, stdout);
    return 0;
  }
  if (argc > 3) {
    std::fprintf(stderr, "tour: too many arguments\n%s", usage);
    return 1;
  }
  Series series;
  series.firstYear = 1871;
  if (argc > 2 && !ParseYear(argv[2], series.firstYear)) {
    std::fprintf(stderr, "tour: %s is no year\n%s", argv[2], usage);
    return 1;
  }
  if (!ReadSeries(argc > 1 ? argv[1] : TOUR_DATA, series)) return 1;

  for (std::string const& line : series.description)
    std::printf("%s\n", line.c_str());
  for (Section const& section : sections) {
    std::printf("\n");
    PrintUnderlined(section.heading);
    if (!section.report(series)) return 1;
  }
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (std::exception const& problem) {
    std::fprintf(stderr, "tour: %s\n", problem.what());
    return 1;
  }
}
