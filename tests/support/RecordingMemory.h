/// \file
/// The memory library's general heap, replaced for the whole test program: every request and
/// release is recorded, blocks stand between guard bytes, and a chosen request can be made to fail.
/// Of a block of more than 1 MiB only the beginning is there.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <vector>

namespace recording {

/// Where an address lies: a byte offset in a numbered block (the first request since `Reset` gets
/// number 1), in the test's own memory (block 0), or nowhere (null, block -1).
struct Place {
  int block;
  std::int64_t offset;
  bool operator==(Place const&) const = default;
};

/// One call that a container made: 'A'llocate (n bytes), 'F'ree (also of null), 'C'opy (n elements
/// from a to b), 'D'estroy (n elements from a).
struct Event {
  char kind;
  Place a, b;
  std::size_t n;
  bool operator==(Event const&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, Event const& event) {
  auto const& [kind, a, b, n] = event;
  return out << kind << ' ' << a.block << '+' << a.offset << ' ' << b.block << '+' << b.offset
             << ' ' << n;
}

/// The calls since `Reset`.
std::vector<Event>& Events();
/// Forgets all calls and numbers blocks from 1 again; `own` is the test's own memory. No block may
/// be live.
void Reset(void const* own, std::size_t ownBytes);
Place Locate(void const* address);
std::size_t LiveBlocks();

/// Called with every block that is about to be released; empty for nothing.
std::function<void(void const*)>& AtRelease();

/// The `k`-th request from now on (1 is the next) throws `std::bad_alloc`, once; 0 for none.
void FailRequest(unsigned int k);
/// Whether the failure asked for is still to come.
bool FailurePending();

} // namespace recording
