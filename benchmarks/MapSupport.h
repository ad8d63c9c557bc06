/// \file
/// What the benchmarks of maps share: keys in several orders, and maps of several kinds filled with
/// them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <vector>

#include <absl/container/btree_map.h>
#include <boost/container/map.hpp>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "Compare.h"
#include "HYLBasMap.h"

namespace maps {

using Keys = std::vector<int>;

// No freed blocks of earlier maps lie about afterwards.
inline void TidyHeap() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

inline Keys Ascending(unsigned int n) {
  Keys keys(n);
  for (unsigned int i = 0; i != n; ++i)
    keys[i] = 2 * static_cast<int>(i);
  return keys;
}

// The same keys in several orders, taken in turn: a processor learns the jumps that one order of a
// thousand keys takes when it comes again and again.
class Orders {
public:
  explicit Orders(unsigned int n) {
    compare::Random random = compare::FreshRandom();
    for (unsigned int keys = 0; keys < 100000; keys += n) {
      m_orders.push_back(Ascending(n));
      std::shuffle(m_orders.back().begin(), m_orders.back().end(), random);
    }
  }
  Keys const& Next() { return m_orders[m_next++ % m_orders.size()]; }

private:
  std::vector<Keys> m_orders;
  std::size_t m_next = 0;
};

template <class M>
void InsertAll(M& map, Keys const& keys) {
  for (int const key : keys)
    map.insert(typename M::value_type(key, static_cast<typename M::mapped_type>(key)));
}

} // namespace maps
