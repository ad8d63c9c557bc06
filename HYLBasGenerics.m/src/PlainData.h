/// \file
/// Recognition of the library's own plain-data copy, whose calls nobody can observe: where a
/// replicator carries it, a block move or a typed store does what its calls would do.
#pragma once

#include "HYLBasReplicator.h"

namespace hylbas_detail {

template <class T>
bool CopiesAs(HYLBasReplicatorGeneric const& replicator) {
  return replicator.m_copy == HYLBasPODCopy<T> && replicator.m_size == static_cast<int>(sizeof(T));
}

/// Whether elements are copied by the library's own function for exactly their size.
inline bool IsPlainData(HYLBasReplicatorGeneric const& replicator) {
#define HYLBAS_OR_COPIES_AS(T) || CopiesAs<T>(replicator)
  return false HYLBAS_FOR_EACH_PLAIN_TYPE(HYLBAS_OR_COPIES_AS);
#undef HYLBAS_OR_COPIES_AS
}

} // namespace hylbas_detail
