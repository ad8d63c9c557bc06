/// \file
/// A position in a record vector that steps from record to record.
#pragma once

#include "detail/HYLBasExport.h"

/// A position in a record vector. Take it to walk a record vector without computing addresses. It
/// is the address of a record and the size of one; nothing is checked, and what invalidates
/// positions of the vector invalidates it. All operations take constant time.
template <class V>
class HYLBASGENERICS_EXPORT HYLBasVectorStructIterator {
public:
  /// Of no vector: step 0, position null.
  HYLBasVectorStructIterator() : m_step(0), m_position(nullptr), m_vector(nullptr) {}
  /// At `position`, with steps of `step` bytes.
  HYLBasVectorStructIterator(char* position, unsigned int step)
      : m_step(step), m_position(position), m_vector(nullptr) {}
  /// With the steps of `v`; the position is null and to be `Set`.
  HYLBasVectorStructIterator(V* v)
      : m_step(static_cast<unsigned int>(v->m_replicator.m_size)), m_position(nullptr),
        m_vector(v) {}
  HYLBasVectorStructIterator(HYLBasVectorStructIterator const&) = default;
  ~HYLBasVectorStructIterator() {}

  /// Takes over the other's position and step.
  // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): it owns nothing that could be lost
  HYLBasVectorStructIterator& operator=(HYLBasVectorStructIterator const& other) {
    m_step = other.m_step;
    m_position = other.m_position;
    return *this;
  }
  /// Moves to the record at `p`; the step stays.
  HYLBasVectorStructIterator& operator=(void const* p) {
    m_position = static_cast<char*>(const_cast<void*>(p));
    return *this;
  }
  void Set(void* p) { m_position = static_cast<char*>(p); }

  /// Positions alone are compared, whatever the steps.
  bool operator==(HYLBasVectorStructIterator const& other) const {
    return m_position == other.m_position;
  }
  bool operator!=(HYLBasVectorStructIterator const& other) const {
    return m_position != other.m_position;
  }

  HYLBasVectorStructIterator& operator++() {
    Increment();
    return *this;
  }
  HYLBasVectorStructIterator& operator--() {
    Decrement();
    return *this;
  }
  HYLBasVectorStructIterator operator++(int) {
    HYLBasVectorStructIterator const before(*this);
    Increment();
    return before;
  }
  HYLBasVectorStructIterator operator--(int) {
    HYLBasVectorStructIterator const before(*this);
    Decrement();
    return before;
  }
  void Increment() { m_position += m_step; }
  void Decrement() { m_position -= m_step; }

  /// The address of the record.
  void* operator*() const { return m_position; }
  void* operator->() const { return m_position; }
  void* Dereference() { return m_position; }

private:
  unsigned int m_step; // bytes
  char* m_position;
#if defined(__clang__) // which alone would warn of it
  [[maybe_unused]]
#endif
  V* m_vector; // for debuggers
};
