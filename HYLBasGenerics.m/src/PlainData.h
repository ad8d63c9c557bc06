/// \file
/// Recognition of the library's own copy and destroy functions, whose calls nobody can observe:
/// where a replicator carries them, a block move or a typed store does what the calls would do.
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

/// Copies one element: by the replicator's function, or without a call where nobody can tell. Field
/// by field, because a load that spans two stores has to wait for both.
inline void CopyOne(HYLBasReplicatorGeneric const& replicator, void const* source,
                    void* destination) {
#define HYLBAS_COPY_ELEMENT(V)                                                                     \
  if (copy == HYLBasStandardCopy<HYLBasPair<int const, V>>) {                                      \
    new (destination, HYLBasPlacement())                                                           \
        HYLBasPair<int const, V>(*static_cast<HYLBasPair<int const, V> const*>(source));           \
    return;                                                                                        \
  }
  HYLBasReplicatorGeneric::CopyFunction const copy = replicator.m_copy;
  HYLBAS_COPY_ELEMENT(double)
  HYLBAS_COPY_ELEMENT(int)
  HYLBAS_COPY_ELEMENT(float)
  copy(source, destination, 1);
#undef HYLBAS_COPY_ELEMENT
}

/// Whether destroying elements has no effect that anybody could observe.
inline bool DestroysNothing(HYLBasReplicatorGeneric const& replicator) {
#define HYLBAS_OR_DESTROYS_ELEMENTS(V)                                                             \
  || replicator.m_destroy == HYLBasStandardDestroy<HYLBasPair<int const, V>>
  return replicator.m_destroy == nullptr HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_OR_DESTROYS_ELEMENTS);
#undef HYLBAS_OR_DESTROYS_ELEMENTS
}

/// Records copied bytewise are moved by the library alone.
inline bool IsPlainData(HYLAspStructReplicator const& /*replicator*/) { return true; }

} // namespace hylbas_detail
