/// \file
/// The typed iterator of the ordered maps.
#pragma once

#include "HYLBasExport.h"
#include "HYLBasInstantiations.h"
#include "HYLBasPair.h"
#include "HYLBasTreeNodeGeneric.h"

/// A position in an ordered map: `T` is the element type, `Reference` and `Pointer` are how it is
/// handed out. Holds nothing but its node; the end position is the tree's header. An iterator stays
/// valid until its own element is erased.
template <class T, class Reference, class Pointer>
class HYLBASGENERICS_EXPORT HYLBasTreeIterator {
public:
  /// The position of `node`.
  HYLBasTreeIterator(HYLBasTreeNodeGeneric* node) : m_node(node) {}

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

// What a map returns for a range of equal keys and for an insertion; instantiated in the library.
#define HYLBAS_DECLARE_PAIR_OF(A, B)                                                               \
  extern template HYLBASGENERICS_EXPORT HYLBasPair<A, B>::HYLBasPair(A const&, B const&);
#define HYLBAS_DECLARE_ITERATOR_PAIRS(V)                                                           \
  HYLBAS_DECLARE_PAIR_OF(hylbas_detail::MapIterator<V>, hylbas_detail::MapIterator<V>)             \
  HYLBAS_DECLARE_PAIR_OF(hylbas_detail::MapConstIterator<V>, hylbas_detail::MapConstIterator<V>)   \
  HYLBAS_DECLARE_PAIR_OF(hylbas_detail::MapIterator<V>, bool)
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DECLARE_ITERATOR_PAIRS)
#undef HYLBAS_DECLARE_ITERATOR_PAIRS
#undef HYLBAS_DECLARE_PAIR_OF
