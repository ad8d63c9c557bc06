/// \file
/// The element policy of plain records: copied bytewise, of a size known at run time.
#pragma once

#include <cstddef>
#include <cstring>

#include "HYLBasReplicator.h"
#include "detail/HYLBasExport.h"

/// The element policy of plain records. Take it for records without resources of their own; take
/// `HYLBasReplicatorGeneric` for elements whose copies need a function.
class HYLBASGENERICS_EXPORT HYLAspStructReplicator {
public:
  using DestroyFunction = HYLBasReplicatorGeneric::DestroyFunction;

  /// Records of `size` bytes (at least 1) that need no destruction.
  HYLBASGENERICS_EXPORT_INLINE HYLAspStructReplicator(int size)
      : m_size(size), m_destroy(nullptr) {}
  HYLBASGENERICS_EXPORT_INLINE HYLAspStructReplicator(HYLAspStructReplicator const& other)
      : m_size(other.m_size), m_destroy(other.m_destroy) {}
  HYLBASGENERICS_EXPORT_INLINE ~HYLAspStructReplicator() {}
  HYLAspStructReplicator& operator=(HYLAspStructReplicator const&) = default;

  /// Moves `count` records, with overlap in either direction; a count of 0 does nothing.
  HYLBASGENERICS_EXPORT_INLINE void m_copy(void const* source, void* destination,
                                           unsigned int count) {
    if (count != 0)
      std::memmove(destination, source,
                   static_cast<std::size_t>(count) * static_cast<std::size_t>(m_size));
  }

  int m_size;                ///< bytes per record
  DestroyFunction m_destroy; ///< may be null
};
