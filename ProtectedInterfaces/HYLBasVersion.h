/// \file
/// The version of the library that a program is compiled against. The build, the packages and the
/// reference take theirs from here.
#pragma once

#include "detail/HYLBasExport.h" // which refuses languages before C++20

/// \name Version
/// Numbers as semantic versioning counts them: hosts need to be built again for another major one.
/// @{
#define HYLBAS_VERSION_MAJOR 1
#define HYLBAS_VERSION_MINOR 0
#define HYLBAS_VERSION_PATCH 0
/// @}

#define HYLBAS_VERSION_TEXT_OF(number) HYLBAS_VERSION_QUOTED(number)
#define HYLBAS_VERSION_QUOTED(number) #number

/// One number to compare in `#if`: 10203 for 1.2.3.
#define HYLBAS_VERSION                                                                             \
  (HYLBAS_VERSION_MAJOR * 10000 + HYLBAS_VERSION_MINOR * 100 + HYLBAS_VERSION_PATCH)

/// The version as text, as in "1.2.3".
#define HYLBAS_VERSION_TEXT                                                                        \
  HYLBAS_VERSION_TEXT_OF(HYLBAS_VERSION_MAJOR)                                                     \
  "." HYLBAS_VERSION_TEXT_OF(HYLBAS_VERSION_MINOR) "." HYLBAS_VERSION_TEXT_OF(HYLBAS_VERSION_PATCH)
