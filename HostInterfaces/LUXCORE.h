/// \file
/// The host's core system library, as far as this library calls it: the report of a failed
/// assertion. A host, or a test program, may define the function itself; its definition is then
/// the one that is called.
#pragma once

#if defined(_WIN32)
#if defined(LUXCORE_BUILD)
#define LUXCORE_EXPORT __declspec(dllexport)
#else
#define LUXCORE_EXPORT
#endif
#else
#define LUXCORE_EXPORT __attribute__((visibility("default")))
#endif

/// Reports a failed assertion to the user.
/// \param message "AssertionFailed:" followed directly by the text of the failed condition
/// \param reserved1,reserved2,reserved3 always null
/// \param path path of the source file that holds the check, relative to the component
/// \param line line number of the check in that file
///
/// The service of this repository prints message, path and line on the standard error stream and
/// ends the process with `abort()`; a host's own may return.
LUXCORE_EXPORT void QELFatalError(char const* message, char const* reserved1, char const* reserved2,
                                  char const* reserved3, char const* path, int line);
