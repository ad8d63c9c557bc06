/// \file
/// The smallest container: a block of numbers whose length is fixed when the list is made.
///
/// Take it where very many short lists lie about and their owners know the lengths: an object is a
/// pointer and one byte, and the block holds the elements alone. Take `HYLBasVector<T>` for
/// anything that grows or is asked for its length.
///
/// No operation checks an index. Exhausted memory is not reported: the list is then empty, and an
/// access to an element fails in the caller's own code.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "HYLBasMicroAllocator.h"
#include "detail/HYLBasElementBytes.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasPlainElement.h"

namespace hylbas_detail {

/// A block for `n` elements, or null. Where 32 bits do not hold their bytes, it asks for
/// 4294967295, which are never to be had.
template <class T>
T* AllocateShortList(int n) {
  std::uint64_t const bytes = static_cast<std::uint64_t>(n) * sizeof(T);
  std::uint64_t const most = std::numeric_limits<std::uint32_t>::max();
  return static_cast<T*>(HYLBasMicroAllocator::Alloc(static_cast<int>(std::min(bytes, most))));
}

} // namespace hylbas_detail

/// A block of numbers of fixed length: a pointer and one byte. The library holds it for `int`;
/// for other plain types, as in `HYLBasVector.h`, its code comes into being in your program.
template <class T>
class HYLBASGENERICS_EXPORT HYLBasMicroList {
  static_assert(hylbas_detail::RequirePlainElement<T>::value);

public:
  HYLBasMicroList() : m_items(nullptr), m_count(0) {}

  /// A list of `n` elements that are not initialised; empty unless `n` is in 0 to 127.
  HYLBasMicroList(int n) : m_items(nullptr), m_count(0) {
    if (n < 0 || n > e_longest) return;
    m_items = hylbas_detail::AllocateShortList<T>(n);
    if (m_items != nullptr) m_count = static_cast<signed char>(n);
  }

  /// A list with copies of `other`'s elements; linear in their number.
  HYLBasMicroList(HYLBasMicroList const& other) : m_items(nullptr), m_count(0) {
    int const n = other.m_count; // NOLINT(bugprone-signed-char-misuse): a count, taken as signed
    m_items = hylbas_detail::AllocateShortList<T>(n);
    if (m_items == nullptr) return;
    m_count = other.m_count;
    for (int i = 0; i < n; ++i)
      hylbas_detail::CopyElement(other.m_items + i, m_items + i);
  }

  ~HYLBasMicroList() {
    if (m_items != nullptr) HYLBasMicroAllocator::Free(m_items);
    // Volatile: compilers drop other stores to an object whose life is over.
    const_cast<signed char volatile&>(m_count) = 0;
    const_cast<T* volatile&>(m_items) = nullptr;
  }

  /// Changes nothing: the list keeps its own block, length and elements.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment, cert-oop54-cpp)
  HYLBasMicroList& operator=(HYLBasMicroList const& /*other*/) { return *this; }

  /// Element `i`, unchecked.
  T& operator[](int i) { return m_items[i]; }
  T& Get(int i) { return m_items[i]; }

private:
  enum { e_longest = 127 };

  T* m_items;          // null without a block
  signed char m_count; // 0 without a block
};

extern template class HYLBasMicroList<int>;
