#include "HYLBasNodeTrackingAllocator.h"

#include "TARNHYLBasAlloc.h"

constinit HYLBasMemPoolMap* HYLBasNodeTrackingAllocator::m_pool = nullptr;

HYLBasNodeTrackingAllocator::HYLBasNodeTrackingAllocator() {
  m_pool = &omi_Singleton<HYLBasMemPoolMap>::Instance();
  m_pool->Activate();
}

void* HYLBasNodeTrackingAllocator::allocate(int bytes) {
  return m_pool->Alloc(static_cast<unsigned int>(bytes));
}

void HYLBasNodeTrackingAllocator::deallocate(void* p, unsigned int /*bytes*/) { m_pool->Free(p); }
