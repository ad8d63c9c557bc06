#include "HYLBasMap.h"

#define HYLBAS_DEFINE_MAP(V) template class HYLBasMap<int, V>;
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DEFINE_MAP)
