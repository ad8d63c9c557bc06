/// \file
/// The export macro of the library: everything that carries it is in the export table, everything
/// else is compiled with hidden visibility and stays inside.
#pragma once

// Included by every public header, so that this is the first thing to fail.
#if (defined(_MSVC_LANG) ? _MSVC_LANG : __cplusplus) <= 201703L
#error "TARNHYLBasGenericsLib needs C++20: compile with -std=c++20 or later"
#endif

#if defined(_WIN32)
#if defined(HYLBASGENERICS_BUILD)
#define HYLBASGENERICS_EXPORT __declspec(dllexport)
#else
#define HYLBASGENERICS_EXPORT __declspec(dllimport)
#endif
#define HYLBASGENERICS_LOCAL
#else
#define HYLBASGENERICS_EXPORT __attribute__((visibility("default")))
/// Keeps a private inline helper of an exported class out of the export table.
#define HYLBASGENERICS_LOCAL __attribute__((visibility("hidden")))
#endif

/// For inline functions that are part of the interface: consumers may inline them, and the library
/// itself always holds and exports a copy.
#if defined(HYLBASGENERICS_BUILD)
#define HYLBASGENERICS_EXPORT_INLINE HYLBASGENERICS_EXPORT __attribute__((used))
#else
#define HYLBASGENERICS_EXPORT_INLINE HYLBASGENERICS_EXPORT
#endif
