#include "HYLBasNodeAllocator.h" // its inline members are exported from here
