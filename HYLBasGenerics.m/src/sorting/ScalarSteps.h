/// \file
/// The two steps in which a sort spends its time, for any processor. Without branches that it could
/// not foresee: partitions advance by the result of a comparison, and short ranges are sorted by
/// networks of exchanges (K. E. Batcher, "Sorting Networks and Their Applications", 1968;
/// D. E. Knuth, "The Art of Computer Programming", volume 3, 5.2.2, algorithm M).
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "SortKey.h"

namespace hylbas_detail {

template <class Element>
class ScalarSteps {
  using Key = SortKey<Element>;
  using KeyType = typename Key::Type;

public:
  static constexpr std::ptrdiff_t longestLeaf = 32; // longer ranges are partitioned
  static constexpr std::ptrdiff_t fewMoved = 10;
  static constexpr bool looksForOrder = true;

  /// Moves the elements whose keys belong to the left before all others: those below the pivot, or
  /// up to it. Returns the first of the others.
  template <bool withEqual>
  static Element* Partition(Element* first, Element* last, KeyType pivot) {
    // The elements between `cut` and `next` are those found to belong to the right.
    Element* cut = first;
    for (Element* next = first; next != last; ++next) {
      Element const element = *next;
      auto const key = Key::Of(element);
      *next = *cut;
      *cut = element;
      cut += withEqual ? !(pivot < key) : key < pivot;
    }
    return cut;
  }

  /// Of up to `longestLeaf` elements: two halves, merged.
  static void SortLeaf(Element* first, std::ptrdiff_t n) {
    if (n <= longestNetwork) return SortByNetwork(first, n);
    SortByNetwork(first, n / 2);
    SortByNetwork(first + n / 2, n - n / 2);
    MergeHalves(first, n);
  }

private:
  [[gnu::always_inline]] static inline void PutInOrder(KeyType& a, KeyType& b) {
    KeyType const x = a, y = b;
    a = y < x ? y : x;
    b = y < x ? x : y;
  }

  // From both ends at once: either way takes half of the elements, so that neither leaves a half.
  static void MergeHalves(Element* first, std::ptrdiff_t n) {
    KeyType merged[longestLeaf];
    Element const *left = first, *right = first + n / 2;
    Element const *leftEnd = right, *rightEnd = first + n;
    for (std::ptrdiff_t i = 0; i != n / 2; ++i) {
      bool const takesRight = Key::Of(*right) < Key::Of(*left);
      merged[i] = Key::Of(*(takesRight ? right : left));
      right += takesRight;
      left += !takesRight;
      bool const takesLeft = Key::Of(rightEnd[-1]) < Key::Of(leftEnd[-1]);
      merged[n - 1 - i] = Key::Of((takesLeft ? leftEnd : rightEnd)[-1]);
      leftEnd -= takesLeft;
      rightEnd -= !takesLeft;
    }
    if (n % 2 != 0) merged[n / 2] = Key::Of(*(left < leftEnd ? left : right));
    std::transform(merged, merged + n, first, Key::ElementOf);
  }

  static constexpr std::ptrdiff_t longestNetwork = 16;

  struct Exchange {
    std::size_t low, high;
  };
  struct Network {
    std::array<Exchange, 63> exchanges; // as many as 16 elements take
    std::size_t size;
  };

  static constexpr Network NetworkFor(std::size_t n) {
    Network network{};
    std::size_t const half = std::bit_ceil(n) / 2;
    for (std::size_t p = half; p > 0; p /= 2) {
      std::size_t distance = p, remainder = 0;
      for (std::size_t q = half;; q /= 2) {
        for (std::size_t i = 0; i + distance < n; ++i)
          if ((i & p) == remainder) network.exchanges[network.size++] = {i, i + distance};
        if (q == p) break;
        distance = q - p;
        remainder = p;
      }
    }
    return network;
  }

  template <std::size_t n>
  [[gnu::noinline]] static void RunNetwork(Element* first) {
    static constexpr Network network = NetworkFor(n);
    KeyType keys[n];
    Unrolled<n>([&](auto i) { keys[i] = Key::Of(first[i]); });
    Unrolled<network.size>([&](auto i) {
      PutInOrder(keys[network.exchanges[i].low], keys[network.exchanges[i].high]);
    });
    Unrolled<n>([&](auto i) { first[i] = Key::ElementOf(keys[i]); });
  }

  // Calls the function with the constants below `n`, which keeps what it indexes in registers.
  template <std::size_t n, class Function>
  [[gnu::always_inline]] static inline void Unrolled(Function function) {
    [&]<std::size_t... i>(std::index_sequence<i...>) {
      (function(std::integral_constant<std::size_t, i>()), ...);
    }
    (std::make_index_sequence<n>());
  }

  // Of up to `longestNetwork` elements.
  static void SortByNetwork(Element* first, std::ptrdiff_t n) {
    static constexpr auto fromTwoOn = []<std::size_t... i>(std::index_sequence<i...>) {
      return std::array{RunNetwork<i + 2>...};
    }
    (std::make_index_sequence<longestNetwork - 1>());
    if (n >= 2) fromTwoOn[static_cast<std::size_t>(n) - 2](first);
  }
};

struct ScalarWays {
  template <class Element>
  using For = ScalarSteps<Element>;
};

} // namespace hylbas_detail
