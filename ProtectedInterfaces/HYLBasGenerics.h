/// \file
/// All of the library's public headers. Each of them also stands on its own.
#pragma once

#include "HYLBasAllocationOperators.h"
#include "HYLBasComparitor.h"
#include "HYLBasExport.h"
#include "HYLBasGenericsAllocator.h"
#include "HYLBasGenericsLib.h"
#include "HYLBasHashValue.h"
#include "HYLBasInstantiations.h"
#include "HYLBasMicroAllocator.h"
#include "HYLBasNodeAllocator.h"
#include "HYLBasNodeTrackingAllocator.h"
#include "HYLBasPair.h"
#include "HYLBasReplicator.h"
#include "HYLBasSmallNodeTrackingAllocator.h"
#include "HYLBasSwap.h"
#include "HYLBasTreeIterator.h"
#include "HYLBasTreeNodeGeneric.h"
#include "HYLBasVector.h"
#include "HYLBasVectorAllocator.h"
#include "HYLBasVectorGeneric.h"
#include "HYLBasVectorTrackingAllocator.h"
