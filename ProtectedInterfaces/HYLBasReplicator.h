/// \file
/// Replicators: how a type-erased container learns to handle elements whose type it never knows.
///
/// A container stores one `HYLBasReplicatorGeneric` and moves, copies and destroys elements only
/// through it. Take `HYLBasGetReplicator<T>()` for element types known at compile time, or fill in
/// a record of your own. All functions here are stateless and may run on any number of threads at
/// once on disjoint elements. Copying and destroying take time linear in the count; everything else
/// is constant.
///
/// Which elements a container can hold:
/// - Vectors: those that lose nothing when a copy is put over them, for vectors do so without
///   destroying them first. Numbers, plain records, pointers to what others own.
/// - Vectors of elements that own something (a string, a counted reference) leak it wherever an
///   element is overwritten: in `Insert` before the end without a new block, in `Erase` that does
///   not reach the end, and in `Assign` within the capacity. All else copies into free slots and
///   destroys each element once: construction, assignment, `PushBack`, `Insert` at the end,
///   `Resize`, `Reserve`, `PopBack`, `Clear`, `Erase` up to the end, `swap`.
/// - Trees: also elements that own something. Each is copied once, into a fresh node, and destroyed
///   once.
#pragma once

#include <cstring>
#include <type_traits>

#include "HYLBasAllocationOperators.h"
#include "HYLBasPair.h"
#include "detail/HYLBasElementBytes.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasInstantiations.h"

/// The element policy of a type-erased container: a plain record, copied member by member.
class HYLBASGENERICS_EXPORT HYLBasReplicatorGeneric {
public:
  /// Copies `count` consecutive elements at `source` into the slots at `destination`, first to
  /// last. A count of 0 does nothing. The slots may be raw storage or hold live elements, which are
  /// not destroyed before. Containers call it with a `destination`
  /// - apart from the source,
  /// - before it and overlapping it, as when elements are erased,
  /// - equal to it, where a caller gives a vector one of its own elements, or erases none: the
  ///   elements must then keep their values. The library's own functions see to that.
  /// - never after it and overlapping it.
  ///
  /// It must not throw: a container that was moving its elements would lose the block that they
  /// move to.
  using CopyFunction = void (*)(void const* source, void* destination, unsigned int count);
  /// Ends the life of `count` consecutive elements, once over each batch that leaves a container.
  using DestroyFunction = void (*)(void const* first, unsigned int count);

  /// Elements of `size` bytes (at least 1, unchecked) without functions: plain records. Vectors
  /// copy them bytewise; it serves no other container.
  HYLBASGENERICS_EXPORT_INLINE HYLBasReplicatorGeneric(int size)
      : m_size(size), m_copy(nullptr), m_destroy(nullptr) {}
  /// Elements of `size` bytes (at least 1, unchecked). A null `destroy` means that elements need no
  /// destruction; vectors may then fill runs of equal elements bytewise.
  HYLBASGENERICS_EXPORT_INLINE HYLBasReplicatorGeneric(int size, CopyFunction copy,
                                                       DestroyFunction destroy)
      : m_size(size), m_copy(copy), m_destroy(destroy) {}

  int m_size;                ///< bytes per element
  CopyFunction m_copy;       ///< null only without functions
  DestroyFunction m_destroy; ///< may be null
};

/// Copy function of plain data types: short runs element by element, first to last; 10 elements or
/// more as one `memmove`, which is correct for overlap in either direction.
template <class T>
HYLBASGENERICS_EXPORT void HYLBasPODCopy(void const* source, void* destination,
                                         unsigned int count) {
  static_assert(std::is_trivially_copyable_v<T>);
  if (count >= 10) {
    std::memmove(destination, source, static_cast<std::size_t>(count) * sizeof(T));
    return;
  }
  auto const* from = static_cast<T const*>(source);
  auto* to = static_cast<T*>(destination);
  for (unsigned int i = 0; i != count; ++i)
    hylbas_detail::CopyElement(from + i, to + i);
}

/// Copy function of class types: copy-constructs each slot in place, first to last, also where the
/// slot holds a live element. An element that is its own source keeps its value: it is left alone.
template <class T>
HYLBASGENERICS_EXPORT void HYLBasStandardCopy(void const* source, void* destination,
                                              unsigned int count) {
  auto const* from = static_cast<T const*>(source);
  auto* to = static_cast<char*>(destination);
  for (unsigned int i = 0; i != count; ++i, to += sizeof(T))
    if (static_cast<void const*>(from + i) != to) ::new (to, HYLBasPlacement()) T(from[i]);
}

/// Destroy function of class types: runs the destructor of each element, first to last.
template <class T>
HYLBASGENERICS_EXPORT void HYLBasStandardDestroy(void const* first, unsigned int count) {
  auto const* element = static_cast<T const*>(first);
  for (unsigned int i = 0; i != count; ++i)
    element[i].~T();
}

/// The functions of a plain data type.
template <class T>
class HYLBASGENERICS_EXPORT HYLBasPODReplicator {
public:
  static HYLBasReplicatorGeneric::CopyFunction GetCopyFunc() { return HYLBasPODCopy<T>; }
  static HYLBasReplicatorGeneric::DestroyFunction GetDestroyFunc() { return nullptr; }
};

/// The functions of a class type.
template <class T>
class HYLBASGENERICS_EXPORT HYLBasReplicator {
public:
  static HYLBasReplicatorGeneric::CopyFunction GetCopyFunc() { return HYLBasStandardCopy<T>; }
  static HYLBasReplicatorGeneric::DestroyFunction GetDestroyFunc() {
    return HYLBasStandardDestroy<T>;
  }
};

/// The replicator of element type `T`: plain data functions for arithmetic types, the class type's
/// functions for everything else.
template <class T>
HYLBASGENERICS_EXPORT inline HYLBasReplicatorGeneric HYLBasGetReplicator() {
  using Functions =
      std::conditional_t<std::is_arithmetic_v<T>, HYLBasPODReplicator<T>, HYLBasReplicator<T>>;
  return HYLBasReplicatorGeneric(static_cast<int>(sizeof(T)), Functions::GetCopyFunc(),
                                 Functions::GetDestroyFunc());
}

// The instantiations live in the library, so that a function has one address in the process.
#define HYLBAS_DECLARE_PLAIN(...)                                                                  \
  extern template HYLBASGENERICS_EXPORT_ADDRESS void HYLBasPODCopy<__VA_ARGS__>(                   \
      void const*, void*, unsigned int);                                                           \
  extern template class HYLBASGENERICS_EXPORT HYLBasPODReplicator<__VA_ARGS__>;                    \
  extern template HYLBASGENERICS_EXPORT HYLBasReplicatorGeneric HYLBasGetReplicator<__VA_ARGS__>();
#define HYLBAS_DECLARE_CLASS(...)                                                                  \
  extern template HYLBASGENERICS_EXPORT_ADDRESS void HYLBasStandardCopy<__VA_ARGS__>(              \
      void const*, void*, unsigned int);                                                           \
  extern template HYLBASGENERICS_EXPORT_ADDRESS void HYLBasStandardDestroy<__VA_ARGS__>(           \
      void const*, unsigned int);                                                                  \
  extern template class HYLBASGENERICS_EXPORT HYLBasReplicator<__VA_ARGS__>;                       \
  extern template HYLBASGENERICS_EXPORT HYLBasReplicatorGeneric HYLBasGetReplicator<__VA_ARGS__>();
#define HYLBAS_DECLARE_MAPPED(V) HYLBAS_DECLARE_CLASS(HYLBasPair<int const, V>)
HYLBAS_FOR_EACH_PLAIN_TYPE(HYLBAS_DECLARE_PLAIN)
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DECLARE_MAPPED)
HYLBAS_DECLARE_CLASS(HYLBasPair<int, int>)
#undef HYLBAS_DECLARE_MAPPED
#undef HYLBAS_DECLARE_CLASS
#undef HYLBAS_DECLARE_PLAIN
