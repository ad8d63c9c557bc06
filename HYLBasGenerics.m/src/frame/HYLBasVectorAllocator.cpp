#include "HYLBasVectorAllocator.h" // the policy is inline; this file holds the library's copies
