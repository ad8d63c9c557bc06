/// \file
/// The sections of the tour's report. Each shows one family of the library's types at work on the
/// series, has a source file of its own, named after it, and writes to standard output. Sections
/// return false, with the reason on the standard error stream, where the library did not do what
/// they show. A new section is declared here and added to the list in Tour.cpp.
#pragma once

#include "Series.h"

/// Typed vectors: mean, extremes with their years, and a bar chart of decades.
bool ReportFlow(Series const& series);

/// Typed maps: a histogram that comes out in order, and two ways to insert a key that is there.
bool ReportMap(Series const& series);

/// Sorts: the driest and wettest years by an index sort, and flows sorted together with their
/// years.
bool ReportSorts(Series const& series);

/// Two-dimensional arrays over the vector's own block, in both storage orders: means and norms of
/// decades, and the extraction of chosen ones.
bool ReportDecades(Series const& series);

/// Text files: a derived vector is written, read again and compared.
bool ReportTextFile(Series const& series);
