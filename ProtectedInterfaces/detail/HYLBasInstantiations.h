/// \file
/// The element types for which the library's templates are instantiated inside it, as lists to
/// apply a macro to.
#pragma once

/// Types that `HYLBasVector` offers in full: plain data, copied by `HYLBasPODCopy`.
#define HYLBAS_FOR_EACH_PLAIN_TYPE(apply)                                                          \
  apply(int) apply(unsigned int) apply(float) apply(double) apply(long long)                       \
      apply(unsigned long long)

/// Mapped types of `HYLBasMap<int, V>`.
#define HYLBAS_FOR_EACH_MAPPED_TYPE(apply)                                                         \
  apply(char) apply(int) apply(unsigned int) apply(float) apply(double) apply(long long)           \
      apply(unsigned long long)
