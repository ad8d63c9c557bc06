#include "HYLBasSwap.h"

#include "HYLBasComparitor.h"
#include "HYLBasReplicator.h"
#include "HYLBasTreeNodeGeneric.h"

template HYLBASGENERICS_EXPORT void HYLBasSwap<unsigned int>(unsigned int&, unsigned int&);
template HYLBASGENERICS_EXPORT void HYLBasSwap<HYLBasCompareFunction>(HYLBasCompareFunction&,
                                                                      HYLBasCompareFunction&);
template HYLBASGENERICS_EXPORT void HYLBasSwap<HYLBasTreeNodeGeneric*>(HYLBasTreeNodeGeneric*&,
                                                                       HYLBasTreeNodeGeneric*&);
template HYLBASGENERICS_EXPORT void HYLBasSwap<void const*>(void const*&, void const*&);
template HYLBASGENERICS_EXPORT void HYLBasSwap<HYLBasTreeColor>(HYLBasTreeColor&, HYLBasTreeColor&);
template HYLBASGENERICS_EXPORT void HYLBasSwap<HYLBasReplicatorGeneric>(HYLBasReplicatorGeneric&,
                                                                        HYLBasReplicatorGeneric&);
