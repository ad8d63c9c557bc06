/// \file
/// A model of the type-erased vectors: the described steps carried out one by one on numbered
/// blocks, with every call that they make.
#pragma once

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "RecordingMemory.h"

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
      : m_memory(memory), s(elementSize), m_destroys(destroys) {}

  unsigned int size = 0, capacity = 0;
  int block = -1;

  Place At(unsigned int i) const { return block < 0 ? Place{-1, 0} : Later({block, 0}, i); }
  unsigned char const* Bytes() const { return m_memory.blocks.at(block).data(); }

  void InitCopies(unsigned int n, Place value) {
    SetBlock(Allocate(n), n, n);
    Fill(At(0), n, value);
  }
  void InitRange(Place first, unsigned int n) {
    SetBlock(Allocate(n), n, n);
    Copy(first, At(0), n);
  }
  void Release() {
    Destroy(At(0), size);
    Free(block);
  }
  void AssignFrom(PlainVector const& other) {
    PlainVector old(*this);
    InitRange(other.At(0), other.size);
    old.Release();
  }

  void PushBack(Place value) { Insert(size, value); }

  void Insert(unsigned int k, Place value) {
    if (size < capacity && k == size) {
      Copy(value, At(size), 1);
      ++size;
    } else if (size < capacity && k < capacity) {
      Copy(At(size - 1), At(size), 1);
      ++size;
      CopyBackward(k, size - 2, 1);
      Copy(value, At(k), 1);
    } else if (k < capacity) {
      Rebuild(size == 0 ? 1 : 2 * size, k, 1, [&](Place slot) { Copy(value, slot, 1); });
    } else {
      PlainVector const old(*this);
      unsigned int const newCapacity = k + 2 * size + 1;
      SetBlock(Allocate(newCapacity), k + 1, newCapacity);
      Copy(old.At(0), At(0), old.size);
      for (unsigned int i = old.size; i != k; ++i)
        std::memset(Bytes(At(i)), 0, s);
      Copy(value, At(k), 1);
      PlainVector(old).Release();
    }
  }

  void InsertCopies(unsigned int k, unsigned int n, Place value) {
    if (n == 0) return;
    unsigned int const t = size - k;
    if (capacity - size >= n && k < capacity) {
      if (t > n) {
        ShiftUp(k, n);
        Fill(At(k), n, value);
      } else {
        unsigned int const oldSize = size;
        Fill(At(size), n - t, value);
        Copy(At(k), At(size + n - t), t);
        size += n;
        Fill(At(k), oldSize - k, value);
      }
    } else {
      Rebuild(size + (size < n ? n : size), k, n, [&](Place slot) { Fill(slot, n, value); });
    }
  }

  void InsertRange(unsigned int k, Place first, unsigned int n) {
    if (n == 0) return;
    unsigned int const t = size - k;
    if (capacity - size >= n) {
      if (t > n) {
        ShiftUp(k, n);
        Copy(first, At(k), n);
      } else {
        Copy(Later(first, t), At(size), n - t);
        Copy(At(k), At(size + n - t), t);
        size += n;
        Copy(first, At(k), t);
      }
    } else {
      Rebuild(size + (size < n ? n : size), k, n, [&](Place slot) { Copy(first, slot, n); });
    }
  }

  void PopBack() {
    --size;
    Destroy(At(size), 1);
  }
  void Erase(unsigned int k) {
    if (k + 1 != size) Copy(At(k + 1), At(k), size - k - 1);
    PopBack();
  }
  void Erase(unsigned int from, unsigned int to) {
    unsigned int const removed = to - from;
    Copy(At(to), At(from), size - to);
    Destroy(At(size - removed), removed);
    size -= removed;
  }

  void Assign(unsigned int n, Place value) {
    if (n > capacity) {
      PlainVector old(*this);
      InitCopies(n, value);
      old.Release();
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
    if (n < size) {
      Erase(n, size);
    } else {
      InsertCopies(size, n - size, value);
    }
  }
  void ResizeWithZeros(unsigned int n) {
    if (n < size) {
      Erase(n, size);
    } else {
      PlainVector old(*this);
      unsigned int const newCapacity = n + 2 * size + 1;
      SetBlock(Allocate(newCapacity), n, newCapacity); // whose bytes are zero
      Copy(old.At(0), At(0), old.size);
      old.Release();
    }
  }
  void Reserve(unsigned int n) {
    if (n <= capacity) return;
    PlainVector old(*this);
    SetBlock(Allocate(n), size, n);
    Copy(old.At(0), At(0), size);
    old.Release();
  }

private:
  // The place `n` elements on.
  Place Later(Place p, unsigned int n) const {
    return {p.block, p.offset + static_cast<std::ptrdiff_t>(std::size_t{s} * n)};
  }
  unsigned char* Bytes(Place p) { return m_memory.blocks.at(p.block).data() + p.offset; }

  int Allocate(unsigned int n) {
    if (n == 0) return -1;
    m_memory.blocks[m_memory.nextNumber].resize(std::size_t{n} * s);
    m_memory.events.push_back({'A', {-1, 0}, {-1, 0}, std::size_t{n} * s});
    return m_memory.nextNumber++;
  }
  void Free(int number) {
    if (number < 0) return;
    m_memory.events.push_back({'F', {number, 0}, {-1, 0}, 0});
    m_memory.blocks.erase(number);
  }
  void SetBlock(int number, unsigned int newSize, unsigned int newCapacity) {
    block = number;
    size = newSize;
    capacity = newCapacity;
  }
  void Copy(Place from, Place to, unsigned int n) {
    m_memory.events.push_back({'C', from, to, n});
    for (unsigned int i = 0; i != n; ++i)
      std::memmove(Bytes(Later(to, i)), Bytes(Later(from, i)), s);
  }
  void Destroy(Place first, unsigned int n) {
    if (m_destroys) m_memory.events.push_back({'D', first, {-1, 0}, n});
  }
  void Fill(Place to, unsigned int n, Place value) {
    std::string const bytes(reinterpret_cast<char const*>(n ? Bytes(value) : nullptr), n ? s : 0);
    if (!m_destroys && n > 3 && bytes == std::string(s, bytes[0])) {
      std::memset(Bytes(to), bytes[0], std::size_t{n} * s);
      return;
    }
    for (unsigned int i = 0; i != n; ++i)
      Copy(value, Later(to, i), 1);
  }
  void CopyBackward(unsigned int first, unsigned int last, unsigned int by) {
    while (last != first) {
      --last;
      Copy(At(last), At(last + by), 1);
    }
  }
  void ShiftUp(unsigned int k, unsigned int n) {
    unsigned int const oldSize = size;
    Copy(At(size - n), At(size), n);
    size += n;
    CopyBackward(k, oldSize - n, n);
  }
  template <class Write>
  void Rebuild(unsigned int newCapacity, unsigned int k, unsigned int n, Write write) {
    PlainVector old(*this);
    SetBlock(Allocate(newCapacity), size + n, newCapacity);
    Copy(old.At(0), At(0), k);
    write(At(k));
    Copy(old.At(k), At(k + n), old.size - k);
    old.Release();
  }

  Memory& m_memory;
  unsigned int s;
  bool m_destroys;
};

} // namespace model
