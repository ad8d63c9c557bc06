#include "SanitizerOptions.h"

// Called by the address sanitizer when the program starts; without it, by nobody.
extern "C" __attribute__((visibility("default"))) char const* __asan_default_options();
char const* __asan_default_options() { return "allocator_may_return_null=1"; }
