/// \file
/// The export macros of the library: what carries one is in the export table, everything else stays
/// inside.
#pragma once

// Included by every public header, so that this is the first thing to fail.
#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) <= 201703L
#error "TARNHYLBasGenericsLib needs C++20: compile with -std=c++20 or later"
#endif

#if defined(_WIN32)
// Users mark what they take the address of, and nothing else: calls need no mark, and inline
// members and templates, whose definitions they see, must not have one. The library marks what it
// exports for compilers that link like Microsoft's; elsewhere exports.map says it to the linker.
#if !defined(HYLBASGENERICS_BUILD)
#define HYLBASGENERICS_EXPORT
#define HYLBASGENERICS_EXPORT_ADDRESS __declspec(dllimport)
#elif defined(_MSC_VER)
#define HYLBASGENERICS_EXPORT __declspec(dllexport)
#define HYLBASGENERICS_EXPORT_ADDRESS HYLBASGENERICS_EXPORT
#else
#define HYLBASGENERICS_EXPORT
#define HYLBASGENERICS_EXPORT_ADDRESS
#endif
#define HYLBASGENERICS_LOCAL
#else
#define HYLBASGENERICS_EXPORT __attribute__((visibility("default")))
/// For static data, and for policy functions, which the library recognises by their addresses.
#define HYLBASGENERICS_EXPORT_ADDRESS HYLBASGENERICS_EXPORT
/// Keeps a private inline helper of an exported class out of the export table.
#define HYLBASGENERICS_LOCAL __attribute__((visibility("hidden")))
#endif

/// For inline functions that are part of the interface: consumers may inline them, and the library
/// itself always holds and exports a copy. (Compilers that link like Microsoft's refuse a mark on
/// the members of a marked class.)
#if defined(_MSC_VER)
#define HYLBASGENERICS_EXPORT_INLINE
#elif defined(HYLBASGENERICS_BUILD)
#define HYLBASGENERICS_EXPORT_INLINE HYLBASGENERICS_EXPORT __attribute__((used))
#else
#define HYLBASGENERICS_EXPORT_INLINE HYLBASGENERICS_EXPORT
#endif
