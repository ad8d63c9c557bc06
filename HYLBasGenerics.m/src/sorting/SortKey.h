/// \file
/// What the sorts of whole arrays compare elements by.
#pragma once

#include <bit>
#include <cstring>

#include "HYLBasPair.h"

namespace hylbas_detail {

/// Numbers are compared by themselves.
template <class Element>
struct SortKey {
  using Type = Element;
  static Type Of(Element const& element) { return element; }
  static Element ElementOf(Type key) { return key; }
  static Type NumberOf(Element const& element) { return element; }
};

/// Pairs are sorted as one number each, which takes the pair's place while the sort works.
template <>
struct SortKey<HYLBasPair<int, int>> {
  using Type = long long;
  using Pair = HYLBasPair<int, int>;
  static Type Of(Pair const& key) { return std::bit_cast<Type>(key); }
  static Pair ElementOf(Type key) { return std::bit_cast<Pair>(key); }

  /// `first` in the upper half, and `second` with its sign flipped, so that the unsigned order of
  /// the lower half is the signed one.
  static Type NumberOf(Pair const& pair) {
    return static_cast<Type>(Turned(std::bit_cast<unsigned long long>(pair)) ^ sign);
  }

  static void PairsToKeys(Pair* first, Pair* last) {
    ForBytes(first, last, [](unsigned long long bits) { return Turned(bits) ^ sign; });
  }
  static void KeysToPairs(Pair* first, Pair* last) {
    ForBytes(first, last, [](unsigned long long bits) { return Turned(bits ^ sign); });
  }

private:
  // Compilers vectorise this for numbers, but not for pairs that are read and assigned.
  template <class Function>
  static void ForBytes(Pair* first, Pair* last, Function function) {
    for (; first != last; ++first) {
      unsigned long long bits;
      std::memcpy(&bits, first, sizeof bits);
      bits = function(bits);
      std::memcpy(static_cast<void*>(first), &bits, sizeof bits);
    }
  }

  static constexpr unsigned long long sign = 0x80000000u;
  static unsigned long long Turned(unsigned long long bits) {
    return std::endian::native == std::endian::little ? std::rotl(bits, 32) : bits;
  }
};

} // namespace hylbas_detail
