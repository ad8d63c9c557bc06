// The pairs' members are instantiated one by one, so that the library exports those that each pair
// is meant to have and no others.
#include "HYLBasPair.h"

#include "HYLBasTreeIterator.h"
#include "detail/HYLBasInstantiations.h"

using hylbas_detail::MapConstIterator;
using hylbas_detail::MapElement;
using hylbas_detail::MapIterator;

template HYLBASGENERICS_EXPORT HYLBasPair<int, int>::HYLBasPair();

#define HYLBAS_DEFINE_PAIR_OF(A, B)                                                                \
  template HYLBASGENERICS_EXPORT HYLBasPair<A, B>::HYLBasPair(A const&, B const&);
#define HYLBAS_DEFINE_PAIRS(V)                                                                     \
  template HYLBASGENERICS_EXPORT HYLBasPair<int const, V>::HYLBasPair(int const&, V const&);       \
  template HYLBASGENERICS_EXPORT HYLBasPair<int const, V>::HYLBasPair(MapElement<V> const&);       \
  HYLBAS_DEFINE_PAIR_OF(MapIterator<V>, MapIterator<V>)                                            \
  HYLBAS_DEFINE_PAIR_OF(MapConstIterator<V>, MapConstIterator<V>)                                  \
  HYLBAS_DEFINE_PAIR_OF(MapIterator<V>, bool)

HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DEFINE_PAIRS)
