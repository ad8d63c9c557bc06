/// \file
/// A model of the type-erased vectors: the steps of each operation carried out one by one on
/// numbered blocks, with every call that they make.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "support/RecordingMemory.h"

namespace model {

using recording::Event;
using recording::Place;

/// Memory of all vectors of one test: block 0 is the test's own.
struct Memory {
  std::map<int, std::vector<unsigned char>> blocks;
  int nextNumber = 1;
  std::vector<Event> events;
};

class PlainVector {
public:
  PlainVector(Memory& memory, unsigned int elementSize, bool destroys)
      : m_memory(&memory), s(elementSize), m_destroys(destroys) {}

  unsigned int size = 0, capacity = 0;
  int block = -1;

  Place At(unsigned int i) const { return block < 0 ? Place{-1, 0} : Later({block, 0}, i); }
  unsigned char const* Bytes() const { return m_memory->blocks.at(block).data(); }

  void InitCopies(unsigned int n, Place value) {
    SetBlock(n, n);
    Fill(At(0), n, value);
  }
  void InitZeros(unsigned int n) { SetBlock(n, n); } // as new blocks are
  void InitRange(Place first, unsigned int n) {
    SetBlock(n, n);
    Copy(first, At(0), n);
  }
  void InitFrom(PlainVector const& other) {
    m_destroys = other.m_destroys;
    InitRange(other.At(0), other.size);
  }
  void Release() {
    Destroy(At(0), size);
    if (block < 0) return;
    m_memory->events.push_back({'F', {block, 0}, {-1, 0}, 0});
    m_memory->blocks.erase(block);
  }
  void AssignFrom(PlainVector const& other) {
    PlainVector copy(*this);
    copy.InitFrom(other);
    Swap(copy);
    copy.Release();
  }
  /// Each keeps its replicator.
  void Swap(PlainVector& other) {
    std::swap(block, other.block);
    std::swap(size, other.size);
    std::swap(capacity, other.capacity);
  }

  void PushBack(Place value) { Insert(size, value); }

  void Insert(unsigned int k, Place value) {
    if (size < capacity && k == size) {
      Copy(value, At(size++), 1);
    } else if (size < capacity && k < capacity) {
      ShiftUp(k, 1);
      Copy(value, At(k), 1);
    } else if (k < capacity) {
      InsertRange(k, value, 1);
    } else { // over a gap of zeros, as new blocks are
      Replace(k + 2 * size + 1, k + 1, [&](PlainVector& old) {
        Copy(old.At(0), At(0), old.size);
        Copy(value, At(k), 1);
      });
    }
  }
  void InsertCopies(unsigned int k, unsigned int n, Place value) {
    InsertRun(k, n, [&](unsigned int, unsigned int count, Place to) { Fill(to, count, value); });
  }
  void InsertRange(unsigned int k, Place first, unsigned int n) {
    InsertRun(k, n, [&](unsigned int from, unsigned int count, Place to) {
      Place const source = Later(first, from), end = Later(source, count);
      if (source.block != to.block || to.offset <= source.offset || end.offset <= to.offset)
        Copy(source, to, count);
      else // on both sides of the position
        for (unsigned int i = count; i-- != 0;)
          Copy(Later(source, i), Later(to, i), 1);
    });
  }

  void PopBack() { Destroy(At(--size), 1); }
  void Erase(unsigned int k) {
    if (k + 1 != size) Copy(At(k + 1), At(k), size - k - 1);
    PopBack();
  }
  void Erase(unsigned int from, unsigned int to) {
    Copy(At(to), At(from), size - to);
    size -= to - from;
    Destroy(At(size), to - from);
  }

  void Assign(unsigned int n, Place value) {
    if (n > capacity) {
      Replace(n, n, [&](PlainVector&) { Fill(At(0), n, value); });
    } else if (n > size) {
      Fill(At(0), size, value);
      Fill(At(size), n - size, value);
      size = n;
    } else {
      Fill(At(0), n, value);
      Erase(n, size);
    }
  }
  void Resize(unsigned int n, Place value) {
    n < size ? Erase(n, size) : InsertCopies(size, n - size, value);
  }
  void ResizeWithZeros(unsigned int n) { n < size ? Erase(n, size) : MoveTo(n + 2 * size + 1, n); }
  void Reserve(unsigned int n) {
    if (n > capacity) MoveTo(n, size);
  }

  /// \name Single steps
  /// @{
  void Copy(Place from, Place to, unsigned int n) {
    m_memory->events.push_back({'C', from, to, n});
    for (unsigned int i = 0; i != n; ++i)
      std::memmove(Bytes(Later(to, i)), Bytes(Later(from, i)), s);
  }
  void Destroy(Place first, unsigned int n) {
    if (m_destroys) m_memory->events.push_back({'D', first, {-1, 0}, n});
  }
  bool HasSameBytes(Place value) {
    std::string const bytes(reinterpret_cast<char const*>(Bytes(value)), s);
    return bytes == std::string(s, bytes[0]);
  }
  void Fill(Place to, unsigned int n, Place value) {
    if (!m_destroys && n > 3 && HasSameBytes(value)) {
      std::memset(Bytes(to), *Bytes(value), std::size_t{n} * s);
      return;
    }
    for (unsigned int i = 0; i != n; ++i)
      Copy(value, Later(to, i), 1);
  }
  void AllocateAndDiscard(unsigned int n) {
    PlainVector copy(*this);
    copy.InitZeros(n);
    copy.size = 0, copy.m_destroys = false;
    copy.Release();
  }
  /// @}

private:
  // The place `n` elements on.
  Place Later(Place p, unsigned int n) const {
    return {p.block, p.offset + static_cast<std::ptrdiff_t>(std::size_t{s} * n)};
  }
  unsigned char* Bytes(Place p) { return m_memory->blocks.at(p.block).data() + p.offset; }

  void SetBlock(unsigned int newCapacity, unsigned int newSize) {
    block = -1;
    size = newSize;
    capacity = newCapacity;
    if (capacity == 0) return;
    block = m_memory->nextNumber++;
    m_memory->blocks[block].resize(std::size_t{capacity} * s);
    m_memory->events.push_back({'A', {-1, 0}, {-1, 0}, std::size_t{capacity} * s});
  }
  template <class Write>
  void Replace(unsigned int newCapacity, unsigned int newSize, Write write) {
    PlainVector old(*this);
    SetBlock(newCapacity, newSize);
    write(old);
    old.Release();
  }
  void MoveTo(unsigned int newCapacity, unsigned int newSize) {
    Replace(newCapacity, newSize, [&](PlainVector& old) { Copy(old.At(0), At(0), old.size); });
  }

  void ShiftUp(unsigned int k, unsigned int n) {
    Copy(At(size - n), At(size), n);
    for (unsigned int i = size - n; i != k; --i)
      Copy(At(i - 1), At(i - 1 + n), 1);
    size += n;
  }
  // `put` writes that many values, from the given one on, to a place.
  template <class Put>
  void InsertRun(unsigned int k, unsigned int n, Put put) {
    unsigned int const after = size - k;
    if (n == 0) return;
    if (capacity - size < n) {
      Replace(size + std::max(size, n), size + n, [&](PlainVector& old) {
        Copy(old.At(0), At(0), k);
        put(0, n, At(k));
        Copy(old.At(k), At(k + n), after);
      });
    } else if (after > n) {
      ShiftUp(k, n);
      put(0, n, At(k));
    } else {
      put(after, n - after, At(size));
      Copy(At(k), At(k + n), after);
      put(0, after, At(k));
      size += n;
    }
  }

  Memory* m_memory;
  unsigned int s;
  bool m_destroys;
};

} // namespace model
