#include "HYLBasVectorGeneric.h"

#include <cstdio>
#include <cstdlib>

#include "VectorAlgorithms.h"

using Algorithms = hylbas_detail::VectorAlgorithms<HYLBasVectorGeneric>;

HYLBasVectorGeneric::HYLBasVectorGeneric(HYLBasReplicatorGeneric const& replicator, unsigned int n,
                                         void const* value)
    : HYLBasVectorGeneric(replicator) {
  Init(n, value);
}

HYLBasVectorGeneric::HYLBasVectorGeneric(HYLBasVectorGeneric const& other)
    : HYLBasVectorGeneric(other.m_replicator) {
  Init(other);
}

HYLBasVectorGeneric& HYLBasVectorGeneric::operator=(HYLBasVectorGeneric const& other) {
  HYLBasVectorGeneric copy(other); // also for self-assignment, which must not lose the source
  swap(copy);
  return *this;
}

void HYLBasVectorGeneric::Init(HYLBasVectorGeneric const& other) {
  Algorithms::InitRange(*this, other.m_first, other.m_last);
}

void HYLBasVectorGeneric::Init(unsigned int n, void const* value) {
  Algorithms::InitCopies(*this, n, value);
}

void HYLBasVectorGeneric::Init(void const* first, void const* last) {
  Algorithms::InitRange(*this, first, last);
}

void* HYLBasVectorGeneric::Begin() { return m_first; }
void const* HYLBasVectorGeneric::Begin() const { return m_first; }
void* HYLBasVectorGeneric::End() { return m_last; }
void const* HYLBasVectorGeneric::End() const { return m_last; }
unsigned int HYLBasVectorGeneric::Size() const { return Algorithms::Size(*this); }
unsigned int HYLBasVectorGeneric::Capacity() const { return Algorithms::Capacity(*this); }

void HYLBasVectorGeneric::RangeCheck(unsigned int i) const {
  if (i < Size()) return;
  std::fputs("Error: out-of-bounds violation in HYLBasVector.\n", stderr);
  std::fflush(stderr);
  std::abort();
}

void HYLBasVectorGeneric::PushBack(void const* value) { Algorithms::PushBack(*this, value); }

char* HYLBasVectorGeneric::Insert(void* pos, void const* value) {
  return Algorithms::Insert(*this, pos, value);
}

void HYLBasVectorGeneric::Insert(void* pos, unsigned int n, void const* value) {
  Algorithms::InsertCopies(*this, pos, n, value);
}

void HYLBasVectorGeneric::Insert(void* pos, void const* first, void const* last) {
  Algorithms::InsertRange(*this, pos, first, last);
}

void HYLBasVectorGeneric::PopBack() { Algorithms::PopBack(*this); }
void* HYLBasVectorGeneric::Erase(void* pos) { return Algorithms::Erase(*this, pos); }

void* HYLBasVectorGeneric::Erase(void* first, void* last) {
  return Algorithms::Erase(*this, first, last);
}

void HYLBasVectorGeneric::Clear() { Algorithms::Erase(*this, m_first, m_last); }

void HYLBasVectorGeneric::Assign(unsigned int n, void const* value) {
  Algorithms::Assign(*this, n, value);
}

void HYLBasVectorGeneric::Resize(unsigned int n, void const* value) {
  Algorithms::Resize(*this, n, value);
}

void HYLBasVectorGeneric::Reserve(unsigned int n) { Algorithms::Reserve(*this, n); }
void HYLBasVectorGeneric::swap(HYLBasVectorGeneric& other) { Algorithms::swap(*this, other); }

char* HYLBasVectorGeneric::Allocate(unsigned int n) { return Algorithms::Allocate(*this, n); }

void HYLBasVectorGeneric::Deallocate(void* p, unsigned int n) {
  Algorithms::Deallocate(*this, p, n);
}

void HYLBasVectorGeneric::Destroy(void* p) { Algorithms::Destroy(*this, p, 1); }
void HYLBasVectorGeneric::Destroy(void* p, unsigned int n) { Algorithms::Destroy(*this, p, n); }

void HYLBasVectorGeneric::InsertAux(void* pos, void const* value) {
  Algorithms::InsertAux(*this, pos, value);
}

void HYLBasVectorGeneric::GrowCapacity(unsigned int n) { Algorithms::GrowCapacity(*this, n); }

unsigned int const& HYLBasVectorGeneric::LargerOf(unsigned int const& a, unsigned int const& b) {
  return Algorithms::LargerOf(a, b);
}

void HYLBasVectorGeneric::fill(char* first, char* last, void const* value) {
  Algorithms::fill(*this, first, last, value);
}

char* HYLBasVectorGeneric::fill_n(char* first, unsigned int n, void const* value) {
  return Algorithms::fill_n(*this, first, n, value);
}

char* HYLBasVectorGeneric::copy_over(void const* first, void const* last, void* result) {
  return Algorithms::copy_over(*this, first, last, result);
}

char* HYLBasVectorGeneric::copy_backward(void* first, char* last, char* result) {
  return Algorithms::copy_backward(*this, static_cast<char const*>(first), last, result);
}

unsigned int HYLBasVectorGeneric::distance(void const* p, void const* q) {
  return Algorithms::Distance(*this, q, p);
}

bool HYLBasVectorGeneric::sameBytes(void const* value) {
  return Algorithms::sameBytes(*this, value);
}
