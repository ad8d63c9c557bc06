#include "HostError.h"

void QELFatalError(char const* message, char const*, char const*, char const*, char const* path,
                   int line) {
  throw host::FailedAssertion(message, path, line);
}
