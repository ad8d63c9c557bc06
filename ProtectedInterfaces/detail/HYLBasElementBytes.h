/// \file
/// Copies of elements that change no bit. Used by the headers; there is nothing here for anybody
/// else.
///
/// Where `FLT_EVAL_METHOD` is not 0, in consumers that are compiled for the x87 unit, an assignment
/// takes a floating-point number through a register that changes signalling NaNs. Bytes are copied
/// there, and only there: compilers know more about an assignment and make faster loops of it.
#pragma once

#include <algorithm>
#include <cfloat>
#include <cstddef>
#include <cstring>
#include <type_traits>

namespace hylbas_detail {

/// The value of an element, held as bytes, to be passed on by value.
template <class T>
struct ElementBytes {
  static_assert(std::is_trivially_copyable_v<T>);

  alignas(T) unsigned char bytes[sizeof(T)];

  explicit ElementBytes(T const& value) { std::memcpy(bytes, &value, sizeof bytes); }
  void StoreTo(T* place) const { std::memcpy(place, bytes, sizeof bytes); }
};

/// `from` and `to` may be the same element.
template <class T>
void CopyElement(T const* from, T* to) {
  if constexpr (FLT_EVAL_METHOD == 0) {
    *to = *from;
  } else {
    std::memmove(to, from, sizeof(T));
  }
}

/// The `count` elements from `first` on become `value`, which may be one of them.
template <class T>
void FillElements(T* first, std::size_t count, T const& value) {
  if constexpr (FLT_EVAL_METHOD == 0) {
    std::fill_n(first, count, T(value));
  } else {
    ElementBytes<T> const copy(value);
    for (std::size_t i = 0; i != count; ++i)
      copy.StoreTo(first + i);
  }
}

/// Moves the elements from `pos` on, which end at `last`, up by `n` slots within their block.
/// False, and nothing done, for what a vector's core is to do: where there is no room, where `n` is
/// 0, and where `pos` is outside [`first`, `last`].
template <class T>
bool OpenGap(char* first, char*& last, char* endOfStorage, T* pos, unsigned int n) {
  char* const gap = reinterpret_cast<char*>(pos);
  if (gap < first || gap > last || n == 0) return false;
  if (n > static_cast<std::size_t>(endOfStorage - last) / sizeof(T)) return false;
  std::size_t const bytes = n * sizeof(T);
  std::memmove(gap + bytes, gap, static_cast<std::size_t>(last - gap));
  last += bytes;
  return true;
}

/// Stores the bits of a number once more, after an initialisation that may have changed them.
template <class T>
void KeepBits(T const& from, T& to) {
  if constexpr (FLT_EVAL_METHOD != 0 && std::is_floating_point_v<T>) CopyElement(&from, &to);
}

/// Elements between two addresses of a block. In unsigned arithmetic, because a block may be longer
/// than half of the address space.
template <class T>
unsigned int ElementsBetween(char const* first, char const* last) {
  return static_cast<unsigned int>(static_cast<std::size_t>(last - first) / sizeof(T));
}

} // namespace hylbas_detail
