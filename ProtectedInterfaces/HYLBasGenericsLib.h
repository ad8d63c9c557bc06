/// \file
/// Start and stop of the library.
///
/// Loading the library initialises it once and unloading it finalises it once, so most hosts need
/// nothing from here. A host that wants to hold the library, or its memory library, beyond that may
/// initialise it again; every initialisation needs its finalisation. Calls are counted, per layer:
/// the library as a whole, its generics module, and the library-specific layer.
///
/// Unloading is what happens when the process ends, or at the last `dlclose`. There is one
/// exception to the latter: where the library was what brought the C++ runtime into the process, as
/// in a host written in C, the runtime calls the library's global `operator new`, and the system's
/// loader keeps the library, initialised, until the process ends. Built without
/// `HYLBAS_EXPORT_GLOBAL_NEW` it always goes.
///
/// The `tally` of every entry point belongs to the caller: it rises by 1 for each layer that the
/// call really starts (its count leaves 0) and falls by 1 for each layer that it really stops (its
/// count is back at 0). The memory library counts its own start and stop on it too. A call that
/// finds the layer in use, or leaves it in use, does not touch it.
///
/// Neither the counts nor the tallies are guarded: start and stop from one thread at a time.
/// Constant time. An initialisation lets out what `HYLBasAlloc_initialize` and
/// `HYLBasVectorTrackingAllocator::Initialize` throw. Layers that had begun then count as started,
/// on the tally too, and those behind them do not: the finalisation that belongs to the failed call
/// would stop more than was started, and must be left out.
#pragma once

#include "detail/HYLBasExport.h"

/// \name Whole library
/// @{

/// On the first call: starts the memory library, then the generics module, then the
/// library-specific layer.
HYLBASGENERICS_EXPORT void HYLBasGenericsLib_initialize(int& tally);
/// On the last call: stops the same layers in the reverse order.
HYLBASGENERICS_EXPORT void HYLBasGenericsLib_finalize(int& tally);

/// The same for callers that cannot pass a reference, on a tally of the library's own.
extern "C" HYLBASGENERICS_EXPORT void HYLBasGenericsLib_initializeC();
extern "C" HYLBASGENERICS_EXPORT void HYLBasGenericsLib_finalizeC();
/// @}

/// \name Single layers
/// @{

/// The library-specific layer: has nothing to prepare but its count.
HYLBASGENERICS_EXPORT void HYLBasGenericsLib_specific_initialize(int& tally);
HYLBASGENERICS_EXPORT void HYLBasGenericsLib_specific_finalize(int& tally);

/// The generics module: on the first call prepares and verifies the vector tracking allocator.
HYLBASGENERICS_EXPORT void HYLBasGenerics_initialize(int& tally);
HYLBASGENERICS_EXPORT void HYLBasGenerics_finalize(int& tally);
/// @}

// Windows declares its loader notification itself, and each library there defines its own.
#if !defined(_WIN32)
/// The loader's notification, for hosts that load libraries by other means than the system's
/// loader: on `reason` 1 (process attach) initialises the library, on 0 (process detach) finalises
/// it, on any other value does nothing. Returns 1. The system's loader needs no such call.
extern "C" HYLBASGENERICS_EXPORT int DllMain(void* module, unsigned int reason, void* reserved);
#endif
