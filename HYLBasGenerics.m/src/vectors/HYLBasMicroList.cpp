#include "HYLBasMicroList.h"

template class HYLBasMicroList<int>;
