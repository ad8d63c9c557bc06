/// \file
/// An allocator policy that allocates nothing, for hosts' templates that ask for one.
#pragma once

#include "detail/HYLBasExport.h"

/// The allocator policy of nothing. Holds no data and has no operations.
class HYLBASGENERICS_EXPORT HYLBasGenericsAllocator {
public:
  HYLBasGenericsAllocator();
  ~HYLBasGenericsAllocator();
};
