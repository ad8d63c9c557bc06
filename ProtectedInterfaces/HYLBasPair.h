/// \file
/// The pair record: element of the typed maps, of the pair sorts, and result of map operations that
/// return two things.
#pragma once

#include <bit>
#include <cstddef>
#include <type_traits>

#include "detail/HYLBasElementBytes.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasInstantiations.h"

namespace hylbas_detail {
/// Scalar fields are aligned to their own size on every platform, also where the platform's own
/// rule is laxer (64-bit values on 32-bit systems).
template <class T>
inline constexpr std::size_t fieldAlignment = std::is_scalar_v<T>&& std::has_single_bit(sizeof(T))
                                                  ? sizeof(T)
                                                  : alignof(T);
} // namespace hylbas_detail

/// Two values together, in public fields. Constructors copy their arguments field by field.
template <class A, class B>
struct HYLBASGENERICS_EXPORT HYLBasPair {
  alignas(hylbas_detail::fieldAlignment<A>) A first;
  alignas(hylbas_detail::fieldAlignment<B>) B second;

  /// Both fields value-initialised: 0 for numbers.
  HYLBasPair() : first(), second() {}
  HYLBasPair(A const& a, B const& b) : first(a), second(b) {
    hylbas_detail::KeepBits(a, first);
    hylbas_detail::KeepBits(b, second);
  }
};

/// The value type of a map: the key is fixed for the pair's life.
template <class K, class V>
struct HYLBASGENERICS_EXPORT HYLBasPair<K const, V> {
  alignas(hylbas_detail::fieldAlignment<K>) K const first;
  alignas(hylbas_detail::fieldAlignment<V>) V second;

  HYLBasPair(K const& key, V const& value) : first(key), second(value) {
    hylbas_detail::KeepBits(value, second);
  }
  HYLBasPair(HYLBasPair const& other) : HYLBasPair(other.first, other.second) {}
};

static_assert(sizeof(HYLBasPair<int const, float>) == 8);
static_assert(sizeof(HYLBasPair<int const, double>) == 16);
static_assert(alignof(HYLBasPair<int const, long long>) == 8);

/// Orders by `first`, then by `second`, both signed.
HYLBASGENERICS_EXPORT_INLINE inline bool operator<(HYLBasPair<int, int> const& x,
                                                   HYLBasPair<int, int> const& y) {
  return x.first < y.first || (!(y.first < x.first) && x.second < y.second);
}

// The instantiations live in the library, member by member: these are the ones that it exports.
extern template HYLBASGENERICS_EXPORT HYLBasPair<int, int>::HYLBasPair();
#define HYLBAS_DECLARE_PAIR(V)                                                                     \
  extern template HYLBASGENERICS_EXPORT HYLBasPair<int const, V>::HYLBasPair(int const&,           \
                                                                             V const&);            \
  extern template HYLBASGENERICS_EXPORT HYLBasPair<int const, V>::HYLBasPair(                      \
      HYLBasPair<int const, V> const&);
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DECLARE_PAIR)
#undef HYLBAS_DECLARE_PAIR
