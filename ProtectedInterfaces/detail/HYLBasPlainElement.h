/// \file
/// Which element types the typed containers take. Used by their headers; there is nothing here for
/// anybody else.
#pragma once

#include <cstddef>
#include <type_traits>

#include "HYLBasExport.h"

namespace hylbas_detail {

/// What the memory library aligns every block to, in bytes: enough for every scalar type, which is
/// what `TARNHYLBasAlloc.h` promises.
inline constexpr std::size_t blockAlignment = 2 * sizeof(void*);

/// Refuses, with a sentence, types that blocks of bytes cannot carry. A type that passes has all of
/// a container's members.
template <class T>
struct RequirePlainElement {
  static_assert(std::is_trivially_copyable_v<T> && std::is_copy_constructible_v<T> &&
                    std::is_copy_assignable_v<T> && std::is_default_constructible_v<T>,
                "this container copies its elements as bytes: their type must be trivially "
                "copyable, default-constructible and assignable");
  static_assert(alignof(T) <= blockAlignment,
                "this element type is aligned more strictly than the memory library's blocks");
  static constexpr bool value = true;
};

} // namespace hylbas_detail
