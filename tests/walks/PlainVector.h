/// \file
/// A model of the type-erased vectors under the names of the real ones: the steps of each
/// operation carried out one by one, with every call that they make.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "support/RecordingMemory.h"

namespace model {

/// Memory of all vectors of one walk, and what was done in it.
struct Memory {
  std::map<char const*, int> blocks; ///< their numbers; 0 is the walk's own
  int lastNumber = 0;
  std::vector<recording::Event> events;

  recording::Place Locate(void const* address) const {
    auto const* const p = static_cast<char const*>(address);
    if (p == nullptr) return {-1, 0};
    auto const block = std::prev(blocks.upper_bound(p));
    return {block->second, p - block->first};
  }
};

class PlainVector {
public:
  static inline Memory memory;

  PlainVector(auto const& replicator, unsigned int n, void const* value)
      : s(static_cast<std::size_t>(replicator.m_size)),
        m_destroys(replicator.m_destroy != nullptr) {
    Init(n, value);
  }
  PlainVector(unsigned int size, unsigned int n) : s(size) { Init(n); }
  PlainVector(unsigned int size, unsigned int n, void const* value) : s(size) { Init(n, value); }
  PlainVector(PlainVector const& other) : s(other.s), m_destroys(other.m_destroys) {
    Init(other.Begin(), other.End());
  }
  ~PlainVector() {
    Destroy(m_first, m_size);
    Deallocate(m_first, 0);
  }
  PlainVector& operator=(PlainVector const& other) {
    PlainVector copy(other);
    swap(copy, *this);
    return *this;
  }
  void Init(unsigned int n) { // zeros, as new blocks are
    m_first = Allocate(n);
    m_size = m_capacity = n;
  }
  void Init(unsigned int n, void const* value) {
    Init(n);
    fill_n(m_first, n, value);
  }
  void Init(void const* first, void const* last) {
    Init(distance(last, first));
    copy_over(first, last, m_first);
  }

  char* Begin() const { return m_first; }
  char* End() const { return At(m_size); }
  unsigned int Size() const { return m_size; }
  unsigned int Capacity() const { return m_capacity; }

  void PushBack(void const* value) { Insert(End(), value); }
  char* Insert(char* pos, void const* value) {
    unsigned int const k = distance(pos, m_first);
    if (k >= m_capacity) { // over a gap of zeros, as new blocks are
      MoveTo(k + 2 * m_size + 1, k + 1, value);
    } else if (m_size == m_capacity) {
      Insert(pos, value, Next(value));
    } else {
      k == m_size ? void(++m_size) : ShiftUp(pos, 1);
      copy_over(value, Next(value), pos);
    }
    return At(k);
  }
  void Insert(char* pos, unsigned int n, void const* value) { InsertRun(pos, n, value, false); }
  void Insert(char* pos, void const* first, void const* last) {
    InsertRun(pos, distance(last, first), first, true);
  }

  void PopBack() { Destroy(At(--m_size)); }
  char* Erase(char* pos) {
    if (pos + s != End()) copy_over(pos + s, End(), pos);
    PopBack();
    return pos;
  }
  char* Erase(char* first, char* last) {
    copy_over(last, End(), first);
    m_size -= distance(last, first);
    Destroy(End(), distance(last, first));
    return first;
  }
  void Clear() { Erase(m_first, End()); }

  void Assign(unsigned int n, void const* value) {
    if (n > m_capacity) return Replace(n, n, [&] { fill_n(m_first, n, value); });
    fill_n(m_first, std::min(n, m_size), value);
    if (n <= m_size) return void(Erase(At(n), End()));
    fill_n(End(), n - m_size, value);
    m_size = n;
  }
  void Resize(unsigned int n, void const* value) {
    n < m_size ? void(Erase(At(n), End())) : Insert(End(), n - m_size, value);
  }
  void Resize(unsigned int n) {
    n < m_size ? void(Erase(At(n), End())) : MoveTo(n + 2 * m_size + 1, n);
  }
  void resize(unsigned int n) { Resize(n); }
  void Reserve(unsigned int n) {
    if (n > m_capacity) MoveTo(n, m_size);
  }
  /// Each keeps its replicator.
  friend void swap(PlainVector& a, PlainVector& b) {
    std::swap(a.m_first, b.m_first);
    std::swap(a.m_size, b.m_size);
    std::swap(a.m_capacity, b.m_capacity);
  }

private:
  // The private operations of the real ones.
  char* At(unsigned int i) const { return m_first + i * s; }
  unsigned int distance(void const* p, void const* q) {
    std::ptrdiff_t const bytes = static_cast<char const*>(p) - static_cast<char const*>(q);
    return static_cast<unsigned int>(bytes / static_cast<std::ptrdiff_t>(s));
  }
  unsigned int const& LargerOf(unsigned int const& a, unsigned int const& b) {
    return a < b ? b : a;
  }
  bool sameBytes(void const* value) {
    std::string const bytes(static_cast<char const*>(value), s);
    return bytes == std::string(s, bytes[0]);
  }
  void GrowCapacity(unsigned int n) { Reserve(m_size + std::max(m_size, n)); }

  char* Allocate(unsigned int n) {
    if (n == 0) return nullptr;
    memory.events.push_back({'A', {-1, 0}, {-1, 0}, n * s});
    char* const block = new char[n * s]();
    memory.blocks[block] = ++memory.lastNumber;
    return block;
  }
  void Deallocate(void* block, unsigned int) {
    if (block == nullptr) return;
    memory.events.push_back({'F', memory.Locate(block), {-1, 0}, 0});
    memory.blocks.erase(static_cast<char*>(block));
    delete[] static_cast<char*>(block);
  }
  void Destroy(void* first, unsigned int n) {
    if (m_destroys) memory.events.push_back({'D', memory.Locate(first), {-1, 0}, n});
  }
  void Destroy(void* p) { Destroy(p, 1); }

  void InsertAux(void* pos, void const* value) { Insert(static_cast<char*>(pos), value); }
  char* copy_over(void const* first, void const* last, void* to) {
    unsigned int const n = distance(last, first);
    memory.events.push_back({'C', memory.Locate(first), memory.Locate(to), n});
    if (n != 0) std::memmove(to, first, n * s);
    return static_cast<char*>(to) + n * s;
  }
  char const* Next(void const* p) { return static_cast<char const*>(p) + s; }
  char* copy_backward(void const* first, char const* last, char* end) {
    for (; last != first; last -= s)
      copy_over(last - s, last, end -= s);
    return end;
  }
  char* fill_n(char* to, unsigned int n, void const* value) {
    bool const isFast = !m_destroys && n > 3 && sameBytes(value);
    if (isFast) std::memset(to, *static_cast<char const*>(value), n * s);
    for (unsigned int i = 0; i != n && !isFast; ++i)
      copy_over(value, Next(value), to + i * s);
    return to + n * s;
  }
  void fill(char* first, char* last, void const* value) {
    fill_n(first, distance(last, first), value);
  }

  template <class Write>
  void Replace(unsigned int capacity, unsigned int size, Write write) {
    PlainVector old(static_cast<unsigned int>(s), capacity);
    old.m_destroys = m_destroys;
    swap(old, *this);
    m_size = size;
    write();
  }
  void MoveTo(unsigned int capacity, unsigned int size, void const* last = nullptr) {
    Replace(capacity, size, [&, first = m_first, end = End()] {
      copy_over(first, end, m_first);
      if (last != nullptr) copy_over(last, Next(last), End() - s);
    });
  }
  void ShiftUp(char* pos, unsigned int n) {
    char* const end = End();
    copy_over(end - n * s, end, end);
    copy_backward(pos, end - n * s, end);
    m_size += n;
  }
  // Inserts a run of values, or copies of one.
  void InsertRun(char* pos, unsigned int n, void const* values, bool isRun) {
    auto const put = [&](unsigned int from, unsigned int count, char* to) {
      char const* const source = static_cast<char const*>(values) + from * s;
      char const* const end = source + count * s;
      if (!isRun)
        fill_n(to, count, values);
      else if (to <= source || end <= to)
        copy_over(source, end, to);
      else // on both sides of the position
        copy_backward(source, end, to + count * s);
    };
    unsigned int const k = distance(pos, m_first), after = m_size - k;
    if (n == 0) return;
    if (m_capacity - m_size < n) {
      Replace(m_size + std::max(m_size, n), m_size + n, [&, first = m_first, end = End()] {
        copy_over(first, pos, m_first);
        put(0, n, At(k));
        copy_over(pos, end, At(k + n));
      });
    } else if (after > n) {
      ShiftUp(pos, n);
      put(0, n, pos);
    } else {
      put(after, n - after, End());
      copy_over(pos, End(), pos + n * s);
      put(0, after, pos);
      m_size += n;
    }
  }

  std::size_t s;
  bool m_destroys = false;
  char* m_first = nullptr;
  unsigned int m_size = 0, m_capacity = 0;
};

} // namespace model
