/// \file
/// The typed growable array, with the member names of a standard sequence container.
///
/// Take it for plain numbers: it is `HYLBasVectorGeneric` with typed names and adds no storage.
/// Element access, size, and as long as no new block is needed, appending, inserting copies of one
/// value and filling are inline and cost what they cost on a plain array; everything else is one
/// call into the library.
/// It differs from `std::vector` in these points: counts are 32 bits, growth triples (see
/// `HYLBasVectorGeneric.h` for the exact numbers), exhausted memory is the host's memory library's
/// to handle, which ends the process unless a new handler helps or throws, and `at` ends the
/// process too.
///
/// It takes every plain type (trivially copyable, default-constructible, assignable, aligned no
/// more strictly than the memory library's blocks), and refuses the others in words. The library
/// holds the code for `int`, `unsigned int`, `float`, `double` and both 64-bit integers; for other
/// types it comes into being in your program, with all members but `Write`, for which a text file
/// has no name of the type.
///
/// Invalidation: positions are plain pointers. Where the block is replaced, which growing and every
/// assignment of a vector do, all of them are invalid; otherwise those before the changed element
/// stay valid. After `swap` they all belong to the other vector.
///
/// A value or a range may lie in the vector itself; `HYLBasVectorGeneric.h` says what is then
/// copied.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

#include "HYLBasAllocationOperators.h"
#include "HYLBasPair.h"
#include "HYLBasReplicator.h"
#include "HYLBasVectorAllocator.h"
#include "HYLBasVectorGeneric.h"
#include "detail/HYLBasElementBytes.h"
#include "detail/HYLBasExport.h"
#include "detail/HYLBasInstantiations.h"
#include "detail/HYLBasPlainElement.h"

namespace hylbas_detail {

/// The two operations of a vector that are rarely needed, and too long to be inlined into a
/// caller's loop: growing by one element, and reporting a bad index. They are given the vector's
/// pointers and the value, not their addresses. A compiler that hands out no address of a vector
/// may keep the pointers in registers throughout the loop; one call that takes the address, however
/// rare, would make it store and load them in every round.
class VectorLoan {
public:
  struct Block {
    char* first;
    char* endOfStorage;
  };

  /// Appends to a full vector; returns the new block, which holds one element more.
  template <class T>
  [[gnu::noinline]] static Block PushBack(char* first, char* last, ElementBytes<T> value) {
    Loan loan(HYLBasGetReplicator<T>(), first, last);
    loan.m_core.PushBack(value.bytes);
    return {loan.m_core.m_first, loan.m_core.m_endOfStorage};
  }

  /// Reports an index that is out of range.
  template <class T>
  [[noreturn, gnu::cold, gnu::noinline]] static void FailRangeCheck(char* first, char* last,
                                                                    unsigned int i) {
    Loan(HYLBasGetReplicator<T>(), first, last).m_core.RangeCheck(i);
    std::abort();
  }

private:
  // A core whose destructor never runs: the block stays the vector's.
  union Loan {
    Loan(HYLBasReplicatorGeneric const& replicator, char* first, char* last) : m_core(replicator) {
      m_core.m_first = first;
      m_core.m_last = m_core.m_endOfStorage = last;
    }
    ~Loan() {}
    HYLBasVectorGeneric m_core;
  };
};

// The element type as the banner of a text file names it.
template <class T>
inline constexpr char const* elementTypeName = nullptr;
template <>
inline constexpr char const* elementTypeName<int> = "int";
template <>
inline constexpr char const* elementTypeName<unsigned int> = "unsigned int";
template <>
inline constexpr char const* elementTypeName<float> = "float";
template <>
inline constexpr char const* elementTypeName<double> = "double";
template <>
inline constexpr char const* elementTypeName<long long> = "__int64";
template <>
inline constexpr char const* elementTypeName<unsigned long long> = "unsigned __int64";

} // namespace hylbas_detail

/// The growable array of plain numbers, in one block: `HYLBasVectorGeneric` with typed names. The
/// library holds it for `int`, `unsigned int`, `float`, `double`, `long long`, `unsigned long long`
/// and `HYLBasPair<int, int>`.
template <class T>
class HYLBASGENERICS_EXPORT HYLBasVector : public mem_AllocationOperators {
  static_assert(hylbas_detail::RequirePlainElement<T>::value);

public:
  using value_type = T;
  using size_type = unsigned int;
  using reference = T&;
  using const_reference = T const&;
  using iterator = T*;
  using const_iterator = T const*;

  /// \name Construction
  /// Linear in the number of elements; one block of exactly that many, none for 0.
  /// @{
  HYLBasVector() : m_data(HYLBasGetReplicator<T>()) {}

  /// `n` zero elements.
  HYLBasVector(unsigned int n) : HYLBasVector() {
    T const zero = T();
    HYLBasVectorGeneric contents(m_data.m_replicator);
    contents.Init(n, &zero);
    m_data.swap(contents);
  }

  /// `n` copies of `value`.
  HYLBasVector(unsigned int n, T const& value) : HYLBasVector() { m_data.Init(n, &value); }

  /// Copies of the elements of [`first`, `last`).
  HYLBasVector(T const* first, T const* last) : HYLBasVector() {
    m_data.Init(static_cast<void const*>(first), static_cast<void const*>(last));
  }

  HYLBasVector(HYLBasVector const& other) : mem_AllocationOperators(), m_data(other.m_data) {}

  ~HYLBasVector() {}

  /// Replaces the contents by copies of `other`'s in a new block of exactly that many elements.
  HYLBasVector& operator=(HYLBasVector const& other) {
    m_data = other.m_data;
    return *this;
  }
  /// @}

  /// \name Access
  /// Constant time. Unchecked but for `at`, which ends the process with the message of
  /// `HYLBasVectorGeneric::RangeCheck` when `i` is not below the size.
  /// @{
  T* begin() { return reinterpret_cast<T*>(m_data.m_first); }
  T const* begin() const { return reinterpret_cast<T const*>(m_data.m_first); }
  T* end() { return reinterpret_cast<T*>(m_data.m_last); }
  T const* end() const { return reinterpret_cast<T const*>(m_data.m_last); }
  T& front() { return *begin(); }
  T const& front() const { return *begin(); }
  T& back() { return end()[-1]; }
  T const& back() const { return end()[-1]; }
  T& operator[](unsigned int i) { return begin()[i]; }
  T const& operator[](unsigned int i) const { return begin()[i]; }
  T& at(unsigned int i) {
    range_check(i);
    return begin()[i];
  }
  T const& at(unsigned int i) const {
    range_check(i);
    return begin()[i];
  }
  /// @}

  /// \name Size
  /// Constant time; in elements.
  /// @{
  unsigned int size() const {
    return hylbas_detail::ElementsBetween<T>(m_data.m_first, m_data.m_last);
  }
  unsigned int capacity() const {
    return hylbas_detail::ElementsBetween<T>(m_data.m_first, m_data.m_endOfStorage);
  }
  bool empty() const { return m_data.m_first == m_data.m_last; }
  /// The largest 32-bit byte count divided by the element size; no operation checks against it.
  unsigned int max_size() const {
    return std::numeric_limits<unsigned int>::max() / static_cast<unsigned int>(sizeof(T));
  }
  HYLBasVectorAllocator get_allocator() const { return HYLBasVectorAllocator(); }
  /// @}

  /// \name Appending and inserting
  /// Linear in the number of elements inserted and moved; appending in amortised constant time.
  /// `pos` lies in [`begin()`, `end()`]. The process ends without a message where it does not, but
  /// for single elements at the end of storage, which are inserted over a gap of zeros, and for
  /// runs of no elements at a position within the storage.
  /// @{
  void push_back(T const& value) {
    if constexpr (std::is_arithmetic_v<T>) {
      if (m_data.m_last != m_data.m_endOfStorage) {
        hylbas_detail::CopyElement(&value, end());
        m_data.m_last += sizeof(T);
      } else {
        std::ptrdiff_t const bytes = m_data.m_last - m_data.m_first;
        auto const grown = hylbas_detail::VectorLoan::PushBack<T>(
            m_data.m_first, m_data.m_last, hylbas_detail::ElementBytes<T>(value));
        m_data.m_last = grown.first + bytes + sizeof(T);
        m_data.m_first = grown.first;
        m_data.m_endOfStorage = grown.endOfStorage;
      }
    } else {
      m_data.PushBack(&value);
    }
  }
  /// Appends a zero element.
  void push_back() { push_back(T()); }

  /// Inserts a zero element before `pos`; returns its position.
  T* insert(T* pos) { return insert(pos, T()); }
  /// Inserts a copy of `value` before `pos`; returns its position.
  T* insert(T* pos, T const& value) {
    if constexpr (std::is_arithmetic_v<T>) {
      if (hylbas_detail::OpenGap(m_data.m_first, m_data.m_last, m_data.m_endOfStorage, pos, 1)) {
        hylbas_detail::CopyElement(&value, pos);
        return pos;
      }
    }
    return fromGeneric(m_data.Insert(pos, static_cast<void const*>(&value)));
  }
  /// Inserts `n` copies of `value` before `pos`.
  void insert(T* pos, unsigned int n, T const& value) {
    if constexpr (std::is_arithmetic_v<T>) {
      if (hylbas_detail::OpenGap(m_data.m_first, m_data.m_last, m_data.m_endOfStorage, pos, n)) {
        hylbas_detail::FillElements(pos, n, value);
        return;
      }
    }
    m_data.Insert(pos, n, &value);
  }
  /// Inserts copies of the elements of [`first`, `last`) before `pos`.
  void insert(T* pos, T const* first, T const* last) {
    if constexpr (std::is_arithmetic_v<T>) {
      // A range that ends before it begins is longer than any room, and thus left to the core.
      auto const bytes = static_cast<std::size_t>(toGeneric(last) - toGeneric(first));
      auto const room = static_cast<std::size_t>(m_data.m_endOfStorage - m_data.m_last);
      if (pos == end() && bytes != 0 && bytes <= room) {
        std::memmove(m_data.m_last, first, bytes);
        m_data.m_last += bytes;
        return;
      }
    }
    m_data.Insert(pos, static_cast<void const*>(first), static_cast<void const*>(last));
  }
  /// @}

  /// \name Removing
  /// Linear in the number of elements moved. The block and the capacity stay.
  /// @{

  /// Removes the last element; the vector must not be empty, unchecked.
  void pop_back() {
    if constexpr (std::is_arithmetic_v<T>) {
      m_data.m_last -= sizeof(T);
    } else {
      m_data.PopBack();
    }
  }
  /// Removes the element at `pos`, in [`begin()`, `end()`); returns `pos`. The process ends without
  /// a message where it is not.
  T* erase(T* pos) { return fromGeneric(m_data.Erase(pos)); }
  /// Removes [`first`, `last`) and returns `first`, which must not lie after `last`, unchecked.
  /// The process ends without a message where the range leaves the vector.
  T* erase(T* first, T* last) { return fromGeneric(m_data.Erase(first, last)); }
  void clear() {
    if constexpr (std::is_arithmetic_v<T>) {
      m_data.m_last = m_data.m_first;
    } else {
      m_data.Clear();
    }
  }
  /// @}

  /// \name Whole contents
  /// Linear in the number of elements before and after.
  /// @{

  /// The contents become `n` copies of `value`.
  void assign(unsigned int n, T const& value) {
    if constexpr (std::is_arithmetic_v<T>) {
      if (n <= capacity()) {
        hylbas_detail::FillElements(begin(), n, value);
        m_data.m_last = toGeneric(begin() + n);
        return;
      }
    }
    m_data.Assign(n, &value);
  }
  /// Removes the elements from `n` on, or appends zero elements up to `n`.
  void resize(unsigned int n) { resize(n, T()); }
  /// Removes the elements from `n` on, or appends copies of `value` up to `n`.
  void resize(unsigned int n, T const& value) {
    if constexpr (std::is_arithmetic_v<T>) {
      if (n <= capacity()) {
        if (n > size()) hylbas_detail::FillElements(end(), n - size(), value);
        m_data.m_last = toGeneric(begin() + n);
        return;
      }
    }
    m_data.Resize(n, &value);
  }
  /// Makes room for `n` elements in all; the new capacity is exactly `n` when it grows.
  void reserve(unsigned int n) { m_data.Reserve(n); }
  /// Exchanges the blocks of the two vectors in constant time.
  void swap(HYLBasVector& other) {
    std::swap(m_data.m_first, other.m_data.m_first);
    std::swap(m_data.m_last, other.m_data.m_last);
    std::swap(m_data.m_endOfStorage, other.m_data.m_endOfStorage);
  }
  /// @}

  /// \name Text files
  /// Linear; see `HYLBasVectorTextFile.h` for the format and for what is reported.
  /// @{

  /// Fills this vector, which must own no block (unchecked: a block would be lost), from the file.
  void Read(char const* fileName) { m_data.Read(fileName); }
  /// Writes the file with up to two comments, null for none. Only vectors of `int` and `double`
  /// have their values written; a file of any other type ends after its size line.
  void Write(char const* fileName, char const* comment1, char const* comment2) const {
    static_assert(hylbas_detail::elementTypeName<T> != nullptr,
                  "a vector of this element type has no text file form");
    m_data.Write(fileName, hylbas_detail::elementTypeName<T>, comment1, comment2);
  }
  /// @}

protected:
  void range_check(unsigned int i) const {
    if (i >= size()) hylbas_detail::VectorLoan::FailRangeCheck<T>(m_data.m_first, m_data.m_last, i);
  }

  /// The vector as its core, which lies at its own address.
  HYLBasVectorGeneric& Generic() { return m_data; }
  HYLBasVectorGeneric const& Generic() const { return m_data; }

  char* toGeneric(T* p) { return reinterpret_cast<char*>(p); }
  char const* toGeneric(T const* p) { return reinterpret_cast<char const*>(p); }
  T* fromGeneric(char* p) { return reinterpret_cast<T*>(p); }
  T* fromGeneric(void* p) { return static_cast<T*>(p); }
  T const* fromGeneric(char* const p) const { return reinterpret_cast<T const*>(p); }

private:
  HYLBasVectorGeneric m_data;
};

/// `a.swap(b)`, for algorithms that call `swap` unqualified.
template <class T>
void swap(HYLBasVector<T>& a, HYLBasVector<T>& b) {
  a.swap(b);
}

#define HYLBAS_DECLARE_VECTOR(T) extern template class HYLBasVector<T>;
HYLBAS_FOR_EACH_PLAIN_TYPE(HYLBAS_DECLARE_VECTOR)
#undef HYLBAS_DECLARE_VECTOR

// Of the vector of pairs the library holds the members that its paired sort uses.
#define HYLBAS_INSTANTIATE_PAIR_VECTOR(keyword)                                                    \
  keyword template HYLBASGENERICS_EXPORT HYLBasVector<HYLBasPair<int, int>>::HYLBasVector(         \
      unsigned int);                                                                               \
  keyword template HYLBASGENERICS_EXPORT HYLBasVector<HYLBasPair<int, int>>::HYLBasVector(         \
      unsigned int, HYLBasPair<int, int> const&);                                                  \
  keyword template HYLBASGENERICS_EXPORT HYLBasVector<HYLBasPair<int, int>>::~HYLBasVector();      \
  keyword template HYLBASGENERICS_EXPORT HYLBasPair<int, int>*                                     \
  HYLBasVector<HYLBasPair<int, int>>::begin();                                                     \
  keyword template HYLBASGENERICS_EXPORT HYLBasPair<int, int>*                                     \
  HYLBasVector<HYLBasPair<int, int>>::end();                                                       \
  keyword template HYLBASGENERICS_EXPORT void HYLBasVector<HYLBasPair<int, int>>::swap(            \
      HYLBasVector&);                                                                              \
  keyword template HYLBASGENERICS_EXPORT HYLBasVectorGeneric&                                      \
  HYLBasVector<HYLBasPair<int, int>>::Generic();
HYLBAS_INSTANTIATE_PAIR_VECTOR(extern)

static_assert(sizeof(HYLBasVector<int>) == sizeof(HYLBasVectorGeneric));
static_assert(std::is_standard_layout_v<HYLBasVector<int>>);
