#include "HYLBasReplicator.h"

#define HYLBAS_DEFINE_REPLICATOR(...)                                                              \
  template HYLBASGENERICS_EXPORT HYLBasReplicatorGeneric HYLBasGetReplicator<__VA_ARGS__>();
#define HYLBAS_DEFINE_PLAIN(T)                                                                     \
  template HYLBASGENERICS_EXPORT void HYLBasPODCopy<T>(void const*, void*, unsigned int);          \
  template class HYLBasPODReplicator<T>;                                                           \
  HYLBAS_DEFINE_REPLICATOR(T)
#define HYLBAS_DEFINE_CLASS(...)                                                                   \
  template HYLBASGENERICS_EXPORT void HYLBasStandardCopy<__VA_ARGS__>(void const*, void*,          \
                                                                      unsigned int);               \
  template HYLBASGENERICS_EXPORT void HYLBasStandardDestroy<__VA_ARGS__>(void const*,              \
                                                                         unsigned int);            \
  template class HYLBasReplicator<__VA_ARGS__>;                                                    \
  HYLBAS_DEFINE_REPLICATOR(__VA_ARGS__)
#define HYLBAS_DEFINE_MAPPED(V) HYLBAS_DEFINE_CLASS(HYLBasPair<int const, V>)

HYLBAS_FOR_EACH_PLAIN_TYPE(HYLBAS_DEFINE_PLAIN)
HYLBAS_FOR_EACH_MAPPED_TYPE(HYLBAS_DEFINE_MAPPED)
HYLBAS_DEFINE_CLASS(HYLBasPair<int, int>)
