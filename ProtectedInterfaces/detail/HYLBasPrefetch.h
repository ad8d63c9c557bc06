/// \file
/// A hint to the processor.
#pragma once

namespace hylbas_detail {

/// Asks for the memory at `address`, which may be null or not the process's own, to be brought
/// nearer; nothing where the compiler has no means to say so.
inline void Prefetch([[maybe_unused]] void const* address) {
#if defined(__GNUC__)
  __builtin_prefetch(address);
#endif
}

} // namespace hylbas_detail
