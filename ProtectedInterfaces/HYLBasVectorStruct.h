/// \file
/// The growable array of plain records whose size is known only at run time.
///
/// Take it over `HYLAspStructReplicator` for records that are copied bytewise, and over
/// `HYLBasReplicatorGeneric` for elements that are copied by a function; the latter is
/// `HYLBasVectorGeneric` with access by index, iterators and records of zeros besides. Take
/// `HYLBasVector<T>` where the element type is known at compile time.
///
/// Layout, growth, positions, what is invalidated and what ends the process are those of
/// `HYLBasVectorGeneric.h`, and so is what may be given of a vector's own records, except that
/// `RangeCheck` writes no message. A vector built from a record size alone copies its records
/// bytewise, over either replicator.
#pragma once

#include <cstddef>
#include <type_traits>

#include "HYLAspStructReplicator.h"
#include "HYLBasReplicator.h"
#include "HYLBasVectorAllocator.h"
#include "HYLBasVectorStructIterator.h"
#include "detail/HYLBasExport.h"

namespace hylbas_detail {
template <class V>
class VectorAlgorithms;

/// Bytes from the first record to record `i`, modulo the address space: a block may be longer than
/// half of it.
inline std::ptrdiff_t BytesTo(int i, int recordSize) {
  return static_cast<std::ptrdiff_t>(static_cast<std::size_t>(i) *
                                     static_cast<std::size_t>(recordSize));
}
} // namespace hylbas_detail

/// The growable array of records, with access by index. The library holds it for
/// `HYLBasVectorAllocator` with each of the two replicators.
template <class Alloc, class Replicator>
class HYLBASGENERICS_EXPORT HYLBasVectorStruct {
  static_assert(std::is_same_v<Alloc, HYLBasVectorAllocator> &&
                    (std::is_same_v<Replicator, HYLAspStructReplicator> ||
                     std::is_same_v<Replicator, HYLBasReplicatorGeneric>),
                "HYLBasVectorStruct takes HYLBasVectorAllocator and either HYLAspStructReplicator "
                "or HYLBasReplicatorGeneric");

public:
  using iterator = HYLBasVectorStructIterator<HYLBasVectorStruct>;

  /// \name Construction
  /// Linear in the number of records; one block of exactly that many, none for 0.
  /// @{

  /// `n` copies of the record at `value` (not read when `n` is 0).
  HYLBasVectorStruct(Replicator const& replicator, unsigned int n, void const* value);
  /// `n` records of `size` zero bytes each.
  HYLBasVectorStruct(unsigned int size, unsigned int n);
  /// `n` copies of the `size` bytes at `value` (not read when `n` is 0).
  HYLBasVectorStruct(unsigned int size, unsigned int n, void const* value);
  HYLBasVectorStruct(HYLBasVectorStruct const& other);
  /// Destroys the records in one call, also when there are none, and releases the block.
  ~HYLBasVectorStruct();
  /// Replaces the contents by copies of `other`'s, in a new block of exactly that many records; the
  /// replicator stays. Both vectors must hold records of the same kind, unchecked.
  HYLBasVectorStruct& operator=(HYLBasVectorStruct const& other);

  /// For a vector that owns no block (unchecked: a block would be lost): copies of `other`'s
  /// records.
  void Init(HYLBasVectorStruct const& other);
  /// The same: `n` records of zero bytes.
  void Init(unsigned int n);
  /// The same: `n` copies of the record at `value`.
  void Init(unsigned int n, void const* value);
  /// The same: copies of the records of [`first`, `last`).
  void Init(void const* first, void const* last);
  /// @}

  /// \name Access and size
  /// Constant time.
  /// @{

  /// First record; null while the vector owns no block.
  void* Begin() { return m_first; }
  void const* Begin() const { return m_first; }
  /// One past the last record.
  void* End() { return m_last; }
  void const* End() const { return m_last; }
  iterator begin() { return iterator(m_first, static_cast<unsigned int>(m_replicator.m_size)); }
  iterator end() { return iterator(m_last, static_cast<unsigned int>(m_replicator.m_size)); }

  /// The address of record `i`, unchecked.
  void* Item(int i) { return m_first + hylbas_detail::BytesTo(i, m_replicator.m_size); }
  void const* ItemConst(int i) const {
    return m_first + hylbas_detail::BytesTo(i, m_replicator.m_size);
  }
  void* operator[](int i) { return Item(i); }
  void const* operator[](int i) const { return ItemConst(i); }
  /// Returns when `i` is below the size; otherwise ends the process with `abort()`.
  void RangeCheck(unsigned int i) const;

  /// Number of records.
  unsigned int Size() const;
  unsigned int size() const;
  /// Number of records that the block has room for.
  unsigned int Capacity() const;
  /// @}

  /// \name Insertion
  /// Linear in the number of records inserted and moved; `PushBack` in amortised constant time.
  /// Invalidates positions from the insertion on, all of them when the block is replaced.
  /// @{

  /// Appends a copy of the record at `value`.
  void PushBack(void const* value);
  /// Inserts a copy of the record at `value` before `pos`, and returns its address. `pos` may be
  /// the end of storage of a vector with free slots: the gap is filled with zero bytes. Any other
  /// position after the end of the records ends the process.
  char* Insert(void* pos, void const* value);
  /// Inserts `n` copies of the record at `value` before `pos`, at most the end of the records.
  void Insert(void* pos, unsigned int n, void const* value);
  /// Inserts copies of the records of [`first`, `last`) before `pos`, at most the end of the
  /// records.
  void Insert(void* pos, void const* first, void const* last);
  /// @}

  /// \name Removal
  /// Linear in the number of records destroyed and moved; invalidates positions from the first
  /// removed record on. The block stays.
  /// @{

  /// Removes the last record; the vector must not be empty, unchecked.
  void PopBack();
  /// Removes the record at `pos` and returns `pos`.
  void* Erase(void* pos);
  /// Removes [`first`, `last`) and returns `first`, which must not lie after `last`, unchecked.
  void* Erase(void* first, void* last);
  void Clear();
  void clear();
  /// @}

  /// \name Whole contents
  /// Linear; invalidates all positions when the block is replaced.
  /// @{

  /// The contents become `n` copies of the record at `value`.
  void Assign(unsigned int n, void const* value);
  void assign(unsigned int n, void const* value);
  /// Removes the records from `n` on. Otherwise, also when `n` is the size, moves to a new block of
  /// `n + 2 * size + 1` records, in which everything after the old records is zero bytes.
  void Resize(unsigned int n);
  void resize(unsigned int n);
  /// Removes the records from `n` on, or appends copies of the record at `value` up to `n`.
  void Resize(unsigned int n, void const* value);
  void resize(unsigned int n, void const* value);
  /// Makes room for `n` records in all.
  void Reserve(unsigned int n);
  /// Exchanges the blocks of the two vectors; replicators stay. Constant time; positions stay valid
  /// and belong to the other vector.
  void swap(HYLBasVectorStruct& other);
  /// @}

private:
  friend class hylbas_detail::VectorAlgorithms<HYLBasVectorStruct>;
  friend class HYLBasVectorStructIterator<HYLBasVectorStruct>;

  char* Allocate(unsigned int n);
  void Deallocate(void* p, unsigned int n);
  void Destroy(void* p);
  void Destroy(void* p, unsigned int n);
  void InsertAux(void* pos, void const* value);
  void GrowCapacity(unsigned int n);
  unsigned int const& LargerOf(unsigned int const& a, unsigned int const& b);
  void fill(char* first, char* last, void const* value);
  char* fill_n(char* first, unsigned int n, void const* value);
  char* copy_over(void const* first, void const* last, void* result);
  char* copy_backward(void* first, char* last, char* result);
  unsigned int distance(void const* p, void const* q);
  bool sameBytes(void const* value);

  Alloc m_allocator;
  Replicator m_replicator;
  char* m_first = nullptr;        // null while there is no block
  char* m_last = nullptr;         // one past the last record
  char* m_endOfStorage = nullptr; // one past the last slot
};

/// `a.swap(b)`, for algorithms that call `swap` unqualified.
template <class Alloc, class Replicator>
void swap(HYLBasVectorStruct<Alloc, Replicator>& a, HYLBasVectorStruct<Alloc, Replicator>& b) {
  a.swap(b);
}

extern template class HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator>;
extern template class HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>;
extern template class HYLBasVectorStructIterator<
    HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator>>;
extern template class HYLBasVectorStructIterator<
    HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>>;
