/// \file
/// The memory functions that a vector reader calls, in a form that tests can watch: a program that
/// links WatchedMemory.cpp has them called in place of the host library's. Gigantic requests cost
/// nothing here; take RecordingMemory.h where the order of the calls matters.
#pragma once

namespace watched_memory {

/// Blocks handed out and not yet released.
extern int liveBlocks;

/// The last block of `mem_Malloc_Handled`, and the bytes asked for; reset them as needed.
extern void* lastBlock;
extern unsigned int lastRequest;

/// How many more requests are served before the next one throws `std::bad_alloc`; negative: all.
extern int requestsServed;

/// Larger requests get a block of this many bytes, so that a gigantic one costs nothing. A test
/// that stores more than this in one vector must raise it.
extern unsigned int largestBlock;

} // namespace watched_memory
