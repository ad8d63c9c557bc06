/// \file
/// The result of inserting into a tree of unique keys.
#pragma once

#include "HYLBasTreeNodeGeneric.h"
#include "detail/HYLBasExport.h"

/// A node, and whether the insertion made it.
class HYLBASGENERICS_EXPORT HYLBasPairIterBoolGeneric {
public:
  HYLBASGENERICS_EXPORT_INLINE HYLBasPairIterBoolGeneric(HYLBasTreeNodeGeneric* node, bool inserted)
      : first(node), second(inserted) {}

  HYLBasTreeNodeGeneric* first; ///< the node that holds the key
  bool second;                  ///< whether it was inserted
};
