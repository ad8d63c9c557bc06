#include "HYLBasTreeIterator.h"

using hylbas_detail::MapElement;

#define HYLBAS_DEFINE_ITERATORS(V)                                                                 \
  template class HYLBasTreeIterator<MapElement<V>, MapElement<V>&, MapElement<V>*>;                \
  template class HYLBasTreeIterator<MapElement<V>, MapElement<V> const&, MapElement<V> const*>;
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DEFINE_ITERATORS)
