/// \file
/// How a process ends that calls `abort()`, for EXPECT_EXIT, and what it says before.
#pragma once

#include <csignal>
#include <string>

#include <gtest/gtest.h>

#if defined(_WIN32)
inline auto Aborted() { return testing::ExitedWithCode(3); }
inline std::string Only(std::string const& text) { return "^" + text + "$"; }
#else
inline auto Aborted() { return testing::KilledBySignal(SIGABRT); }
/// Nothing but `text` on the standard error stream, and the line that an emulator adds.
inline std::string Only(std::string const& text) {
  return "^" + text + "(qemu: uncaught target signal [^\n]*\n)?$";
}
#endif
