/// \file
/// The two steps in which a sort spends its time, on vectors: partitions and the sort of short
/// ranges. VectorSort.h includes this once for each instruction set, in the namespace that has its
/// `Lanes` and for which the compiler may use its instructions. There is no other way to have
/// functions that differ in their `target` alone.

/// Elements are read and written by their keys, which their bytes are.
template <class Element>
class Steps {
  using Key = typename SortKey<Element>::Type;
  using L = Lanes<Key>;
  using Vector = typename L::Vector;
  static constexpr std::ptrdiff_t lanes = L::count;
  static constexpr int blockVectors = 4;
  static constexpr std::ptrdiff_t block = blockVectors * lanes;
  static constexpr int leafVectors = 8;

public:
  static constexpr std::ptrdiff_t longestLeaf = leafVectors * lanes;
  static constexpr std::ptrdiff_t fewMoved = 2 * lanes;
  static constexpr bool looksForOrder = false;

  /// Moves the elements whose keys belong to the left before all others: those below the pivot, or
  /// up to it. Returns the first of the others. At least `2 * block` elements.
  ///
  /// Elements read from one end are written to both. Two blocks kept aside make room for that, and
  /// each block is read from where less room is, so that there is enough at either end. After
  /// S. Gueron and V. Krasnov, "Fast Quicksort Implementation Using AVX Instructions", 2016, and
  /// B. Bramas, "A Novel Hybrid Quicksort Algorithm Vectorized Using AVX-512 on Intel Skylake",
  /// 2017.
  template <bool withEqual>
  static Element* Partition(Element* first, Element* last, Key pivot) {
    Split<withEqual> split{L::Broadcast(pivot), first, last};
    Element *unread = first + block, *unreadEnd = last - block;
    Vector fromLeft[blockVectors], fromRight[blockVectors];
    for (int i = 0; i != blockVectors; ++i) {
      fromLeft[i] = L::Load(first + i * lanes);
      fromRight[i] = L::Load(unreadEnd + i * lanes);
    }
    SplitUnread<withEqual, blockVectors>(split, unread, unreadEnd);
    SplitUnread<withEqual, 1>(split, unread, unreadEnd);

    Vector const rest = L::LoadPart(unread, unreadEnd - unread);
    split.Part(rest, unreadEnd - unread);
    for (int i = 0; i != blockVectors; ++i) {
      split.Whole(fromLeft[i]);
      split.Whole(fromRight[i]);
    }
    return split.left;
  }

  /// Of up to `longestLeaf` elements.
  static void SortLeaf(Element* first, std::ptrdiff_t n) {
    if (n <= lanes) return SortVectors<1>(first, n);
    if (n <= 2 * lanes) return SortVectors<2>(first, n);
    if (n <= 4 * lanes) return SortVectors<4>(first, n);
    SortVectors<8>(first, n);
  }

private:
  // Writes elements at the end of the left part or at the beginning of the right part, in front of
  // which at least as many places are free as a vector has lanes.
  template <bool withEqual>
  struct Split {
    Vector pivot;
    Element *left, *right;

    [[gnu::always_inline]] unsigned int BelongLeft(Vector keys) const {
      return withEqual ? ~L::MaskOfLess(pivot, keys) : L::MaskOfLess(keys, pivot);
    }
    [[gnu::always_inline]] void Whole(Vector keys) {
      auto const n = L::Split(keys, BelongLeft(keys), left, right);
      left += n;
      right -= lanes - n;
    }
    // Of its first n lanes.
    [[gnu::always_inline]] void Part(Vector keys, std::ptrdiff_t n) {
      unsigned int const belongLeft = BelongLeft(keys);
      for (std::ptrdiff_t i = 0; i != n; ++i) {
        Element const element = SortKey<Element>::ElementOf(keys[i]);
        bool const isLeft = belongLeft >> i & 1;
        *left = right[-1] = element;
        left += isLeft;
        right -= !isLeft;
      }
    }
  };

  template <bool withEqual, int n>
  [[gnu::always_inline]] static void SplitUnread(Split<withEqual>& split, Element*& unread,
                                                 Element*& unreadEnd) {
    Split<withEqual> here = split;
    Element *next = unread, *end = unreadEnd;
    while (end - next >= n * lanes) {
      bool const readsLeft = next - here.left <= here.right - end;
      Element const* const from = readsLeft ? next : end - n * lanes;
      next += readsLeft ? n * lanes : 0;
      end -= readsLeft ? 0 : n * lanes;
      Vector keys[n];
      for (int i = 0; i != n; ++i)
        keys[i] = L::Load(from + i * lanes);
      for (int i = 0; i != n; ++i)
        here.Whole(keys[i]);
    }
    split = here;
    unread = next;
    unreadEnd = end;
  }

  // Bitonic sorts of `n` vectors (K. E. Batcher, "Sorting Networks and Their Applications", 1968).
  // The lanes that the elements leave hold the greatest key, which stays behind them.
  template <int n>
  [[gnu::noinline]] static void SortVectors(Element* first, std::ptrdiff_t elements) {
    Vector v[n];
    for (int i = 0; i != n; ++i)
      v[i] = i < n / 2 ? L::Load(first + i * lanes)
                       : L::LoadPart(first + i * lanes, elements - i * lanes);
    for (int i = 0; i != n; ++i)
      v[i] = SortLanes(v[i]);
    if constexpr (n >= 2) MergePairs<1>(v);
    if constexpr (n >= 4) MergePairs<2>(v);
    if constexpr (n >= 8) MergePairs<4>(v);
    for (int i = 0; i != n; ++i)
      if (i < n / 2)
        L::Store(first + i * lanes, v[i]);
      else
        L::StorePart(first + i * lanes, v[i], elements - i * lanes);
  }

  // Merges each sorted `half` vectors with the sorted `half` after them.
  template <int half, int n>
  [[gnu::always_inline]] static void MergePairs(Vector (&v)[n]) {
    for (int i = 0; i != n; i += 2 * half) {
      Vector greater[half];
      for (int k = 0; k != half; ++k) {
        Vector const a = v[i + k], b = Crossed<lanes - 1>(v[i + 2 * half - 1 - k]);
        v[i + k] = Min(a, b);
        greater[k] = Max(a, b);
      }
      for (int k = 0; k != half; ++k)
        v[i + half + k] = greater[k];
    }
    for (int distance = half / 2; distance > 0; distance /= 2)
      for (int i = 0; i != n; ++i)
        if ((i & distance) == 0) {
          Vector const a = v[i], b = v[i + distance];
          v[i] = Min(a, b);
          v[i + distance] = Max(a, b);
        }
    for (int i = 0; i != n; ++i)
      v[i] = MergeLanes<lanes / 2>(v[i]);
  }

  [[gnu::always_inline]] static Vector SortLanes(Vector v) {
    v = Exchange<1>(v);
    v = MergeLanes<1>(Exchange<3>(v));
    if constexpr (lanes >= 8) v = MergeLanes<2>(Exchange<7>(v));
    if constexpr (lanes >= 16) v = MergeLanes<4>(Exchange<15>(v));
    return v;
  }
  // Sorts each bitonic sequence of `2 * distance` lanes.
  template <std::size_t distance>
  [[gnu::always_inline]] static Vector MergeLanes(Vector v) {
    v = Exchange<distance>(v);
    if constexpr (distance > 1) v = MergeLanes<distance / 2>(v);
    return v;
  }
  // Puts each lane i and lane i ^ other in order.
  template <std::size_t other>
  [[gnu::always_inline]] static Vector Exchange(Vector v) {
    Vector const crossed = Crossed<other>(v);
    return Upper<other>(Min(v, crossed), Max(v, crossed), std::make_index_sequence<lanes>());
  }
  template <std::size_t other>
  [[gnu::always_inline]] static Vector Crossed(Vector v) {
    return Crossed<other>(v, std::make_index_sequence<lanes>());
  }
  template <std::size_t other, std::size_t... i>
  [[gnu::always_inline]] static Vector Crossed(Vector v, std::index_sequence<i...>) {
    return __builtin_shufflevector(v, v, static_cast<int>(i ^ other)...);
  }
  template <std::size_t other, std::size_t... i>
  [[gnu::always_inline]] static Vector Upper(Vector low, Vector high, std::index_sequence<i...>) {
    return __builtin_shufflevector(low, high, static_cast<int>((i ^ other) < i ? i + lanes : i)...);
  }
  [[gnu::always_inline]] static Vector Min(Vector a, Vector b) { return b < a ? b : a; }
  [[gnu::always_inline]] static Vector Max(Vector a, Vector b) { return b < a ? a : b; }
};

struct Ways {
  template <class Element>
  using For = Steps<Element>;
};
