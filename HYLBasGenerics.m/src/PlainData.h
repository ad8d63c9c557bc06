/// \file
/// Recognition of the library's own plain-data copy, whose calls nobody can observe: where a
/// replicator carries it, a block move or a typed store does what its calls would do.
#pragma once

#include "HYLAspStructReplicator.h"
#include "HYLBasReplicator.h"

namespace hylbas_detail {

/// Whether elements are copied by the library's own function for exactly their size.
inline bool IsPlainData(HYLBasReplicatorGeneric const& replicator) {
  switch (replicator.m_size) {
#define HYLBAS_OR_COPIES_AS(T)                                                                     \
  || (sizeof(T) == elementSize && replicator.m_copy == HYLBasPODCopy<T>)
  case 4: {
    constexpr std::size_t elementSize = 4;
    return false HYLBAS_FOR_EACH_PLAIN_TYPE(HYLBAS_OR_COPIES_AS);
  }
  case 8: {
    constexpr std::size_t elementSize = 8;
    return false HYLBAS_FOR_EACH_PLAIN_TYPE(HYLBAS_OR_COPIES_AS);
  }
#undef HYLBAS_OR_COPIES_AS
  default:
    return false;
  }
}

/// Records copied bytewise are moved by the library alone.
inline bool IsPlainData(HYLAspStructReplicator const& /*replicator*/) { return true; }

} // namespace hylbas_detail
