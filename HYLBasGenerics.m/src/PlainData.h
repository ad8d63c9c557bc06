/// \file
/// Recognition of the library's own copy and destroy functions, whose calls nobody can observe:
/// where a replicator carries them, a block move or a typed store does what the calls would do.
#pragma once

#include <cstring>

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

/// Whether `copy` is the library's own function for the elements of maps of that size.
template <std::size_t elementSize>
bool CopiesMapElements(HYLBasReplicatorGeneric::CopyFunction copy) {
#define HYLBAS_OR_COPIES_ELEMENTS(V)                                                               \
  || (sizeof(HYLBasPair<int const, V>) == elementSize &&                                           \
      copy == HYLBasStandardCopy<HYLBasPair<int const, V>>)
  return false HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_OR_COPIES_ELEMENTS);
#undef HYLBAS_OR_COPIES_ELEMENTS
}

/// Copies one element: by the replicator's function, or without a call where nobody can tell. The
/// bytes between the fields of a map's element have no value that could be lost.
inline void CopyOne(HYLBasReplicatorGeneric const& replicator, void const* source,
                    void* destination) {
  if (replicator.m_size == 8 && CopiesMapElements<8>(replicator.m_copy)) {
    std::memcpy(destination, source, 8);
  } else if (replicator.m_size == 16 && CopiesMapElements<16>(replicator.m_copy)) {
    std::memcpy(destination, source, 16);
  } else {
    replicator.m_copy(source, destination, 1);
  }
}

/// Whether destroying elements has no effect that anybody could observe.
inline bool DestroysNothing(HYLBasReplicatorGeneric const& replicator) {
#define HYLBAS_OR_DESTROYS_ELEMENTS(V)                                                             \
  || replicator.m_destroy == HYLBasStandardDestroy<HYLBasPair<int const, V>>
  return replicator.m_destroy == nullptr HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_OR_DESTROYS_ELEMENTS);
#undef HYLBAS_OR_DESTROYS_ELEMENTS
}

} // namespace hylbas_detail
