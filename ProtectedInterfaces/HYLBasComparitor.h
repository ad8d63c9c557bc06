/// \file
/// Comparison policies. Every one answers whether its first operand comes strictly before its
/// second; two operands are equivalent when neither comes before the other. The ready-made
/// functions are pure and check nothing.
#pragma once

#include "detail/HYLBasExport.h"

/// The key ordering of a tree: `a` and `b` are addresses of keys, `context` is the value that the
/// tree was given at construction. Must be a strict weak ordering.
using HYLBasCompareFunction = bool (*)(void const* a, void const* b, void const* context);

/// Orders by the type's own `<`; ignores the context.
template <class T>
HYLBASGENERICS_EXPORT bool HYLBasStandardComparitor(void const* a, void const* b,
                                                    void const* /*context*/) {
  return *static_cast<T const*>(a) < *static_cast<T const*>(b);
}

/// Access to the ready-made comparator function of a key type.
template <class T>
class HYLBASGENERICS_EXPORT HYLBasComparitor {
public:
  static HYLBasCompareFunction GetComparitor() { return HYLBasStandardComparitor<T>; }
};

// Instantiated in the library, so that the function has one address in the process.
extern template HYLBASGENERICS_EXPORT_ADDRESS bool
HYLBasStandardComparitor<int>(void const*, void const*, void const*);
extern template class HYLBASGENERICS_EXPORT HYLBasComparitor<int>;

/// Whether the zero-terminated byte strings at `a` and `b` differ in any byte. This is a test for
/// difference, not an ordering: do not give it to a tree.
HYLBASGENERICS_EXPORT bool HYLBasCompareConstCharStar(void const* a, void const* b,
                                                      void const* context);

/// A comparison of two elements by address, without context; passed by value.
struct HYLBasComparitorGeneric {
  using Function = bool (*)(void const* a, void const* b);

  HYLBasComparitorGeneric(Function compare = nullptr) : m_compare(compare) {}

  Function m_compare;
};

/// A comparison of two elements by address, as an interface that callers implement.
class HYLBasBinaryPredicateGeneric {
public:
  virtual bool operator()(void const* a, void const* b) const = 0;
  virtual ~HYLBasBinaryPredicateGeneric() = default;
};

/// The ordering of an index sort: a function of two indices and two context values, with those
/// values. Copied by value into every step of the sort.
struct HYLBASGENERICS_EXPORT HYLBasIxComparitor {
  using Function = bool (*)(unsigned int a, unsigned int b, void const* context1,
                            void const* context2);

  /// Whether index `a` comes strictly before index `b`.
  HYLBASGENERICS_EXPORT_INLINE bool operator()(unsigned int a, unsigned int b) const {
    return m_compare(a, b, m_context1, m_context2);
  }

  Function m_compare;
  void const* m_context1; ///< passed unchanged as the third argument
  void const* m_context2; ///< passed unchanged as the fourth argument
};
