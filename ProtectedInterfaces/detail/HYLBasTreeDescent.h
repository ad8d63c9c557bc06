/// \file
/// The ways from a tree's root down to a key, written once for the type-erased trees and for the
/// typed maps. Used by their headers; there is nothing here for anybody else.
///
/// An order is a function object of two key addresses, true when the first comes strictly before
/// the second. `valueOffset` are the bytes from a node to its value, which begins with its key.
#pragma once

#include "HYLBasComparitor.h"
#include "HYLBasPrefetch.h"
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

/// \name Steps down
/// Each goes from `x` to the child on the side where `key` belongs: to the right where `x` is
/// before it (`StepToLowerBound`) or not after it (the others), else to the left, where `x` becomes
/// `bound`. `StepUnlessAt` stays where `x` has the key itself, and says so.
/// @{
template <class T>
bool StepUnlessAt(HYLBasTreeNodeGeneric*& x, int valueOffset, T key, InlinedOrder<T>) {
  T const nodeKey = *reinterpret_cast<T const*>(ValueOf(x, valueOffset));
  if (nodeKey == key) return true;
  x = nodeKey < key ? x->m_right : x->m_left;
  return false;
}

template <class Order>
void StepToLowerBound(HYLBasTreeNodeGeneric*& x, HYLBasTreeNodeGeneric*& bound, int valueOffset,
                      void const* key, Order order) {
  bool const goesRight = order(ValueOf(x, valueOffset), key);
  bound = goesRight ? bound : x;
  x = goesRight ? x->m_right : x->m_left;
}

template <class Order>
void StepToUpperBound(HYLBasTreeNodeGeneric*& x, HYLBasTreeNodeGeneric*& bound, int valueOffset,
                      void const* key, Order order) {
  bool const goesLeft = order(key, ValueOf(x, valueOffset));
  bound = goesLeft ? x : bound;
  x = goesLeft ? x->m_left : x->m_right;
}

template <class Order>
void StepToLeaf(HYLBasTreeNodeGeneric*& x, HYLBasTreeNodeGeneric*& bound, int valueOffset,
                void const* key, Order order) {
  bool const goesLeft = order(key, ValueOf(x, valueOffset));
  bound = goesLeft ? bound : x;
  x = goesLeft ? x->m_left : x->m_right;
}

// The address sanitizer does not see what instructions of our own read. g++ and clang tell of it in
// different ways.
#if defined(__SANITIZE_ADDRESS__)
#define HYLBAS_WATCHED_READS
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HYLBAS_WATCHED_READS
#endif
#endif

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__)) &&                             \
    !defined(HYLBAS_WATCHED_READS)
// Which way a descent goes cannot be predicted, and a mispredicted jump costs more than all the
// rest of a step. No way of writing the choices keeps g++ from making jumps of them in one place or
// another, so these are the conditional moves themselves.
#define HYLBAS_COMPARE_WITH_KEY "cmp{l}\t{%[key], %[nodeKey]|%[nodeKey], %[key]}\n\t"
#define HYLBAS_RIGHT_IF(condition) "cmov" condition "\t{%[right], %[x]|%[x], %[right]}"
#define HYLBAS_BOUND_IF(condition) "cmov" condition "\t{%[node], %[bound]|%[bound], %[node]}\n\t"
#define HYLBAS_STEP_INPUTS                                                                         \
  [key] "r"(*static_cast<int const*>(key)), [node] "r"(node),                                      \
      [nodeKey] "m"(*reinterpret_cast<int const*>(ValueOf(node, valueOffset))),                    \
      [right] "m"(node->m_right)

inline bool StepUnlessAt(HYLBasTreeNodeGeneric*& x, int valueOffset, int key, InlinedOrder<int>) {
  HYLBasTreeNodeGeneric* const node = x;
  int const nodeKey = *reinterpret_cast<int const*>(ValueOf(node, valueOffset));
  if (nodeKey == key) return true;
  x = node->m_left;
  asm(HYLBAS_COMPARE_WITH_KEY HYLBAS_RIGHT_IF("l")
      : [x] "+&r"(x)
      : [key] "r"(key), [nodeKey] "r"(nodeKey), [right] "m"(node->m_right)
      : "cc");
  return false;
}

inline void StepToLowerBound(HYLBasTreeNodeGeneric*& x, HYLBasTreeNodeGeneric*& bound,
                             int valueOffset, void const* key, InlinedOrder<int>) {
  HYLBasTreeNodeGeneric* const node = x;
  x = node->m_left;
  asm(HYLBAS_COMPARE_WITH_KEY HYLBAS_BOUND_IF("ge") HYLBAS_RIGHT_IF("l")
      : [x] "+&r"(x), [bound] "+&r"(bound)
      : HYLBAS_STEP_INPUTS
      : "cc");
}

inline void StepToUpperBound(HYLBasTreeNodeGeneric*& x, HYLBasTreeNodeGeneric*& bound,
                             int valueOffset, void const* key, InlinedOrder<int>) {
  HYLBasTreeNodeGeneric* const node = x;
  x = node->m_left;
  asm(HYLBAS_COMPARE_WITH_KEY HYLBAS_BOUND_IF("g") HYLBAS_RIGHT_IF("le")
      : [x] "+&r"(x), [bound] "+&r"(bound)
      : HYLBAS_STEP_INPUTS
      : "cc");
}

inline void StepToLeaf(HYLBasTreeNodeGeneric*& x, HYLBasTreeNodeGeneric*& bound, int valueOffset,
                       void const* key, InlinedOrder<int>) {
  HYLBasTreeNodeGeneric* const node = x;
  x = node->m_left;
  asm(HYLBAS_COMPARE_WITH_KEY HYLBAS_BOUND_IF("le") HYLBAS_RIGHT_IF("le")
      : [x] "+&r"(x), [bound] "+&r"(bound)
      : HYLBAS_STEP_INPUTS
      : "cc");
}

#undef HYLBAS_STEP_INPUTS
#undef HYLBAS_BOUND_IF
#undef HYLBAS_RIGHT_IF
#undef HYLBAS_COMPARE_WITH_KEY
#endif
#undef HYLBAS_WATCHED_READS
/// @}

/// The first node that is not before `key`, or the header.
template <class Order>
HYLBasTreeNodeGeneric* LowerBound(HYLBasTreeNodeGeneric* header, int valueOffset, void const* key,
                                  Order order) {
  HYLBasTreeNodeGeneric* y = header;
  for (HYLBasTreeNodeGeneric* x = header->m_parent; x != nullptr;)
    StepToLowerBound(x, y, valueOffset, key, order);
  return y;
}

/// The first node that is after `key`, or the header.
template <class Order>
HYLBasTreeNodeGeneric* UpperBound(HYLBasTreeNodeGeneric* header, int valueOffset, void const* key,
                                  Order order) {
  HYLBasTreeNodeGeneric* y = header;
  for (HYLBasTreeNodeGeneric* x = header->m_parent; x != nullptr;)
    StepToUpperBound(x, y, valueOffset, key, order);
  return y;
}

/// The place of a new value after all that are not after it.
struct Leaf {
  HYLBasTreeNodeGeneric* parent; ///< the last node of the descent; the header of an empty tree
  HYLBasTreeNodeGeneric* before; ///< the neighbour before the place; null when there is none

  /// Where `parent` is a node, it is one of the two neighbours.
  bool IsLeft() const { return parent != before; }

  /// Whether a value equivalent to `value` is there, in `before`.
  template <class Order>
  bool IsAfterEquivalent(int valueOffset, void const* value, Order order) const {
    return before != nullptr && !order(ValueOf(before, valueOffset), value);
  }
};

template <class Order>
Leaf FindLeaf(HYLBasTreeNodeGeneric* header, int valueOffset, void const* value, Order order) {
  Leaf leaf{header, nullptr};
  for (HYLBasTreeNodeGeneric* x = header->m_parent; x != nullptr;) {
    leaf.parent = x;
    // Both: the child not taken is needed by many a rebalancing, as the uncle of the new node.
    Prefetch(x->m_left);
    Prefetch(x->m_right);
    StepToLeaf(x, leaf.before, valueOffset, value, order);
  }
  return leaf;
}

/// The same leaf, after one comparison where the value comes after all others, as in ascending
/// insertion.
template <class Order>
Leaf FindLeafFromEnd(HYLBasTreeNodeGeneric* header, int valueOffset, void const* value,
                     Order order) {
  HYLBasTreeNodeGeneric* const last = header->m_right;
  if (last != header && order(ValueOf(last, valueOffset), value)) return {last, last};
  return FindLeaf(header, valueOffset, value, order);
}

/// The first node that is equivalent to `key`, or the header.
template <class Order>
HYLBasTreeNodeGeneric* Find(HYLBasTreeNodeGeneric* header, int valueOffset, void const* key,
                            Order order) {
  HYLBasTreeNodeGeneric* const y = LowerBound(header, valueOffset, key, order);
  return y == header || order(key, ValueOf(y, valueOffset)) ? header : y;
}

/// The same in a tree of which no two values are equivalent. It goes down to the node only, by a
/// jump out of each step that is taken once: lookups that come again and again in the same order,
/// which processors learn by heart, take two thirds of the time of `Find`, others no more than
/// that. Two steps are a round because the processor learns the end of a descent better from two
/// jumps each.
template <class T>
HYLBasTreeNodeGeneric* FindUnique(HYLBasTreeNodeGeneric* header, int valueOffset, T const& key,
                                  InlinedOrder<T> order) {
  HYLBasTreeNodeGeneric* x = header->m_parent;
  while (x != nullptr) {
    if (StepUnlessAt(x, valueOffset, key, order)) return x;
    if (x == nullptr) break;
    if (StepUnlessAt(x, valueOffset, key, order)) return x;
  }
  return header;
}

} // namespace hylbas_detail
