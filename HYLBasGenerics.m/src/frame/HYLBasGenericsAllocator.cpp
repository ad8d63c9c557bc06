#include "HYLBasGenericsAllocator.h"

HYLBasGenericsAllocator::HYLBasGenericsAllocator() = default;

HYLBasGenericsAllocator::~HYLBasGenericsAllocator() = default;
