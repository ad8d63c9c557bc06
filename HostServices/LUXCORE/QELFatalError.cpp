#include "LUXCORE.h"

#include <cstdio>
#include <cstdlib>

void QELFatalError(char const* message, char const* /*reserved1*/, char const* /*reserved2*/,
                   char const* /*reserved3*/, char const* path, int line) {
  std::fprintf(stderr, "%s\n  at %s:%d\n", message, path, line);
  std::fflush(stderr);
  std::abort();
}
