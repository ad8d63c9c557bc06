#include "HYLBasGenericsLib.h"

#include "HYLBasVectorTrackingAllocator.h"
#include "TARNHYLBasAlloc.h"

namespace {

// Initialisations minus finalisations of each layer. Constants to start with, because the loader's
// notification may come before any constructor has run.
constinit int libraryCount = 0;
constinit int specificCount = 0;
constinit int genericsCount = 0;

// Tallies of the callers that have none of their own.
constinit int loaderTally = 0;
constinit int unmangledTally = 0;

// Whether the call starts the layer; counts it in.
bool Starts(int& count, int& tally) {
  if (count++ != 0) return false;
  ++tally;
  return true;
}

// Whether the call stops the layer; counts it out.
bool Stops(int& count, int& tally) {
  if (--count != 0) return false;
  --tally;
  return true;
}

enum : unsigned int { e_processDetach = 0, e_processAttach = 1 };

// Returns what the loader takes for success.
int NotifyOfLoader(unsigned int reason) {
  if (reason == e_processAttach) HYLBasGenericsLib_initialize(loaderTally);
  if (reason == e_processDetach) HYLBasGenericsLib_finalize(loaderTally);
  return 1;
}

} // namespace

void HYLBasGenericsLib_initialize(int& tally) {
  if (!Starts(libraryCount, tally)) return;
  HYLBasAlloc_initialize(tally);
  HYLBasGenerics_initialize(tally);
  HYLBasGenericsLib_specific_initialize(tally);
}

void HYLBasGenericsLib_finalize(int& tally) {
  if (!Stops(libraryCount, tally)) return;
  HYLBasGenericsLib_specific_finalize(tally);
  HYLBasGenerics_finalize(tally);
  HYLBasAlloc_finalize(tally);
}

void HYLBasGenericsLib_specific_initialize(int& tally) { Starts(specificCount, tally); }

void HYLBasGenericsLib_specific_finalize(int& tally) { Stops(specificCount, tally); }

void HYLBasGenerics_initialize(int& tally) {
  if (!Starts(genericsCount, tally)) return;
  HYLBasVectorTrackingAllocator::Initialize();
  HYLBasVectorTrackingAllocator::Verify();
}

void HYLBasGenerics_finalize(int& tally) {
  if (Stops(genericsCount, tally)) HYLBasVectorTrackingAllocator::Finalize();
}

void HYLBasGenericsLib_initializeC() { HYLBasGenericsLib_initialize(unmangledTally); }

void HYLBasGenericsLib_finalizeC() { HYLBasGenericsLib_finalize(unmangledTally); }

#if defined(_WIN32)

// Marked, since linkers that export everything else by themselves leave this name out.
extern "C" __declspec(dllexport) int __stdcall DllMain(void* /*module*/, unsigned long reason,
                                                       void* /*reserved*/) {
  return NotifyOfLoader(reason);
}

#else

int DllMain(void* /*module*/, unsigned int reason, void* /*reserved*/) {
  return NotifyOfLoader(reason);
}

namespace {

// These do not go through DllMain: another library of the process may export one as well.
[[gnu::constructor]] void OnLoad() { NotifyOfLoader(e_processAttach); }

[[gnu::destructor]] void OnUnload() { NotifyOfLoader(e_processDetach); }

} // namespace

#endif
