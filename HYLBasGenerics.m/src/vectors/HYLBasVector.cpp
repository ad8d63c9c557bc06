#include "HYLBasVector.h"

#define HYLBAS_DEFINE_VECTOR(T) template class HYLBasVector<T>;
HYLBAS_FOR_EACH_PLAIN_TYPE(HYLBAS_DEFINE_VECTOR)

// The scratch array of the paired sort: the members that it uses.
using Pair = HYLBasPair<int, int>;
template HYLBASGENERICS_EXPORT HYLBasVector<Pair>::HYLBasVector(unsigned int);
template HYLBASGENERICS_EXPORT HYLBasVector<Pair>::HYLBasVector(unsigned int, Pair const&);
template HYLBASGENERICS_EXPORT HYLBasVector<Pair>::~HYLBasVector();
template HYLBASGENERICS_EXPORT Pair* HYLBasVector<Pair>::begin();
template HYLBASGENERICS_EXPORT Pair* HYLBasVector<Pair>::end();
template HYLBASGENERICS_EXPORT void HYLBasVector<Pair>::swap(HYLBasVector&);
template HYLBASGENERICS_EXPORT HYLBasVectorGeneric& HYLBasVector<Pair>::Generic();
