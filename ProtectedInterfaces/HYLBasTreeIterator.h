/// \file
/// The typed iterator of the ordered maps.
#pragma once

#include <concepts>
#include <cstddef>
#include <iterator>
#include <type_traits>

#include "HYLBasPair.h"
#include "HYLBasTreeIteratorGeneric.h"
#include "HYLBasTreeNodeGeneric.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasInstantiations.h"

namespace hylbas_detail {
/// Stands for an iterator where there is none.
struct NoIterator {
  NoIterator() = delete;
  HYLBasTreeNodeGeneric* m_node;
};
} // namespace hylbas_detail

/// A position in an ordered map: `T` is the element type, `Reference` and `Pointer` are how it is
/// handed out. Holds nothing but its node; the end position is the tree's header. An iterator stays
/// valid until its own element is erased; stepping and access cost what they cost on
/// `HYLBasTreeIteratorGeneric`, and are inline.
///
/// Serves range-`for` and the standard algorithms over iterators that only step by `++it`. There is
/// no step back, no `it++`, no ordering. The modifying kind converts to the other one.
template <class T, class Reference, class Pointer>
class HYLBASGENERICS_EXPORT HYLBasTreeIterator {
  using IsModifying = std::is_same<Pointer, T*>;
  // The other kind, each seen from one side only. The reading kind is made from a `Modifying`; the
  // modifying kind compares itself with a `Reading`, as it is the one that would have to convert.
  using Modifying = std::conditional_t<IsModifying::value, hylbas_detail::NoIterator,
                                       HYLBasTreeIterator<T, T&, T*>>;
  using Reading = std::conditional_t<IsModifying::value, HYLBasTreeIterator<T, T const&, T const*>,
                                     hylbas_detail::NoIterator>;

public:
  using iterator_category = std::forward_iterator_tag;
  using value_type = T;
  using difference_type = std::ptrdiff_t;
  using reference = Reference;
  using pointer = Pointer;

  /// No position: to be assigned to before anything else.
  HYLBasTreeIterator() = default;
  /// The position of `node`.
  HYLBasTreeIterator(HYLBasTreeNodeGeneric* node) : m_node(node) {}
  HYLBasTreeIterator(HYLBasTreeIteratorGeneric const& position) : m_node(position.m_node) {}
  HYLBasTreeIterator(HYLBasTreeIterator const& other) : m_node(other.m_node) {}
  HYLBasTreeIterator(Modifying const& other) : m_node(other.m_node) {}
  HYLBasTreeIterator& operator=(HYLBasTreeIterator const& other) = default;

  /// \name Whether both are the same position
  /// @{
  bool operator==(HYLBasTreeIterator const& other) const { return m_node == other.m_node; }
  bool operator!=(HYLBasTreeIterator const& other) const { return m_node != other.m_node; }
  // Templates, so that they take that kind alone: a node converts to either.
  template <std::same_as<Reading> Other>
  bool operator==(Other const& other) const {
    return m_node == other.m_node;
  }
  template <std::same_as<Reading> Other>
  bool operator!=(Other const& other) const {
    return m_node != other.m_node;
  }
  /// @}

  /// The element; not defined at the end position.
  Reference operator*() const { return *operator->(); }
  Pointer operator->() const {
    return static_cast<Pointer>(HYLBasTreeIteratorGeneric(m_node).Dereference());
  }

  /// Moves to the next element; not defined at the end position.
  HYLBasTreeIterator& operator++() {
    HYLBasTreeIteratorGeneric position(m_node);
    position.Next();
    m_node = position.m_node;
    return *this;
  }

  HYLBasTreeNodeGeneric* m_node;
};

namespace hylbas_detail {
template <class V>
using MapElement = HYLBasPair<int const, V>;
template <class V>
using MapIterator = HYLBasTreeIterator<MapElement<V>, MapElement<V>&, MapElement<V>*>;
template <class V>
using MapConstIterator =
    HYLBasTreeIterator<MapElement<V>, MapElement<V> const&, MapElement<V> const*>;
} // namespace hylbas_detail

// Instantiated in the library, with what a map returns for a range of equal keys and for an
// insertion.
#define HYLBAS_DECLARE_PAIR_OF(A, B)                                                               \
  extern template HYLBASGENERICS_EXPORT HYLBasPair<A, B>::HYLBasPair(A const&, B const&);
#define HYLBAS_DECLARE_ITERATOR_PAIRS(V)                                                           \
  HYLBAS_DECLARE_PAIR_OF(hylbas_detail::MapIterator<V>, hylbas_detail::MapIterator<V>)             \
  HYLBAS_DECLARE_PAIR_OF(hylbas_detail::MapConstIterator<V>, hylbas_detail::MapConstIterator<V>)   \
  HYLBAS_DECLARE_PAIR_OF(hylbas_detail::MapIterator<V>, bool)
#define HYLBAS_DECLARE_ITERATORS(V)                                                                \
  extern template class HYLBasTreeIterator<                                                        \
      hylbas_detail::MapElement<V>, hylbas_detail::MapElement<V>&, hylbas_detail::MapElement<V>*>; \
  extern template class HYLBasTreeIterator<hylbas_detail::MapElement<V>,                           \
                                           hylbas_detail::MapElement<V> const&,                    \
                                           hylbas_detail::MapElement<V> const*>;
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DECLARE_ITERATORS)
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DECLARE_ITERATOR_PAIRS)
#undef HYLBAS_DECLARE_ITERATORS
#undef HYLBAS_DECLARE_ITERATOR_PAIRS
#undef HYLBAS_DECLARE_PAIR_OF
