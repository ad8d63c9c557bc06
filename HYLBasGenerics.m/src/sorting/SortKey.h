/// \file
/// What the sorts of whole arrays compare elements by.
#pragma once

#include <bit>

#include "HYLBasPair.h"

namespace hylbas_detail {

/// Numbers are compared by themselves.
template <class Element>
struct SortKey {
  using Type = Element;
  static Type Of(Element const& element) { return element; }
  static Element ElementOf(Type key) { return key; }
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
  static Pair KeyOf(Pair const& pair) {
    return std::bit_cast<Pair>(Turned(std::bit_cast<unsigned long long>(pair)) ^ sign);
  }
  static Pair PairOf(Pair const& key) {
    return std::bit_cast<Pair>(Turned(std::bit_cast<unsigned long long>(key) ^ sign));
  }

private:
  static constexpr unsigned long long sign = 0x80000000u;
  static unsigned long long Turned(unsigned long long bits) {
    return std::endian::native == std::endian::little ? std::rotl(bits, 32) : bits;
  }
};

} // namespace hylbas_detail
