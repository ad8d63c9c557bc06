/// \file
/// The allocation operators that the library exports.
///
/// Linking the library replaces the process's global `operator new` and `operator new[]` by forms
/// that return null on exhaustion instead of throwing, unless the library was built with
/// `HYLBAS_EXPORT_GLOBAL_NEW` off. The operators below are there in either case.
///
/// While memory is exhausted, every form that takes it from the runtime heap (the global ones and
/// the debug forms) calls the installed new handler and tries again, and returns null when there is
/// no handler. A handler that throws has reported failure: the plain global forms let its exception
/// out, because compilers take them never to return null; the `std::nothrow` forms, which are the
/// runtime's and call the plain ones, and the debug forms catch it and return null. The forms that
/// take memory from the memory library leave exhaustion to that: this repository's calls no handler
/// for them and throws `std::bad_alloc`.
#pragma once

#include <cstddef>
#include <new>

#include "detail/HYLBasExport.h"

/// Selects the array form that takes its memory from the memory library.
enum mem_BuiltInAlloc { e_builtInAlloc };

/// Selects the library's own placement form.
enum HYLBasPlacement { e_placement };

/// An array of a built-in type (`new (e_builtInAlloc) int[n]`) from the memory library:
/// `mem_OperatorNewThrowBuiltin(size)`; `size` is in bytes. A size that does not fit 32 bits asks
/// for 4294967295 bytes. Throws `std::bad_alloc` on exhaustion. Release the array with
/// `mem_deleteBuiltIn`.
HYLBASGENERICS_EXPORT void* operator new[](std::size_t size, mem_BuiltInAlloc);

/// Releases an array of the built-in form, or null: `mem_Free`.
HYLBASGENERICS_EXPORT void mem_deleteBuiltIn(int* array);
HYLBASGENERICS_EXPORT void mem_deleteBuiltIn(double* array);

/// Debug forms, with block type, file name and line, which are ignored: as the library's global
/// `operator new(size)`, null on exhaustion; never throw, so that a new-expression tests their
/// result: null too where a new handler throws. Release with the global `operator delete`. There is
/// no matching placement form of it: a block is lost when the constructor that follows throws.
HYLBASGENERICS_EXPORT void* operator new(std::size_t size, int blockType, char const* file,
                                         int line) noexcept;
HYLBASGENERICS_EXPORT void* operator new[](std::size_t size, int blockType, char const* file,
                                           int line) noexcept;

/// The library's placement form: returns `where` and allocates nothing.
HYLBASGENERICS_EXPORT_INLINE inline void* operator new(std::size_t /*size*/, void* where,
                                                       HYLBasPlacement) noexcept {
  return where;
}

/// The matching placement release: does nothing.
HYLBASGENERICS_EXPORT_INLINE inline void operator delete(void* /*block*/, void* /*where*/,
                                                         HYLBasPlacement) noexcept {}

/// Base of classes whose objects come from the memory library; empty.
class HYLBASGENERICS_EXPORT mem_AllocationOperators {
public:
  /// `mem_OperatorNewThrow(size)`; `size` is in bytes, and one that does not fit 32 bits asks
  /// for 4294967295. Throws `std::bad_alloc` on exhaustion.
  static void* operator new(std::size_t size);
  /// `mem_Free(p)`; null is ignored.
  static void operator delete(void* p);
};
