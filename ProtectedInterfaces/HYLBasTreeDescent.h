/// \file
/// The ways from a tree's root down to a key, written once for the type-erased trees and for the
/// typed maps. Used by their headers; there is nothing here for anybody else.
///
/// An order is a function object of two key addresses, true when the first comes strictly before
/// the second. `valueOffset` are the bytes from a node to its value, which begins with its key.
#pragma once

#include <cstddef>

#include "HYLBasComparitor.h"
#include "HYLBasTreeNodeGeneric.h"

namespace hylbas_detail {

/// Every comparison is one call of the tree's comparator function.
struct CalledOrder {
  static constexpr bool isObservable = true;
  HYLBasCompareFunction m_compare;
  void const* m_context;

  bool operator()(void const* a, void const* b) const { return m_compare(a, b, m_context); }
};

/// What the calls of `HYLBasStandardComparitor<T>` say, without calls: nobody can count them.
template <class T>
struct InlinedOrder {
  static constexpr bool isObservable = false;

  bool operator()(void const* a, void const* b) const {
    return *static_cast<T const*>(a) < *static_cast<T const*>(b);
  }
};

inline char const* ValueOf(HYLBasTreeNodeGeneric const* x, int valueOffset) {
  return reinterpret_cast<char const*>(x) + valueOffset;
}

/// The left or right child by its address: which one it is cannot be predicted, so that a choice by
/// a jump would cost more than the rest of the step.
inline HYLBasTreeNodeGeneric* Child(HYLBasTreeNodeGeneric const* x, bool isRight) {
  static_assert(offsetof(HYLBasTreeNodeGeneric, m_right) ==
                offsetof(HYLBasTreeNodeGeneric, m_left) + sizeof(HYLBasTreeNodeGeneric*));
  auto const* const left =
      reinterpret_cast<char const*>(x) + offsetof(HYLBasTreeNodeGeneric, m_left);
  return *reinterpret_cast<HYLBasTreeNodeGeneric* const*>(left +
                                                          isRight * sizeof(HYLBasTreeNodeGeneric*));
}

/// The first node that is not before `key`, or the header.
template <class Order>
HYLBasTreeNodeGeneric* LowerBound(HYLBasTreeNodeGeneric* header, int valueOffset, void const* key,
                                  Order order) {
  HYLBasTreeNodeGeneric* y = header;
  for (HYLBasTreeNodeGeneric* x = header->m_parent; x != nullptr;) {
    bool const isBefore = order(ValueOf(x, valueOffset), key);
    y = isBefore ? y : x;
    x = Child(x, isBefore);
  }
  return y;
}

/// The first node that is after `key`, or the header.
template <class Order>
HYLBasTreeNodeGeneric* UpperBound(HYLBasTreeNodeGeneric* header, int valueOffset, void const* key,
                                  Order order) {
  HYLBasTreeNodeGeneric* y = header;
  for (HYLBasTreeNodeGeneric* x = header->m_parent; x != nullptr;) {
    bool const isAfter = order(key, ValueOf(x, valueOffset));
    y = isAfter ? x : y;
    x = Child(x, !isAfter);
  }
  return y;
}

/// Where a new value belongs in a tree of unique keys, or the value that is there.
struct NewPlace {
  HYLBasTreeNodeGeneric* equivalent; ///< null when there is none
  HYLBasTreeNodeGeneric* parent;
  bool isLeft;
};

/// One comparison finds the place of a value that is after all others, as in ascending insertion;
/// one descent any other. The neighbour before the place is the last node passed to the right.
template <class Order>
NewPlace FindPlace(HYLBasTreeNodeGeneric* header, int valueOffset, void const* value, Order order) {
  NewPlace place{nullptr, header, true};
  HYLBasTreeNodeGeneric* x = header->m_parent;
  if (x == nullptr) return place;
  HYLBasTreeNodeGeneric* const last = header->m_right;
  if (order(ValueOf(last, valueOffset), value)) return {nullptr, last, false};
  HYLBasTreeNodeGeneric* before = nullptr;
  do {
    place.parent = x;
    place.isLeft = order(value, ValueOf(x, valueOffset));
    before = place.isLeft ? before : x;
    x = Child(x, !place.isLeft);
  } while (x != nullptr);
  if (before != nullptr && !order(ValueOf(before, valueOffset), value)) place.equivalent = before;
  return place;
}

/// The first node that is equivalent to `key`, or the header.
template <class Order>
HYLBasTreeNodeGeneric* Find(HYLBasTreeNodeGeneric* header, int valueOffset, void const* key,
                            Order order) {
  HYLBasTreeNodeGeneric* const y = LowerBound(header, valueOffset, key, order);
  return y == header || order(key, ValueOf(y, valueOffset)) ? header : y;
}

} // namespace hylbas_detail
