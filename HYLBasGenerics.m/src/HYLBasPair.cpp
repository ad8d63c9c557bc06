// The pairs' members are instantiated one by one, so that the library exports those that each pair
// is meant to have and no others.
#include "HYLBasPair.h"

#include "HYLBasInstantiations.h"
#include "HYLBasTreeIterator.h"

namespace {

template <class V>
using Element = HYLBasPair<int const, V>;
template <class V>
using Iterator = HYLBasTreeIterator<Element<V>, Element<V>&, Element<V>*>;
template <class V>
using ConstIterator = HYLBasTreeIterator<Element<V>, Element<V> const&, Element<V> const*>;

} // namespace

template HYLBASGENERICS_EXPORT HYLBasPair<int, int>::HYLBasPair();

#define HYLBAS_DEFINE_PAIR_OF(A, B)                                                                \
  template HYLBASGENERICS_EXPORT HYLBasPair<A, B>::HYLBasPair(A const&, B const&);
#define HYLBAS_DEFINE_PAIRS(V)                                                                     \
  template HYLBASGENERICS_EXPORT HYLBasPair<int const, V>::HYLBasPair(int const&, V const&);       \
  template HYLBASGENERICS_EXPORT HYLBasPair<int const, V>::HYLBasPair(Element<V> const&);          \
  HYLBAS_DEFINE_PAIR_OF(Iterator<V>, Iterator<V>)                                                  \
  HYLBAS_DEFINE_PAIR_OF(ConstIterator<V>, ConstIterator<V>)                                        \
  HYLBAS_DEFINE_PAIR_OF(Iterator<V>, bool)

HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DEFINE_PAIRS)
