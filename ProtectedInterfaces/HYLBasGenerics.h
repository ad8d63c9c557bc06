/// \file
/// All of the library's public headers. Each of them also stands on its own.
#pragma once

#include "HYLBasAllocationOperators.h"
#include "HYLBasComparitor.h"
#include "HYLBasExport.h"
#include "HYLBasHashValue.h"
#include "HYLBasInstantiations.h"
#include "HYLBasPair.h"
#include "HYLBasReplicator.h"
#include "HYLBasSwap.h"
#include "HYLBasTreeIterator.h"
#include "HYLBasTreeNodeGeneric.h"
#include "HYLBasVector.h"
#include "HYLBasVectorAllocator.h"
#include "HYLBasVectorGeneric.h"
