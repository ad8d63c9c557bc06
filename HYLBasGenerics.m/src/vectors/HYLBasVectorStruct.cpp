#include "HYLBasVectorStruct.h"

#include <cstdlib>

#include "VectorAlgorithms.h"

template <class V>
using Algorithms = hylbas_detail::VectorAlgorithms<V>;

template <class Alloc, class Replicator>
HYLBasVectorStruct<Alloc, Replicator>::HYLBasVectorStruct(Replicator const& replicator,
                                                          unsigned int n, void const* value)
    : m_replicator(replicator) {
  Init(n, value);
}

template <class Alloc, class Replicator>
HYLBasVectorStruct<Alloc, Replicator>::HYLBasVectorStruct(unsigned int size, unsigned int n)
    : m_replicator(static_cast<int>(size)) {
  Init(n);
}

template <class Alloc, class Replicator>
HYLBasVectorStruct<Alloc, Replicator>::HYLBasVectorStruct(unsigned int size, unsigned int n,
                                                          void const* value)
    : m_replicator(static_cast<int>(size)) {
  Init(n, value);
}

template <class Alloc, class Replicator>
HYLBasVectorStruct<Alloc, Replicator>::HYLBasVectorStruct(HYLBasVectorStruct const& other)
    : m_replicator(other.m_replicator) {
  Init(other);
}

template <class Alloc, class Replicator>
HYLBasVectorStruct<Alloc, Replicator>::~HYLBasVectorStruct() {
  hylbas_detail::ReleaseBlock(m_allocator, m_replicator, m_first, m_last);
}

template <class Alloc, class Replicator>
HYLBasVectorStruct<Alloc, Replicator>&
HYLBasVectorStruct<Alloc, Replicator>::operator=(HYLBasVectorStruct const& other) {
  HYLBasVectorStruct copy(other); // also for self-assignment, which must not lose the source
  swap(copy);
  return *this;
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Init(HYLBasVectorStruct const& other) {
  Algorithms<HYLBasVectorStruct>::InitRange(*this, other.m_first, other.m_last);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Init(unsigned int n) {
  Algorithms<HYLBasVectorStruct>::InitZeros(*this, n);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Init(unsigned int n, void const* value) {
  Algorithms<HYLBasVectorStruct>::InitCopies(*this, n, value);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Init(void const* first, void const* last) {
  Algorithms<HYLBasVectorStruct>::InitRange(*this, first, last);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::RangeCheck(unsigned int i) const {
  if (i >= Size()) std::abort();
}

template <class Alloc, class Replicator>
unsigned int HYLBasVectorStruct<Alloc, Replicator>::Size() const {
  return Algorithms<HYLBasVectorStruct>::Size(*this);
}

template <class Alloc, class Replicator>
unsigned int HYLBasVectorStruct<Alloc, Replicator>::size() const {
  return Size();
}

template <class Alloc, class Replicator>
unsigned int HYLBasVectorStruct<Alloc, Replicator>::Capacity() const {
  return Algorithms<HYLBasVectorStruct>::Capacity(*this);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::PushBack(void const* value) {
  Algorithms<HYLBasVectorStruct>::PushBack(*this, value);
}

template <class Alloc, class Replicator>
char* HYLBasVectorStruct<Alloc, Replicator>::Insert(void* pos, void const* value) {
  return Algorithms<HYLBasVectorStruct>::Insert(*this, pos, value);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Insert(void* pos, unsigned int n, void const* value) {
  Algorithms<HYLBasVectorStruct>::InsertCopies(*this, pos, n, value);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Insert(void* pos, void const* first, void const* last) {
  Algorithms<HYLBasVectorStruct>::InsertRange(*this, pos, first, last);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::PopBack() {
  Algorithms<HYLBasVectorStruct>::PopBack(*this);
}

template <class Alloc, class Replicator>
void* HYLBasVectorStruct<Alloc, Replicator>::Erase(void* pos) {
  return Algorithms<HYLBasVectorStruct>::Erase(*this, pos);
}

template <class Alloc, class Replicator>
void* HYLBasVectorStruct<Alloc, Replicator>::Erase(void* first, void* last) {
  return Algorithms<HYLBasVectorStruct>::Erase(*this, first, last);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Clear() {
  Erase(m_first, m_last);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::clear() {
  Clear();
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Assign(unsigned int n, void const* value) {
  Algorithms<HYLBasVectorStruct>::Assign(*this, n, value);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::assign(unsigned int n, void const* value) {
  Assign(n, value);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Resize(unsigned int n) {
  Algorithms<HYLBasVectorStruct>::ResizeWithZeros(*this, n);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::resize(unsigned int n) {
  Resize(n);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Resize(unsigned int n, void const* value) {
  Algorithms<HYLBasVectorStruct>::Resize(*this, n, value);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::resize(unsigned int n, void const* value) {
  Resize(n, value);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Reserve(unsigned int n) {
  Algorithms<HYLBasVectorStruct>::Reserve(*this, n);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::swap(HYLBasVectorStruct& other) {
  Algorithms<HYLBasVectorStruct>::swap(*this, other);
}

template <class Alloc, class Replicator>
char* HYLBasVectorStruct<Alloc, Replicator>::Allocate(unsigned int n) {
  return Algorithms<HYLBasVectorStruct>::Allocate(*this, n);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Deallocate(void* p, unsigned int n) {
  Algorithms<HYLBasVectorStruct>::Deallocate(*this, p, n);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Destroy(void* p) {
  Algorithms<HYLBasVectorStruct>::Destroy(*this, p, 1);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::Destroy(void* p, unsigned int n) {
  Algorithms<HYLBasVectorStruct>::Destroy(*this, p, n);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::InsertAux(void* pos, void const* value) {
  Algorithms<HYLBasVectorStruct>::InsertAux(*this, pos, value);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::GrowCapacity(unsigned int n) {
  Algorithms<HYLBasVectorStruct>::GrowCapacity(*this, n);
}

template <class Alloc, class Replicator>
unsigned int const& HYLBasVectorStruct<Alloc, Replicator>::LargerOf(unsigned int const& a,
                                                                    unsigned int const& b) {
  return Algorithms<HYLBasVectorStruct>::LargerOf(a, b);
}

template <class Alloc, class Replicator>
void HYLBasVectorStruct<Alloc, Replicator>::fill(char* first, char* last, void const* value) {
  Algorithms<HYLBasVectorStruct>::fill(*this, first, last, value);
}

template <class Alloc, class Replicator>
char* HYLBasVectorStruct<Alloc, Replicator>::fill_n(char* first, unsigned int n,
                                                    void const* value) {
  return Algorithms<HYLBasVectorStruct>::fill_n(*this, first, n, value);
}

template <class Alloc, class Replicator>
char* HYLBasVectorStruct<Alloc, Replicator>::copy_over(void const* first, void const* last,
                                                       void* result) {
  return Algorithms<HYLBasVectorStruct>::copy_over(*this, first, last, result);
}

template <class Alloc, class Replicator>
char* HYLBasVectorStruct<Alloc, Replicator>::copy_backward(void* first, char* last, char* result) {
  return Algorithms<HYLBasVectorStruct>::copy_backward(*this, static_cast<char const*>(first), last,
                                                       result);
}

template <class Alloc, class Replicator>
unsigned int HYLBasVectorStruct<Alloc, Replicator>::distance(void const* p, void const* q) {
  return Algorithms<HYLBasVectorStruct>::Distance(*this, q, p);
}

template <class Alloc, class Replicator>
bool HYLBasVectorStruct<Alloc, Replicator>::sameBytes(void const* value) {
  return Algorithms<HYLBasVectorStruct>::sameBytes(*this, value);
}

template class HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator>;
template class HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>;
template class HYLBasVectorStructIterator<
    HYLBasVectorStruct<HYLBasVectorAllocator, HYLAspStructReplicator>>;
template class HYLBasVectorStructIterator<
    HYLBasVectorStruct<HYLBasVectorAllocator, HYLBasReplicatorGeneric>>;
