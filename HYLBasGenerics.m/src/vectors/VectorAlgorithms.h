/// \file
/// The vectors' algorithms, written once for every type-erased vector.
///
/// `V` has the fields `m_allocator`, `m_replicator`, `m_first`, `m_last` and `m_endOfStorage` and
/// befriends `VectorAlgorithms<V>`; its members forward to the functions of the same name here. The
/// replicator's copy operation is called with exactly the runs that the steps show, in their order,
/// unless `IsPlainData` says that its calls cannot be observed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "HYLBasVectorGeneric.h"
#include "policies/PlainData.h"

namespace hylbas_detail {

/// Writes the `Word` at `value` into every slot of [`first`, `last`).
template <class Word>
void FillWords(char* first, char const* last, void const* value) {
  if (first == last) return; // the value may be null then
  Word word;
  std::memcpy(&word, value, sizeof word);
  std::size_t const count = static_cast<std::size_t>(last - first) / sizeof word;
  for (std::size_t i = 0; i != count; ++i)
    std::memcpy(first + i * sizeof word, &word, sizeof word);
}

/// Elements without a copy function, of a replicator that was built from a size alone, are bytes.
inline void CopyElements(HYLBasReplicatorGeneric const& replicator, void const* from, void* to,
                         unsigned int n) {
  if (replicator.m_copy != nullptr) {
    replicator.m_copy(from, to, n);
  } else if (n != 0) {
    std::memmove(to, from, n * static_cast<std::size_t>(replicator.m_size));
  }
}

inline void CopyElements(HYLAspStructReplicator& replicator, void const* from, void* to,
                         unsigned int n) {
  replicator.m_copy(from, to, n);
}

template <class V>
class VectorAlgorithms {
public:
  /// \name Sizes
  /// @{
  /// Elements of [`from`, `to`), which does not end before it begins.
  static unsigned int Count(V const& v, void const* from, void const* to) {
    std::size_t const bytes = Bytes(from, to);
    switch (Step(v)) { // a division by a run-time value costs more than all the rest
    case 4:
      return static_cast<unsigned int>(bytes / 4);
    case 8:
      return static_cast<unsigned int>(bytes / 8);
    default:
      return static_cast<unsigned int>(bytes / Step(v));
    }
  }
  /// The same, negative where it does.
  static unsigned int Distance(V const& v, void const* from, void const* to) {
    return from <= to ? Count(v, from, to) : 0 - Count(v, to, from);
  }
  static unsigned int Size(V const& v) { return Count(v, v.m_first, v.m_last); }
  static unsigned int Capacity(V const& v) { return Count(v, v.m_first, v.m_endOfStorage); }
  static unsigned int const& LargerOf(unsigned int const& a, unsigned int const& b) {
    return a < b ? b : a;
  }
  /// @}

  /// \name Growth
  /// How many elements a new block holds: all rules. Every other new block (`Reserve`,
  /// constructors, `Init`, `Assign`, assignment) holds exactly what was asked for.
  /// @{

  /// One element at or after the end of storage, at `index`: every append to a full vector.
  static std::uint64_t CapacityForAppend(std::uint64_t size, std::uint64_t index) {
    return index + 2 * size + 1;
  }
  /// One element before the end of a full vector.
  static std::uint64_t CapacityForOne(std::uint64_t size) { return size == 0 ? 1 : 2 * size; }
  /// `n` elements for which there is no room.
  static std::uint64_t CapacityForMany(std::uint64_t size, std::uint64_t n) {
    return size + (size < n ? n : size);
  }
  /// `Resize(n)` of a record vector to its size or more.
  static std::uint64_t CapacityForZeros(std::uint64_t size, std::uint64_t n) {
    return n + 2 * size + 1;
  }
  /// `GrowCapacity(n)`.
  static std::uint64_t CapacityForGrowth(std::uint64_t size, std::uint64_t n) {
    return 2 * size < size + n ? size + n : 2 * size;
  }
  /// @}

  /// \name Blocks
  /// @{

  /// A block of `n` elements, null for 0. A byte count that does not fit 32 bits asks for
  /// 4294967295, which the memory library treats as exhausted.
  static char* Allocate(V& v, std::uint64_t n) {
    if (n == 0) return nullptr;
    std::uint64_t const limit = UINT32_MAX;
    std::uint64_t const bytes = n > limit ? limit : n * Step(v);
    return static_cast<char*>(
        v.m_allocator.allocate(static_cast<unsigned int>(bytes > limit ? limit : bytes)));
  }

  static void Deallocate(V& v, void* p, unsigned int n) {
    if (p != nullptr) v.m_allocator.deallocate(p, n);
  }

  static void Copy(V& v, void const* from, void* to, unsigned int n) {
    CopyElements(v.m_replicator, from, to, n);
  }

  static void Destroy(V& v, void* p, unsigned int n) {
    if (v.m_replicator.m_destroy != nullptr) v.m_replicator.m_destroy(p, n);
  }

  /// Replaces the block by one of `capacity` elements whose elements end at `last`.
  static void ReplaceBlock(V& v, char* block, char* last, std::uint64_t capacity) {
    ReleaseBlock(v.m_allocator, v.m_replicator, v.m_first, v.m_last);
    v.m_first = block;
    v.m_last = last;
    v.m_endOfStorage = block + capacity * Step(v);
  }
  /// @}

  /// \name Contents from scratch, for a vector without block
  /// @{
  static void InitCopies(V& v, unsigned int n, void const* value) {
    v.m_first = v.m_last = v.m_endOfStorage = Allocate(v, n);
    v.m_last = v.m_endOfStorage = fill_n(v, v.m_first, n, value);
  }

  static void InitZeros(V& v, unsigned int n) {
    v.m_first = v.m_last = v.m_endOfStorage = Allocate(v, n);
    if (n != 0) std::memset(v.m_first, 0, n * Step(v));
    v.m_last = v.m_endOfStorage = v.m_first + n * Step(v);
  }

  static void InitRange(V& v, void const* first, void const* last) {
    std::uint64_t const range = WholeCount(v, first, last);
    v.m_first = v.m_last = v.m_endOfStorage = Allocate(v, range);
    auto const n = static_cast<unsigned int>(range);
    Copy(v, first, v.m_first, n);
    v.m_last = v.m_endOfStorage = v.m_first + n * Step(v);
  }
  /// @}

  /// \name Element runs
  /// @{

  /// Copies one element at a time, from the last down; returns the start of the copies. The block
  /// move replaces single copies that nobody can observe.
  static char* copy_backward(V& v, char const* first, char const* last, char* result) {
    if (IsPlainData(v.m_replicator)) {
      char* const start = result - (last - first);
      if (first != last) std::memmove(start, first, Bytes(first, last));
      return start;
    }
    while (last != first) {
      last -= Step(v);
      result -= Step(v);
      Copy(v, last, result, 1);
    }
    return result;
  }

  static char* copy_over(V& v, void const* first, void const* last, void* result) {
    unsigned int const n = Count(v, first, last);
    Copy(v, first, result, n);
    return static_cast<char*>(result) + n * Step(v);
  }

  static bool sameBytes(V const& v, void const* value) {
    auto const* bytes = static_cast<unsigned char const*>(value);
    for (int i = 1; i < v.m_replicator.m_size; ++i)
      if (bytes[i] != bytes[0]) return false;
    return true;
  }

  /// Overwrites every slot: bytewise where elements need no destruction, more than 3 are written
  /// and all bytes of the value are equal, by one copy per slot otherwise.
  static void fill(V& v, char* first, char* last, void const* value) {
    if (first == last) return; // the value is not read, and need not be there
    if (v.m_replicator.m_destroy == nullptr && Bytes(first, last) > 3 * std::uint64_t{Step(v)} &&
        sameBytes(v, value)) {
      std::memset(first, *static_cast<unsigned char const*>(value), Bytes(first, last));
      return;
    }
    if (FillPlain(v, first, last, value)) return;
    for (; first != last; first += Step(v))
      Copy(v, value, first, 1);
  }

  static char* fill_n(V& v, char* first, unsigned int n, void const* value) {
    char* const last = first + n * Step(v);
    fill(v, first, last, value);
    return last;
  }
  /// @}

  /// \name Insertion
  /// @{
  static void PushBack(V& v, void const* value) {
    if (v.m_last != v.m_endOfStorage) {
      Append(v, value);
    } else {
      InsertAux(v, v.m_last, value);
    }
  }

  static char* Insert(V& v, void* position, void const* value) {
    auto* const pos = static_cast<char*>(position);
    CheckPosition(v, pos);
    // A gap between the elements and the position is defined at the end of storage alone.
    if (pos > v.m_last && pos != v.m_endOfStorage) std::abort();
    std::ptrdiff_t const offset = pos - v.m_first;
    if (pos == v.m_last && v.m_last != v.m_endOfStorage) {
      Append(v, value);
    } else {
      InsertAux(v, pos, value);
    }
    return v.m_first + offset;
  }

  static void InsertAux(V& v, void* position, void const* value) {
    auto* const pos = static_cast<char*>(position);
    if (pos < v.m_first) std::abort();
    if (pos >= v.m_endOfStorage) {
      AppendToNewBlock(v, pos, value);
    } else if (v.m_last == v.m_endOfStorage) {
      InsertIntoNewBlock(v, CapacityForOne(Size(v)), pos, [&](char* slot) {
        Copy(v, value, slot, 1);
        return slot + Step(v);
      });
    } else {
      if (!OpenGap(v, pos, 1)) {
        char* const oldLast = v.m_last;
        Copy(v, oldLast - Step(v), oldLast, 1);
        v.m_last += Step(v);
        copy_backward(v, pos, oldLast - Step(v), oldLast);
      }
      Copy(v, value, pos, 1);
    }
  }

  static void InsertCopies(V& v, void* position, unsigned int n, void const* value) {
    auto* const pos = static_cast<char*>(position);
    CheckPosition(v, pos);
    if (n == 0) return;
    if (pos > v.m_last) std::abort();
    if (Bytes(v.m_last, v.m_endOfStorage) >= n * std::uint64_t{Step(v)}) {
      InsertCopiesInPlace(v, pos, n, value);
    } else {
      InsertIntoNewBlock(v, CapacityForMany(Size(v), n), pos,
                         [&](char* slot) { return fill_n(v, slot, n, value); });
    }
  }

  static void InsertRange(V& v, void* position, void const* first, void const* last) {
    auto* const pos = static_cast<char*>(position);
    CheckPosition(v, pos);
    if (first == last) return;
    if (pos > v.m_last) std::abort();
    std::uint64_t const n = WholeCount(v, first, last);
    if (n <= Count(v, v.m_last, v.m_endOfStorage)) {
      InsertRangeInPlace(v, pos, static_cast<unsigned int>(n), static_cast<char const*>(first),
                         static_cast<char const*>(last));
    } else {
      InsertIntoNewBlock(v, CapacityForMany(Size(v), n), pos,
                         [&](char* slot) { return copy_over(v, first, last, slot); });
    }
  }
  /// @}

  /// \name Removal
  /// @{
  static void PopBack(V& v) {
    v.m_last -= Step(v);
    Destroy(v, v.m_last, 1);
  }

  static void* Erase(V& v, void* position) {
    auto* const pos = static_cast<char*>(position);
    // There is no element to erase at the end.
    if (pos < v.m_first || pos >= v.m_last) std::abort();
    char* const next = pos + Step(v);
    if (next != v.m_last) Copy(v, next, pos, Count(v, next, v.m_last));
    PopBack(v);
    return pos;
  }

  static void* Erase(V& v, void* from, void* to) {
    auto* const first = static_cast<char*>(from);
    auto* const last = static_cast<char*>(to);
    if (first < v.m_first || last > v.m_last) std::abort();
    char* const newLast = copy_over(v, last, v.m_last, first);
    Destroy(v, newLast, Count(v, newLast, v.m_last));
    v.m_last = newLast;
    return first;
  }
  /// @}

  /// \name Whole contents
  /// @{
  static void Assign(V& v, unsigned int n, void const* value) {
    if (n > Capacity(v)) {
      V fresh(v.m_replicator, n, value);
      swap(v, fresh);
    } else if (n > Size(v)) {
      fill(v, v.m_first, v.m_last, value);
      v.m_last = fill_n(v, v.m_last, n - Size(v), value);
    } else {
      Erase(v, fill_n(v, v.m_first, n, value), v.m_last);
    }
  }

  static void Resize(V& v, unsigned int n, void const* value) {
    unsigned int const size = Size(v);
    if (n < size) {
      Erase(v, v.m_first + n * Step(v), v.m_last);
    } else {
      InsertCopies(v, v.m_last, n - size, value);
    }
  }

  /// Growing, also by nothing, always moves to a new block, which is zero after the old elements.
  static void ResizeWithZeros(V& v, unsigned int n) {
    unsigned int const size = Size(v);
    if (n < size) {
      Erase(v, v.m_first + n * Step(v), v.m_last);
    } else {
      std::uint64_t const capacity = CapacityForZeros(size, n);
      char* const block = Allocate(v, capacity);
      Copy(v, v.m_first, block, size);
      std::memset(block + size * Step(v), 0, static_cast<std::size_t>(capacity - size) * Step(v));
      ReplaceBlock(v, block, block + n * Step(v), capacity);
    }
  }

  static void Reserve(V& v, std::uint64_t n) {
    if (n <= Capacity(v)) return;
    char* const block = Allocate(v, n);
    unsigned int const size = Size(v);
    Copy(v, v.m_first, block, size);
    ReplaceBlock(v, block, block + size * Step(v), n);
  }

  static void GrowCapacity(V& v, unsigned int n) { Reserve(v, CapacityForGrowth(Size(v), n)); }

  static void swap(V& a, V& b) {
    if (&a == &b) return;
    Exchange(a.m_first, b.m_first);
    Exchange(a.m_last, b.m_last);
    Exchange(a.m_endOfStorage, b.m_endOfStorage);
  }
  /// @}

private:
  /// Unsigned, because a block may be longer than half of the address space.
  static std::size_t Bytes(void const* from, void const* to) {
    return static_cast<std::size_t>(static_cast<char const*>(to) - static_cast<char const*>(from));
  }
  /// Element size.
  static std::size_t Step(V const& v) { return static_cast<std::size_t>(v.m_replicator.m_size); }

  static void Exchange(char*& a, char*& b) {
    char* const kept = a;
    a = b;
    b = kept;
  }

  static void CheckPosition(V const& v, char const* pos) {
    if (pos < v.m_first || pos > v.m_endOfStorage) std::abort();
  }

  /// Elements of a caller's range, also more than a vector can count. For a range that ends before
  /// it begins: 2^32, so that the request for its block is refused.
  static std::uint64_t WholeCount(V const& v, void const* first, void const* last) {
    return last < first ? UINT32_MAX + std::uint64_t{1} : Bytes(first, last) / Step(v);
  }

  static void Append(V& v, void const* value) {
    Copy(v, value, v.m_last, 1);
    v.m_last += Step(v);
  }

  /// Stores the words of the value directly where the single copies cannot be observed; false where
  /// they can, and where the value lies among the slots that are written.
  static bool FillPlain(V& v, char* first, char* last, void const* value) {
    auto const* const bytes = static_cast<char const*>(value);
    if (!IsPlainData(v.m_replicator) || (bytes < last && bytes + Step(v) > first)) return false;
    switch (Step(v)) {
    case sizeof(std::uint32_t):
      FillWords<std::uint32_t>(first, last, value);
      return true;
    case sizeof(std::uint64_t):
      FillWords<std::uint64_t>(first, last, value);
      return true;
    default:
      return false;
    }
  }

  /// Appends at or after the end of storage; slots between the elements and `pos` become zero.
  static void AppendToNewBlock(V& v, char* pos, void const* value) {
    unsigned int const index = Count(v, v.m_first, pos);
    unsigned int const size = Size(v);
    std::uint64_t const capacity = CapacityForAppend(size, index);
    char* const block = Allocate(v, capacity);
    Copy(v, v.m_first, block, size);
    char* const slot = block + index * Step(v);
    if (index != size) std::memset(block + size * Step(v), 0, (index - size) * Step(v));
    Copy(v, value, slot, 1);
    ReplaceBlock(v, block, slot + Step(v), capacity);
  }

  /// Moves to a new block of `capacity` elements, with what `write` puts into the slots from its
  /// argument up to its result between the elements before `pos` and those from `pos` on.
  template <class Write>
  static void InsertIntoNewBlock(V& v, std::uint64_t capacity, char* pos, Write write) {
    char* const block = Allocate(v, capacity);
    unsigned int const before = Count(v, v.m_first, pos);
    unsigned int const after = Count(v, pos, v.m_last);
    Copy(v, v.m_first, block, before);
    char* const next = write(block + before * Step(v));
    Copy(v, pos, next, after);
    ReplaceBlock(v, block, next + after * Step(v), capacity);
  }

  /// Moves the elements from `pos` on up by `n` slots as one block, where the copies of the plain
  /// steps cannot be observed; false where they can. A value among the elements reads the same
  /// after it as at any of those steps.
  static bool OpenGap(V& v, char* pos, unsigned int n) {
    if (!IsPlainData(v.m_replicator)) return false;
    std::memmove(pos + n * Step(v), pos, Bytes(pos, v.m_last));
    v.m_last += n * Step(v);
    return true;
  }

  static void InsertCopiesInPlace(V& v, char* pos, unsigned int n, void const* value) {
    char* const oldLast = v.m_last;
    unsigned int const after = Count(v, pos, oldLast);
    if (OpenGap(v, pos, n)) {
      fill(v, pos, pos + n * Step(v), value);
    } else if (after > n) {
      ShiftUp(v, pos, n);
      fill(v, pos, pos + n * Step(v), value);
    } else {
      v.m_last = fill_n(v, oldLast, n - after, value);
      Copy(v, pos, v.m_last, after);
      v.m_last += after * Step(v);
      fill(v, pos, oldLast, value);
    }
  }

  static void InsertRangeInPlace(V& v, char* pos, unsigned int n, char const* first,
                                 char const* last) {
    char* const oldLast = v.m_last;
    unsigned int const after = Count(v, pos, oldLast);
    if (after > n) {
      ShiftUp(v, pos, n);
      CopyToPosition(v, first, last, pos);
    } else {
      char const* const split = first + after * Step(v);
      Copy(v, split, oldLast, n - after);
      v.m_last += (n - after) * Step(v);
      Copy(v, pos, v.m_last, after);
      v.m_last += after * Step(v);
      CopyToPosition(v, first, split, pos);
    }
  }

  /// Copies a range to the position where it is inserted, in one call. Elements of the vector
  /// itself on both sides of the position are copied one by one, from the last down: a copy
  /// function goes from the first up and would overwrite the last of them before it copied them.
  static void CopyToPosition(V& v, char const* first, char const* last, char* pos) {
    if (first < pos && pos < last) {
      copy_backward(v, first, last, pos + Bytes(first, last));
    } else {
      copy_over(v, first, last, pos);
    }
  }

  /// Moves the more than `n` elements from `pos` on up by `n` slots, within the block.
  static void ShiftUp(V& v, char* pos, unsigned int n) {
    char* const oldLast = v.m_last;
    char* const split = oldLast - n * Step(v);
    Copy(v, split, oldLast, n);
    v.m_last += n * Step(v);
    copy_backward(v, pos, split, oldLast);
  }
};

} // namespace hylbas_detail
