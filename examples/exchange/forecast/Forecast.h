/// \file
/// The library that computes. It knows readings and their order from the other one alone.
#pragma once

#include <HYLBasMap.h>
#include <HYLBasVector.h>

#include "../gauges/Gauges.h"

#define FORECAST_EXPORT __attribute__((visibility("default")))

/// Takes the `count` readings of the least flow out of `index`, and gives flows by year.
FORECAST_EXPORT HYLBasMap<int, double> Forecast_TakeDriest(ReadingsByFlow& index,
                                                           unsigned int count);
/// Appends to `means` the mean of each row of a table that lies in the caller's
/// block, `rows` times `columns` numbers row by row, which is neither copied nor changed.
FORECAST_EXPORT void Forecast_RowMeans(double* block, int rows, int columns,
                                       HYLBasVector<double>& means);
FORECAST_EXPORT char const* Forecast_Compiler();
