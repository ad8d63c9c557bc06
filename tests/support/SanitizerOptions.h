/// \file
/// For the one source of a test program that exhausts memory on purpose: the address sanitizer
/// answers such a request as the system does.
#pragma once

#if defined(__SANITIZE_ADDRESS__)
#define HYLBAS_ADDRESS_SANITIZER 1
#elif defined(__has_feature)
#define HYLBAS_ADDRESS_SANITIZER __has_feature(address_sanitizer)
#else
#define HYLBAS_ADDRESS_SANITIZER 0
#endif

// Called by the address sanitizer when the program starts; without it, by nobody.
extern "C" __attribute__((visibility("default"))) char const* __asan_default_options();
char const* __asan_default_options() { return "allocator_may_return_null=1"; }
