#include "HYLBasVectorTrackingAllocator.h"

#include <cstdio>

#include "TARNHYLBasAlloc.h"

namespace {

[[noreturn]] void Fail(char const* text) {
  std::fprintf(stderr, "*** Error: %s.\n", text);
  throw text;
}

} // namespace

constinit HYLBasMemPoolVector* HYLBasVectorTrackingAllocator::m_pool = nullptr;

// A host's memory library may answer with no object at all. The compiler takes every reference for
// an object: it would drop the test if it saw where the address comes from, and in a sanitized
// build it would stop before the test.
__attribute__((no_sanitize("undefined"))) void HYLBasVectorTrackingAllocator::Initialize() {
  HYLBasMemPoolVector* volatile const pool = &omi_Singleton<HYLBasMemPoolVector>::Instance();
  m_pool = pool;
  if (m_pool == nullptr) Fail("Initialization of HYLBasVectorTrackingAllocator failed");
  m_pool->Activate();
}

void HYLBasVectorTrackingAllocator::Verify() {
  if (m_pool == nullptr) Fail("HYLBasVectorTrackingAllocator is used before it is initialized");
}

void HYLBasVectorTrackingAllocator::Finalize() {}

void* HYLBasVectorTrackingAllocator::allocate(unsigned int bytes) const {
  return m_pool->Alloc(bytes);
}

void HYLBasVectorTrackingAllocator::deallocate(void* p) const { m_pool->Free(p); }

void HYLBasVectorTrackingAllocator::deallocate(void* p, unsigned int /*bytes*/) const {
  m_pool->Free(p);
}

unsigned int HYLBasVectorTrackingAllocator::MemoryCurrent() const {
  return m_pool->MemoryCurrent();
}

unsigned int HYLBasVectorTrackingAllocator::MemoryPeak() const { return m_pool->MemoryPeak(); }

int HYLBasVectorTrackingAllocator::PoolID() const { return m_pool->PoolID(); }

char* HYLBasVectorTrackingAllocator::PoolName() const { return m_pool->PoolName(); }
