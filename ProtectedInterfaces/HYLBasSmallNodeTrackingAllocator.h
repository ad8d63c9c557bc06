/// \file
/// A pool handle for hosts that track small nodes apart from the others.
#pragma once

#include "detail/HYLBasExport.h"

class HYLBasMemPoolMap;

/// A pool handle and nothing else, which the library never sets or reads.
class HYLBASGENERICS_EXPORT HYLBasSmallNodeTrackingAllocator {
public:
  /// Null until a host sets it.
  static HYLBASGENERICS_EXPORT_ADDRESS HYLBasMemPoolMap* m_pool;
};
