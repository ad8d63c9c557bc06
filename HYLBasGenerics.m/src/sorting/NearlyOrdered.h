/// \file
/// What a sort saves on an array that is in order but for a few elements, or is two runs. Real data
/// often is, and then one or two passes over it do instead of lg n.
#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>

namespace hylbas_detail {

/// `Before` orders elements; equal ones cannot be told apart. In place, with `roomSize` elements on
/// the stack. Each way may give up; the elements may be in another order then. Those that return an
/// address have sorted the elements below it.
template <class Element, class Before>
class NearlyOrdered {
public:
  static constexpr std::ptrdiff_t roomSize = 512;

  /// Sorts an array that is one run up or down, or two of which one comes before the other, or a
  /// run up with at most one of `share` elements behind it, which `sort` sorts. Leaves others as
  /// they are.
  template <class Sort>
  static Element* SortRuns(Element* first, Element* last, std::ptrdiff_t share, Sort sort) {
    Run a = RunFrom(first, last);
    if (a.end == last) {
      a.MakeAscend();
      return last;
    }
    Run b = RunFrom(a.end, last);
    if (b.end == last) {
      // A peak or a valley is the end of either run.
      if (a.isDescending != b.isDescending && a.end - a.begin > 1 &&
          (a.isDescending ? !IsBefore(a.end[-2], b.Greatest()) : !IsBefore(b.Least(), a.end[-2])))
        b.begin = --a.end;
      if (!IsBefore(b.Least(), a.Greatest())) {
        a.MakeAscend();
        b.MakeAscend();
        return last;
      }
      if (!IsBefore(a.Least(), b.Greatest())) {
        std::reverse(first, last);
        Element* const middle = first + (last - b.begin);
        if (!b.isDescending) std::reverse(first, middle);
        if (!a.isDescending) std::reverse(middle, last);
        return last;
      }
    }
    if (a.isDescending) return first + 1;
    if (last - a.end > (last - first) / share) return a.end;
    sort(a.end, last);
    Merge(first, a.end, last);
    return last;
  }

  /// Of at least `far` elements. Reads no further than those where they are out of order.
  static bool IsAscending(Element const* first, Element const* last) {
    bool isOutOfOrder = false; // without branches, which random elements would take at random
    for (std::ptrdiff_t i = 1; i != far; ++i)
      isOutOfOrder |= IsBefore(first[i], first[i - 1]);
    return !isOutOfOrder && AscentEnd(first + far, last) == last;
  }

  /// What a few samples show.
  struct Look {
    static constexpr std::ptrdiff_t samples = 4, size = 32, all = samples * size;
    std::ptrdiff_t descents = 0;           // among neighbours
    std::ptrdiff_t farDescents = 0;        // among elements with some between them
    std::ptrdiff_t most = 0, least = size; // descents of one sample
  };
  static constexpr std::ptrdiff_t fewestToLookAt = 64;
  static Look LookAt(Element const* first, Element const* last) {
    Look look;
    for (std::ptrdiff_t sample = 0; sample != Look::samples; ++sample) {
      Element const* const from =
          first + (last - first - Look::size - far) / (Look::samples - 1) * sample;
      std::ptrdiff_t descents = 0;
      for (std::ptrdiff_t i = 0; i != Look::size; ++i) {
        descents += IsBefore(from[i + 1], from[i]);
        look.farDescents += IsBefore(from[i + far], from[i]);
      }
      look.descents += descents;
      look.most = std::max(look.most, descents);
      look.least = std::min(look.least, descents);
    }
    return look;
  }

  /// By insertion, as long as no element is far from its place.
  static Element* SortByInsertion(Element* first, Element* sorted, Element* last) {
    for (Element* next = sorted; next != last; ++next) {
      if (!IsBefore(*next, next[-1])) continue;
      if (next - first > far && IsBefore(*next, next[-far])) return next;
      Element const element = *next;
      Element* place = next;
      do {
        *place = place[-1];
        --place;
      } while (place != first && IsBefore(element, place[-1]));
      *place = element;
    }
    return last;
  }

  /// Takes out the elements that stand in the way of order, at most one of `share`, sorts them by
  /// `sort` and merges them with the others. After E. Ernerfeldt, "Drop-Merge sort", 2017. Returns
  /// whether it did: with more of them it gives up.
  template <class Sort>
  static bool SortByMoving(Element* first, Element* sorted, Element* last, std::ptrdiff_t share,
                           Sort sort) {
    Element* const kept = KeepAscending(first, sorted, last, share);
    if (kept == nullptr) return false;
    sort(kept, last);
    Merge(first, kept, last);
    return true;
  }

private:
  static constexpr std::ptrdiff_t far = 8;

  static bool IsBefore(Element const& a, Element const& b) { return Before()(a, b); }

  union Room {
    Room() {} // leaves them as they are, where pairs would be set to 0
    Element elements[roomSize];
  };

  struct Run {
    Element *begin, *end;
    bool isDescending;
    Element const& Least() const { return isDescending ? end[-1] : *begin; }
    Element const& Greatest() const { return isDescending ? *begin : end[-1]; }
    void MakeAscend() const {
      if (isDescending) std::reverse(begin, end);
    }
  };

  static Run RunFrom(Element* first, Element* last) {
    Element* end = AscentEnd(first + 1, last);
    if (end == last || IsBefore(*first, end[-1])) return {first, end, false};
    while (end != last && !IsBefore(end[-1], *end))
      ++end;
    return {first, end, true};
  }

  // The first element from `next` on that comes before the one below it.
  template <class Pointer>
  static Pointer AscentEnd(Pointer next, Pointer last) {
    while (next != last && !IsBefore(*next, next[-1]))
      ++next;
    return next;
  }

  // Brings elements in order to the front and what stands in their way behind them: one of `share`
  // among those seen and a few, or gives up and returns null. Returns the first one behind.
  //
  // Those in the way lie between `kept` and `next`.
  static Element* KeepAscending(Element* first, Element* sorted, Element* last,
                                std::ptrdiff_t share) {
    Element *kept = sorted, *next = sorted, *streak = sorted;
    while (next != last) {
      if (!IsBefore(*next, kept[-1])) {
        Element* const end = AscentEnd(next + 1, last);
        kept = Exchange(kept, next, end);
        next = streak = end;
        continue;
      }
      if (next - kept > (next - first) / share + 2 * far) return nullptr;
      bool const fitsBelow = kept - first == 1 || !IsBefore(*next, kept[-2]);
      if (fitsBelow && next + 1 != last && IsBefore(next[1], kept[-1])) {
        std::swap(*next, kept[-1]); // the last one kept was too great
        streak = ++next;
      } else if (++next - streak == far) {
        // Perhaps some that were kept are too great; then those after them get another chance. No
        // such streak begins at the same place again: the last of it can be kept now.
        Element const& usual = Median(next[-3], next[-2], next[-1]);
        Element* fewer = kept;
        while (fewer != first && kept - fewer <= far && IsBefore(usual, fewer[-1]))
          --fewer;
        if (fewer != kept && kept - fewer <= far) {
          next -= far;
          if (fewer == first) std::swap(*fewer++, *next++);
          kept = fewer;
        }
        streak = next;
      }
    }
    return kept;
  }

  static Element const& Median(Element const& a, Element const& b, Element const& c) {
    return std::max(std::min(a, b, Before()), std::min(std::max(a, b, Before()), c, Before()),
                    Before());
  }

  // Moves [middle, last) before [first, middle), whose order may change. Returns its new end.
  static Element* Exchange(Element* first, Element* middle, Element* last) {
    std::ptrdiff_t const gap = middle - first;
    if (gap == 0) return last;
    if (gap <= roomSize && gap < last - middle) {
      Room room;
      std::copy(first, middle, room.elements);
      Element* const end = std::copy(middle, last, first);
      std::copy(room.elements, room.elements + gap, end);
      return end;
    }
    while (middle != last) {
      Element* const end = middle + std::min(gap, last - middle);
      first = std::swap_ranges(middle, end, first);
      middle = end;
    }
    return first;
  }

  // Of two sorted ranges. The second one is halved until it fits into the room.
  static void Merge(Element* first, Element* middle, Element* last) {
    while (last - middle > roomSize) {
      Element* const right = middle + (last - middle) / 2;
      Element* const left = std::upper_bound(first, middle, *right, Before());
      Element* const cut = std::rotate(left, middle, right);
      Merge(cut, right, last);
      middle = left;
      last = cut;
    }
    MergeShort(first, middle, last);
  }

  static void MergeShort(Element* first, Element* middle, Element* last) {
    Room room;
    Element* next = std::copy(middle, last, room.elements);
    while (next != room.elements) {
      --next;
      Element* const place = UpperBoundNearEnd(first, middle, *next);
      last = std::copy_backward(place, middle, last);
      middle = place;
      *--last = *next;
    }
  }

  static Element* UpperBoundNearEnd(Element* first, Element* last, Element const& element) {
    std::ptrdiff_t step = 1;
    while (step < last - first && IsBefore(element, last[-step])) {
      last -= step;
      step *= 2;
    }
    return std::upper_bound(last - std::min(step, last - first), last, element, Before());
  }
};

} // namespace hylbas_detail
