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

/// Copies one element by the replicator's function.
struct CalledCopy {
  HYLBasReplicatorGeneric::CopyFunction m_copy;
  void operator()(void const* source, void* destination) const { m_copy(source, destination, 1); }
};

/// What the library's own copy function for `T` does to one element, without a call. Field by
/// field, because a load that spans two stores has to wait for both.
template <class T>
struct InlinedCopy {
  void operator()(void const* source, void* destination) const {
    new (destination, HYLBasPlacement()) T(*static_cast<T const*>(source));
  }
};

/// Carries out an operation that copies single elements, with the copies inlined where nobody can
/// tell.
template <class Operation>
auto WithCopy(HYLBasReplicatorGeneric const& replicator, Operation operation) {
#define HYLBAS_INLINE_COPY(V)                                                                      \
  if (replicator.m_copy == HYLBasStandardCopy<HYLBasPair<int const, V>>)                           \
    return operation(InlinedCopy<HYLBasPair<int const, V>>());
  HYLBAS_INLINE_COPY(double)
  HYLBAS_INLINE_COPY(int)
  HYLBAS_INLINE_COPY(float)
  return operation(CalledCopy{replicator.m_copy});
#undef HYLBAS_INLINE_COPY
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
