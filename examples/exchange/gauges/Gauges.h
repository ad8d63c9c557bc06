/// \file
/// The library that owns the measurements. What crosses its border is plain data and the cores of
/// containers, of which each has one layout and one implementation, whichever compiler built the
/// library on either side.
#pragma once

#include <HYLBasTreeGeneric.h>
#include <HYLBasVectorGeneric.h>

#define GAUGES_EXPORT __attribute__((visibility("default")))

#if defined(__clang__)
#define EXCHANGE_COMPILER __VERSION__
#else
#define EXCHANGE_COMPILER "g++ " __VERSION__
#endif

/// The mean flow of a river in one year.
struct Reading {
  int year;
  double flow; ///< in 10^8 cubic metres a year
};

/// Readings by increasing flow. The nodes lie in the process's map pool, whoever inserts them.
using ReadingsByFlow = HYLBasTreeGeneric<HYLBasNodeTrackingAllocator>;

/// An empty vector of readings.
GAUGES_EXPORT HYLBasVectorGeneric Gauges_NoReadings();
/// Replaces `readings` by what a text file of whole numbers says, one a year from `firstYear` on.
GAUGES_EXPORT void Gauges_Read(char const* file, int firstYear, HYLBasVectorGeneric& readings);
/// The readings in their order of flow, which is this library's to know.
GAUGES_EXPORT ReadingsByFlow Gauges_Index(HYLBasVectorGeneric const& readings);
GAUGES_EXPORT char const* Gauges_Compiler();
