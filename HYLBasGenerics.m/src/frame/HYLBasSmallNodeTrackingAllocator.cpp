#include "HYLBasSmallNodeTrackingAllocator.h"

constinit HYLBasMemPoolMap* HYLBasSmallNodeTrackingAllocator::m_pool = nullptr;
