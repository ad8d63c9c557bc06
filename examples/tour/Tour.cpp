// A tour of the library on real data: reads a vector file and prints a report, section by section.
// Uses the public headers only, as any library of a host would.
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <system_error>

#include "FileCheck.h"
#include "Printable.h"
#include "TourReport.h"

namespace {

constexpr char usage[] = "Usage: tour [FILE [START_YEAR]]\n"
                         "Reads a vector file and prints a report on its values, one per year.\n"
                         "\n"
                         "  FILE        a text file with a vector of integers or real numbers;\n"
                         "              without it, the annual flow of the Nile at Aswan\n"
                         "  START_YEAR  the year of the first value, 1871 without it\n";

constexpr char rightFile[] =
    "A vector file has a banner, comments, three integers (rows, columns, values),\n"
    "and one value per line:\n"
    "\n"
    "    %%MatrixMarket vector array integer\n"
    "    % Annual flow of the Nile at Aswan\n"
    "    3 1 3\n"
    "    1120\n"
    "    1160\n"
    "    963\n"
    "\n"
    "For numbers with a decimal point the banner says \"real\" in place of \"integer\".\n";

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

int Misused(std::string const& problem) {
  std::fprintf(stderr, "tour: %s\n%s", problem.c_str(), usage);
  return 1;
}

// A closed one would give its number to the next file, which the report would be written into.
bool IsClosed(std::FILE* stream) {
  errno = 0;
  return std::ftell(stream) == -1 && errno == EBADF;
}

int Report(char const* fileName, int firstYear) {
  Series series = ReadSeries(fileName);
  series.firstYear = firstYear;
  for (std::string const& line : series.description)
    std::printf("%s\n", line.c_str());
  for (Section const& section : sections) {
    std::printf("\n");
    PrintUnderlined(section.heading);
    if (!section.report(series)) return 1;
  }
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return 0;
  std::fprintf(stderr, "tour: the report cannot be written: %s\n", std::strerror(errno));
  return 1;
}

int Run(int argc, char** argv) {
  if (argc == 2 && (std::strcmp(argv[1], "--help") == 0 || std::strcmp(argv[1], "-h") == 0)) {
    std::printf("%s\n%s", usage, rightFile);
    return 0;
  }
  if (argc > 1 && argv[1][0] == '-') return Misused(Quoted(argv[1]) + " is no option");
  if (argc > 3) return Misused("too many arguments");
  int firstYear = 1871;
  if (argc > 2 && !ParseYear(argv[2], firstYear))
    return Misused(Quoted(argv[2]) + " is no year, a whole number of at most six digits");
  return Report(argc > 1 ? argv[1] : TOUR_DATA, firstYear);
}

} // namespace

int main(int argc, char** argv) {
#ifdef SIGPIPE
  std::signal(SIGPIPE, SIG_IGN); // whoever reads the report may stop reading
#endif
  std::set_new_handler([] { // also called when the library needs memory
    std::fputs("tour: there is not enough memory\n", stderr);
    std::_Exit(1);
  });
  if (IsClosed(stdout)) {
    std::fputs("tour: there is no standard output for the report\n", stderr);
    return 1;
  }
  try {
    return Run(argc, argv);
  } catch (BrokenFile const& problem) {
    std::fprintf(stderr, "tour: %s\n\n%s", problem.what(), rightFile);
  } catch (std::exception const& problem) {
    std::fprintf(stderr, "tour: %s\n", problem.what());
  }
  return 1;
}
