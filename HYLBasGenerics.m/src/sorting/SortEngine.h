/// \file
/// The sort of whole arrays in ascending order, for elements that are nothing but their value:
/// equal ones cannot be told apart, so every sort has the same result and this one is free to take
/// the fastest way. In place, without memory of its own but for one leaf on the stack.
///
/// Most of a sort's time goes into branches that the processor cannot foresee. There are none in
/// the inner loops here: partitions advance by the result of a comparison, and short ranges are
/// sorted by networks of exchanges (K. E. Batcher, "Sorting Networks and Their Applications", 1968;
/// D. E. Knuth, "The Art of Computer Programming", volume 3, 5.2.2, algorithm M). Two times lg n
/// partitions in a row that do not finish end in a heap sort, so that no input takes more than
/// n lg n steps. Recursion is at most lg n deep: it takes the shorter part.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <type_traits>
#include <utility>

#include "HYLBasPair.h"
#include "IntrosortSteps.h"

namespace hylbas_detail {

/// What elements are compared by. Numbers by themselves.
template <class Element>
struct SortKey {
  using Type = Element;
  static Type Of(Element const& element) { return element; }
  static Element ElementOf(Type key) { return key; }
};

/// Pairs by one number: `first` in the upper half, and `second` with its sign flipped, so that the
/// unsigned order of the lower half is the signed one.
template <>
struct SortKey<HYLBasPair<int, int>> {
  using Type = long long;
  using Pair = HYLBasPair<int, int>;
  static Type Of(Pair const& pair) {
    return static_cast<Type>(Turned(std::bit_cast<unsigned long long>(pair)) ^ sign);
  }
  static Pair ElementOf(Type key) {
    return std::bit_cast<Pair>(Turned(static_cast<unsigned long long>(key) ^ sign));
  }

private:
  static constexpr unsigned long long sign = 0x80000000u;
  static unsigned long long Turned(unsigned long long bits) {
    return std::endian::native == std::endian::little ? std::rotl(bits, 32) : bits;
  }
};

template <class Element>
class SortEngine {
  using Key = SortKey<Element>;
  using KeyType = typename Key::Type;
  struct KeysAscending {
    bool operator()(Element const& a, Element const& b) const { return Key::Of(a) < Key::Of(b); }
  };
  using Steps = IntrosortSteps<Element, std::ptrdiff_t, KeysAscending>;

public:
  static constexpr std::ptrdiff_t longestLeaf = 32; // longer ranges are partitioned

  static void Sort(Element* first, Element* last) {
    if (last - first > longestLeaf) {
      if (IsRun(first, last, [](auto const& a, auto const& b) { return !(b < a); })) return;
      if (IsRun(first, last, [](auto const& a, auto const& b) { return !(a < b); }))
        return std::reverse(first, last);
    }
    SortUnordered(first, last);
  }

  /// The same without a look whether the array is in order, or in reverse order, already.
  static void SortUnordered(Element* first, Element* last) {
    Quicksort(first, last, 2 * Steps::FloorLog2(last - first), true);
  }

private:
  template <class InOrder>
  static bool IsRun(Element const* first, Element const* last, InOrder inOrder) {
    auto previous = Key::Of(*first);
    while (++first != last) {
      auto const key = Key::Of(*first);
      if (!inOrder(previous, key)) return false;
      previous = key;
    }
    return true;
  }

  // Unless `isLeftmost`, `first[-1]` is an element of the array, and none in the range is less than
  // it: it was the pivot, or lay before the cut, of a partition that came before.
  static void Quicksort(Element* first, Element* last, std::ptrdiff_t depth, bool isLeftmost) {
    while (last - first > longestLeaf) {
      if (depth-- == 0) return Steps::PartialSort(first, last, last, {});
      std::swap(*first, *MedianOfNine(first, last));
      auto const pivot = Key::Of(*first);
      if (!isLeftmost && !(Key::Of(first[-1]) < pivot)) {
        // The pivot is the least element: all that are equal to it are in their places.
        first = Partition(first, last, [pivot](auto const& key) { return !(pivot < key); });
        continue;
      }
      Element* const cut =
          Partition(first + 1, last, [pivot](auto const& key) { return key < pivot; }) - 1;
      std::swap(*first, *cut);
      if (cut - first < last - cut) {
        Quicksort(first, cut, depth, isLeftmost);
        first = cut + 1;
        isLeftmost = false;
      } else {
        Quicksort(cut + 1, last, depth, false);
        last = cut;
      }
    }
    SortLeaf(first, last - first);
  }

  // Moves the elements whose keys belong to the left before all others; returns the first of those.
  // The elements between `cut` and `next` are those found to belong to the right.
  template <class BelongsLeft>
  static Element* Partition(Element* first, Element* last, BelongsLeft belongsLeft) {
    Element* cut = first;
    for (Element* next = first; next != last; ++next) {
      Element const element = *next;
      *next = *cut;
      *cut = element;
      cut += belongsLeft(Key::Of(element));
    }
    return cut;
  }

  // The median of the medians of three times three. At uneven distances, because input often has
  // patterns at even ones: a ramp up and down, of which the ends and the middle say nothing.
  static Element* MedianOfNine(Element* first, Element* last) {
    std::ptrdiff_t const step = (last - first) / 16;
    MedianToMiddle(first[1 * step], first[5 * step], first[12 * step]);
    MedianToMiddle(first[2 * step], first[7 * step], first[15 * step]);
    MedianToMiddle(first[3 * step], first[9 * step], first[14 * step]);
    MedianToMiddle(first[5 * step], first[7 * step], first[9 * step]);
    return first + 7 * step;
  }

  static void MedianToMiddle(Element& a, Element& b, Element& c) {
    auto x = Key::Of(a), y = Key::Of(b), z = Key::Of(c);
    PutInOrder(x, y);
    PutInOrder(y, z);
    PutInOrder(x, y);
    a = Key::ElementOf(x);
    b = Key::ElementOf(y);
    c = Key::ElementOf(z);
  }

  [[gnu::always_inline]] static inline void PutInOrder(KeyType& a, KeyType& b) {
    KeyType const x = a, y = b;
    a = y < x ? y : x;
    b = y < x ? x : y;
  }

  // Of up to `longestLeaf` elements: two halves, merged.
  static void SortLeaf(Element* first, std::ptrdiff_t n) {
    if (n <= longestNetwork) return SortByNetwork(first, n);
    SortByNetwork(first, n / 2);
    SortByNetwork(first + n / 2, n - n / 2);
    MergeHalves(first, n);
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

} // namespace hylbas_detail
