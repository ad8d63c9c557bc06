// For test programs that exhaust memory on purpose: the address sanitizer then answers such a
// request as the system does. Without the sanitizer nothing calls this function.
#pragma once

extern "C" __attribute__((visibility("default"), used)) inline char const*
__asan_default_options() {
  return "allocator_may_return_null=1";
}

#if defined(__SANITIZE_ADDRESS__)
#define HYLBAS_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define HYLBAS_ADDRESS_SANITIZER 1
#endif
#endif
#if !defined(HYLBAS_ADDRESS_SANITIZER)
#define HYLBAS_ADDRESS_SANITIZER 0
#endif
