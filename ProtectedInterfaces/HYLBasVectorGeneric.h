/// \file
/// The type-erased growable array behind every vector of the library.
///
/// Take it when the element type is known only at run time; take `HYLBasVector<T>` for plain
/// numbers. Elements lie in one contiguous block of raw bytes and are copied and destroyed only
/// through the replicator given at construction. A vector owns no block until it first needs room;
/// it then owns exactly one, which never shrinks.
///
/// Growth, in elements of capacity: one element at the end of a full vector, `3 * size + 1`; one
/// before the end of a full vector, `2 * size`; one at the end of storage, over a gap, at index
/// `k`, `k + 2 * size + 1`; `n` elements without room, `size + max(size, n)`; `Reserve(n)`,
/// constructors, `Init` and `Assign`, exactly `n`.
///
/// Rules that hold throughout:
/// - Positions are byte addresses of element slots; counts and indices are elements. A position
///   that is not on a slot boundary is an unchecked violation.
/// - An operation that needs a new block allocates it, copies, destroys the old elements as one
///   batch and releases the old block, in that order; all positions are then invalid. Without a
///   new block, positions before the changed element stay valid.
/// - Every value and every source range may be elements of the vector itself, and is then copied as
///   it was before the call, but for `Insert` within the capacity: the source is read after the
///   elements from the position on have moved up. Sources before the position, at it, or on both
///   sides of it are still as they were, and so is what lies less than `n` elements after it, with
///   `n` elements inserted; what was `n` elements earlier is read instead of anything later.
///   `Init` takes elements of other vectors alone.
/// - A checked position that is out of range ends the process with `abort()`, without a message.
///   Exhausted memory is the memory library's to handle. No operation throws of its own; what the
///   memory library or a new handler throws leaves the vector as it was.
/// - One thread at a time per vector; distinct vectors are independent.
#pragma once

#include <cstddef>

#include "HYLBasReplicator.h"
#include "HYLBasVectorAllocator.h"
#include "detail/HYLBasExport.h"

template <class T>
class HYLBasVector;
namespace hylbas_detail {
template <class V>
class VectorAlgorithms;
class VectorLoan;

/// Ends the life of the elements of [`first`, `last`), in one call also when there are none, and
/// then of the block.
template <class Allocator, class Replicator>
void ReleaseBlock(Allocator& allocator, Replicator const& replicator, char* first, char* last) {
  if (replicator.m_destroy != nullptr)
    replicator.m_destroy(first,
                         static_cast<unsigned int>(static_cast<std::size_t>(last - first) /
                                                   static_cast<std::size_t>(replicator.m_size)));
  if (first != nullptr) allocator.deallocate(first, 0);
}
} // namespace hylbas_detail

/// The growable array of elements of any one type, in one block of raw bytes; a replicator copies
/// and destroys them.
class HYLBASGENERICS_EXPORT HYLBasVectorGeneric {
public:
  /// \name Construction
  /// Linear in the number of elements copied; one block of exactly that many elements, none for 0.
  /// @{

  /// `n` copies of the element at `value` (not read when `n` is 0).
  HYLBasVectorGeneric(HYLBasReplicatorGeneric const& replicator, unsigned int n, void const* value);
  HYLBasVectorGeneric(HYLBasVectorGeneric const& other);
  /// Destroys the elements in one call, also when there are none, and releases the block.
  HYLBASGENERICS_EXPORT_INLINE ~HYLBasVectorGeneric() {
    hylbas_detail::ReleaseBlock(m_allocator, m_replicator, m_first, m_last);
  }
  /// Replaces the contents by copies of `other`'s, in a new block of exactly that many elements;
  /// the replicator stays. Both vectors must hold the same element type, unchecked.
  HYLBasVectorGeneric& operator=(HYLBasVectorGeneric const& other);

  /// For a vector that owns no block (unchecked: a block would be lost): copies of `other`'s
  /// elements.
  void Init(HYLBasVectorGeneric const& other);
  /// The same: `n` copies of the element at `value`.
  void Init(unsigned int n, void const* value);
  /// The same: copies of the elements of [`first`, `last`).
  void Init(void const* first, void const* last);
  /// @}

  /// \name Access and size
  /// Constant time.
  /// @{

  /// First element; null while the vector owns no block.
  void* Begin();
  void const* Begin() const;
  /// One past the last element.
  void* End();
  void const* End() const;
  /// Number of elements.
  unsigned int Size() const;
  /// Number of elements that the block has room for.
  unsigned int Capacity() const;
  /// Returns when `i` is below the size. Otherwise writes "Error: out-of-bounds violation in
  /// HYLBasVector." to the standard error stream and ends the process with `abort()`.
  void RangeCheck(unsigned int i) const;
  /// @}

  /// \name Insertion
  /// Linear in the number of elements inserted and moved; `PushBack` in amortised constant time.
  /// Invalidates positions from the insertion on, all of them when the block is replaced.
  /// @{

  /// Appends a copy of the element at `value`.
  void PushBack(void const* value);
  /// Inserts a copy of the element at `value` before `pos`, and returns its address. `pos` may be
  /// the end of storage of a vector with free slots: the gap is filled with zero bytes. Any other
  /// position after the end of the elements ends the process.
  char* Insert(void* pos, void const* value);
  /// Inserts `n` copies of the element at `value` before `pos`, at most the end of the elements.
  void Insert(void* pos, unsigned int n, void const* value);
  /// Inserts copies of the elements of [`first`, `last`) before `pos`, at most the end of the
  /// elements.
  void Insert(void* pos, void const* first, void const* last);
  /// @}

  /// \name Removal
  /// Linear in the number of elements destroyed and moved; invalidates positions from the first
  /// removed element on. The block stays.
  /// @{

  /// Removes the last element; the vector must not be empty, unchecked.
  void PopBack();
  /// Removes the element at `pos` and returns `pos`.
  void* Erase(void* pos);
  /// Removes [`first`, `last`) and returns `first`, which must not lie after `last`, unchecked.
  void* Erase(void* first, void* last);
  void Clear();
  /// @}

  /// \name Whole contents
  /// Linear; invalidates all positions when the block is replaced.
  /// @{

  /// The contents become `n` copies of the element at `value`.
  void Assign(unsigned int n, void const* value);
  /// Removes the elements from `n` on, or appends copies of the element at `value` up to `n`.
  void Resize(unsigned int n, void const* value);
  /// Makes room for `n` elements in all.
  void Reserve(unsigned int n);
  /// Exchanges the blocks of the two vectors; replicators stay. Constant time; positions stay valid
  /// and belong to the other vector.
  void swap(HYLBasVectorGeneric& other);
  /// @}

  /// \name Text files
  /// Linear; see `HYLBasVectorTextFile.h` for the format.
  /// @{

  /// Empties the vector, which must own no block (unchecked: a block would be lost), and fills it
  /// from the file. Problems are reported on the standard error stream and leave it empty.
  void Read(char const* fileName);
  /// Writes the file, in the layout that the element type's name selects; null comments are left
  /// out. A file that cannot be opened is reported on the standard error stream.
  void Write(char const* fileName, char const* typeName, char const* comment1,
             char const* comment2) const;
  /// @}

private:
  template <class T>
  friend class HYLBasVector;
  friend class hylbas_detail::VectorAlgorithms<HYLBasVectorGeneric>;
  friend class hylbas_detail::VectorLoan;

  // An empty vector; for the typed vectors.
  HYLBASGENERICS_LOCAL explicit HYLBasVectorGeneric(HYLBasReplicatorGeneric const& replicator)
      : m_replicator(replicator), m_first(nullptr), m_last(nullptr), m_endOfStorage(nullptr) {}

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

  HYLBasVectorAllocator m_allocator;
  HYLBasReplicatorGeneric m_replicator;
  char* m_first;        // null while there is no block
  char* m_last;         // one past the last element
  char* m_endOfStorage; // one past the last slot
};
