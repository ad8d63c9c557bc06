/// \file
/// For test programs that exhaust memory on purpose: with the source beside this header, the
/// address sanitizer answers such a request as the system does.
#pragma once

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
