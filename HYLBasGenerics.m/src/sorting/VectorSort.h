/// \file
/// What the sorts take from each instruction set, and the choice among them. Every function here is
/// compiled for one set of instructions, whatever the rest is compiled for, and may be called only
/// where the processor has them.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

#include "SortKey.h"

// g++ for Windows puts vectors on a stack that it does not align for them; g++ 11 cannot permute
// them.
#if defined(__x86_64__) && !defined(_WIN32) && __has_builtin(__builtin_shufflevector)
#define HYLBAS_SORTS_VECTORS
#include <immintrin.h>

namespace hylbas_detail {

/// Where the lanes of a vector go whose elements belong left by the bits of a number: those to the
/// front, the others behind them, each of `width` numbers of 32 bits.
template <std::size_t lanes, std::size_t width>
constexpr auto splittingPermutations = [] {
  std::array<std::array<unsigned char, lanes * width>, std::size_t(1) << lanes> table{};
  for (std::size_t left = 0; left != table.size(); ++left) {
    std::size_t next = 0;
    for (unsigned int const side : {1u, 0u})
      for (std::size_t lane = 0; lane != lanes; ++lane)
        if ((left >> lane & 1) == side)
          for (std::size_t part = 0; part != width; ++part)
            table[left][next++] = static_cast<unsigned char>(lane * width + part);
  }
  return table;
}();

namespace avx2 {
inline bool IsSupported() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
         __builtin_cpu_supports("bmi2") && __builtin_cpu_supports("popcnt");
}
} // namespace avx2
namespace avx512 {
inline bool IsSupported() {
  return avx2::IsSupported() && __builtin_cpu_supports("avx512f") &&
         __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
         __builtin_cpu_supports("avx512vl");
}
} // namespace avx512

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,bmi,bmi2,popcnt"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,bmi,bmi2,popcnt")
#endif
namespace avx2 {

template <class Key>
struct Lanes {
  using Vector [[gnu::vector_size(32)]] = Key;
  static constexpr std::ptrdiff_t count = 32 / sizeof(Key);

  [[gnu::always_inline]] static Vector Load(void const* from) {
    return (Vector)_mm256_loadu_si256(static_cast<__m256i const*>(from));
  }
  [[gnu::always_inline]] static void Store(void* to, Vector v) {
    _mm256_storeu_si256(static_cast<__m256i*>(to), (__m256i)v);
  }
  [[gnu::always_inline]] static Vector Broadcast(Key key) { return key - Vector{}; }

  // Of the first n lanes; the others hold the greatest key.
  [[gnu::always_inline]] static Vector LoadPart(void const* from, std::ptrdiff_t n) {
    Vector const isThere = FirstLanes(n);
    Vector loaded;
    if constexpr (sizeof(Key) == 4)
      loaded = (Vector)_mm256_maskload_epi32(static_cast<int const*>(from), (__m256i)isThere);
    else
      loaded = (Vector)_mm256_maskload_epi64(static_cast<long long const*>(from), (__m256i)isThere);
    return isThere ? loaded : Broadcast(std::numeric_limits<Key>::max());
  }
  [[gnu::always_inline]] static void StorePart(void* to, Vector v, std::ptrdiff_t n) {
    if constexpr (sizeof(Key) == 4)
      _mm256_maskstore_epi32(static_cast<int*>(to), (__m256i)FirstLanes(n), (__m256i)v);
    else
      _mm256_maskstore_epi64(static_cast<long long*>(to), (__m256i)FirstLanes(n), (__m256i)v);
  }

  [[gnu::always_inline]] static unsigned int MaskOfLess(Vector a, Vector b) {
    auto const isLess = (__m256i)(a < b);
    if constexpr (sizeof(Key) == 4)
      return static_cast<unsigned int>(_mm256_movemask_ps(_mm256_castsi256_ps(isLess)));
    else
      return static_cast<unsigned int>(_mm256_movemask_pd(_mm256_castsi256_pd(isLess)));
  }

  // Stores the lanes that belong left at `left` and the others so that they end at `right`. What is
  // behind or before them, up to `count` lanes, is overwritten. Returns how many belong left.
  template <class Element>
  [[gnu::always_inline]] static std::ptrdiff_t Split(Vector v, unsigned int belongLeft,
                                                     Element* left, Element* right) {
    belongLeft &= (1u << count) - 1;
    auto const& permutation = splittingPermutations<count, sizeof(Key) / 4>[belongLeft];
    __m256i const order =
        _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<__m128i const*>(permutation.data())));
    auto const split = (Vector)_mm256_permutevar8x32_epi32((__m256i)v, order);
    Store(left, split);
    Store(right - count, split);
    return __builtin_popcount(belongLeft);
  }

private:
  [[gnu::always_inline]] static Vector FirstLanes(std::ptrdiff_t n) {
    Vector lane;
    for (int i = 0; i != count; ++i)
      lane[i] = i;
    return lane < Broadcast(static_cast<Key>(n));
  }
};

#include "VectorSteps.h"

} // namespace avx2
#if defined(__clang__)
#pragma clang attribute pop
#pragma clang attribute push(                                                                      \
    __attribute__((target("avx512f,avx512bw,avx512dq,avx512vl,bmi,bmi2,popcnt"))),                 \
    apply_to = function)
#else
#pragma GCC pop_options
#pragma GCC push_options
#pragma GCC target("avx512f,avx512bw,avx512dq,avx512vl,bmi,bmi2,popcnt")
#endif
namespace avx512 {

template <class Key>
struct Lanes {
  using Vector [[gnu::vector_size(64)]] = Key;
  static constexpr std::ptrdiff_t count = 64 / sizeof(Key);

  [[gnu::always_inline]] static Vector Load(void const* from) {
    return (Vector)_mm512_loadu_si512(from);
  }
  [[gnu::always_inline]] static void Store(void* to, Vector v) {
    _mm512_storeu_si512(to, (__m512i)v);
  }
  [[gnu::always_inline]] static Vector Broadcast(Key key) { return key - Vector{}; }

  [[gnu::always_inline]] static Vector LoadPart(void const* from, std::ptrdiff_t n) {
    auto const rest = (__m512i)Broadcast(std::numeric_limits<Key>::max());
    if constexpr (sizeof(Key) == 4)
      return (Vector)_mm512_mask_loadu_epi32(rest, FirstLanes(n), from);
    else
      return (Vector)_mm512_mask_loadu_epi64(rest, FirstLanes(n), from);
  }
  [[gnu::always_inline]] static void StorePart(void* to, Vector v, std::ptrdiff_t n) {
    StoreLanes(to, v, FirstLanes(n));
  }

  [[gnu::always_inline]] static unsigned int MaskOfLess(Vector a, Vector b) {
    if constexpr (sizeof(Key) == 4)
      return _mm512_cmplt_epi32_mask((__m512i)a, (__m512i)b);
    else
      return _mm512_cmplt_epi64_mask((__m512i)a, (__m512i)b);
  }

  template <class Element>
  [[gnu::always_inline]] static std::ptrdiff_t Split(Vector v, unsigned int belongLeft,
                                                     Element* left, Element* right) {
    belongLeft &= (1u << count) - 1;
    std::ptrdiff_t const n = __builtin_popcount(belongLeft);
    Store(left, Compressed(v, static_cast<Mask>(belongLeft)));
    StoreLanes(right - (count - n), Compressed(v, static_cast<Mask>(~belongLeft)),
               FirstLanes(count - n));
    return n;
  }

private:
  using Mask = std::conditional_t<sizeof(Key) == 4, __mmask16, __mmask8>;
  [[gnu::always_inline]] static Mask FirstLanes(std::ptrdiff_t n) {
    return n < 0 ? Mask(0)
                 : static_cast<Mask>(
                       _bzhi_u32(~0u, static_cast<unsigned int>(n < count ? n : count)));
  }
  [[gnu::always_inline]] static Vector Compressed(Vector v, Mask chosen) {
    if constexpr (sizeof(Key) == 4)
      return (Vector)_mm512_maskz_compress_epi32(chosen, (__m512i)v);
    else
      return (Vector)_mm512_maskz_compress_epi64(chosen, (__m512i)v);
  }
  [[gnu::always_inline]] static void StoreLanes(void* to, Vector v, Mask chosen) {
    if constexpr (sizeof(Key) == 4)
      _mm512_mask_storeu_epi32(to, chosen, (__m512i)v);
    else
      _mm512_mask_storeu_epi64(to, chosen, (__m512i)v);
  }
};

#include "VectorSteps.h" // NOLINT(readability-duplicate-include)

} // namespace avx512
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

} // namespace hylbas_detail
#endif
