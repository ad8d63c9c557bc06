#include "HYLBasAllocationOperators.h"

#include <cstdlib>

#if defined(_WIN32)
#include <new.h>
// The C runtime's, which not every header of that name declares.
extern "C" int __cdecl _callnewh(std::size_t size);
#endif

#include "TARNHYLBasAlloc.h"

namespace {

// Gives the installed new handler a chance to find memory; false when there is none or it failed.
// On Windows there are two of them, C++'s and the C runtime's.
bool CallNewHandler([[maybe_unused]] std::size_t size) {
  if (std::new_handler const handler = std::get_new_handler()) {
    handler();
    return true;
  }
#if defined(_WIN32)
  return _callnewh(size) != 0;
#else
  return false;
#endif
}

// The C++ runtime's `operator delete` releases such a block: it calls `free`.
void* AllocateOrNull(std::size_t size) {
  for (;;) {
    if (void* const block = std::malloc(size)) return block;
    if (!CallNewHandler(size)) return nullptr;
  }
}

// For the forms that never throw: a handler's way to report failure is this exception.
void* AllocateOrNullNothrow(std::size_t size) noexcept {
  try {
    return AllocateOrNull(size);
  } catch (...) {
    return nullptr;
  }
}

// The memory library never satisfies the saturated size, so that a block is never shorter than what
// was asked.
unsigned int In32Bits(std::size_t size) {
  return size < 4294967295u ? static_cast<unsigned int>(size) : 4294967295u;
}

} // namespace

#if defined(HYLBAS_EXPORT_GLOBAL_NEW)
// The compiler takes it for granted that these two never return null: it must not see where the
// null comes from, and a sanitized build must not stop at it.
#define HYLBAS_MAY_RETURN_NULL __attribute__((no_sanitize("undefined")))

HYLBASGENERICS_EXPORT HYLBAS_MAY_RETURN_NULL void* operator new(std::size_t size) {
  void* volatile const block = AllocateOrNull(size);
  return block;
}

HYLBASGENERICS_EXPORT HYLBAS_MAY_RETURN_NULL void* operator new[](std::size_t size) {
  void* volatile const block = AllocateOrNull(size);
  return block;
}
#endif

void* operator new(std::size_t size, int /*blockType*/, char const* /*file*/,
                   int /*line*/) noexcept {
  return AllocateOrNullNothrow(size);
}

void* operator new[](std::size_t size, int /*blockType*/, char const* /*file*/,
                     int /*line*/) noexcept {
  return AllocateOrNullNothrow(size);
}

void* operator new[](std::size_t size, mem_BuiltInAlloc) {
  return mem_OperatorNewThrowBuiltin(In32Bits(size));
}

void mem_deleteBuiltIn(int* array) { mem_Free(array); }

void mem_deleteBuiltIn(double* array) { mem_Free(array); }

void* mem_AllocationOperators::operator new(std::size_t size) {
  return mem_OperatorNewThrow(In32Bits(size));
}

void mem_AllocationOperators::operator delete(void* p) { mem_Free(p); }
