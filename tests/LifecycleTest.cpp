// Start and stop through every entry point, in a process that the loader has already started the
// library in. Every test leaves the counts as it found them.
#include <gtest/gtest.h>

#include "HYLBasGenericsLib.h"
#include "HYLBasVectorTrackingAllocator.h"
#include "TARNHYLBasAlloc.h"

namespace {

using EntryPoint = void (*)(int&);

// The library, its generics module, its specific layer, and the memory library.
constexpr int allLayers = 4;

// Initialisations of the whole library that have no finalisation yet, found by undoing them all.
// Whatever is left in place by somebody else shows as a tally other than all layers'.
int LibraryCount() {
  int tally = 0, count = 0;
  while (tally == 0 && count != 10) {
    HYLBasGenericsLib_finalize(tally);
    ++count;
  }
  EXPECT_EQ(tally, -allLayers);
  for (int i = 0; i != count; ++i)
    HYLBasGenericsLib_initialize(tally);
  EXPECT_EQ(tally, 0);
  return count;
}

TEST(Lifecycle, LoadingInitializesOnce) { EXPECT_EQ(LibraryCount(), 1); }

TEST(Lifecycle, EveryPairOfEntryPointsBalancesAndLeavesTheTallyOfAStartedLibraryAlone) {
  struct {
    EntryPoint initialize, finalize;
    int libraryCount; // while initialised
  } const pairs[] = {
    {HYLBasGenericsLib_initialize, HYLBasGenericsLib_finalize, 2},
    {[](int&) { HYLBasGenericsLib_initializeC(); }, [](int&) { HYLBasGenericsLib_finalizeC(); }, 2},
#if !defined(_WIN32)
    {[](int&) { EXPECT_EQ(DllMain(nullptr, 1, nullptr), 1); },
     [](int&) { EXPECT_EQ(DllMain(nullptr, 0, nullptr), 1); }, 2},
    // Threads that come and go.
    {[](int&) { EXPECT_EQ(DllMain(nullptr, 2, nullptr), 1); },
     [](int&) { EXPECT_EQ(DllMain(nullptr, 3, nullptr), 1); }, 1},
#endif
  };
  for (auto const& pair : pairs) {
    int tally = 0;
    pair.initialize(tally);
    EXPECT_EQ(tally, 0);
    EXPECT_EQ(LibraryCount(), pair.libraryCount);
    pair.finalize(tally);
    EXPECT_EQ(tally, 0);
    EXPECT_EQ(LibraryCount(), 1);
  }
}

TEST(Lifecycle, SingleLayersCountApartFromTheLibrary) {
  EntryPoint const pairs[][2] = {
      {HYLBasGenericsLib_specific_initialize, HYLBasGenericsLib_specific_finalize},
      {HYLBasGenerics_initialize, HYLBasGenerics_finalize},
      {HYLBasAlloc_initialize, HYLBasAlloc_finalize}};
  for (auto const& [initialize, finalize] : pairs) {
    int tally = 0;
    initialize(tally);
    finalize(tally);
    EXPECT_EQ(tally, 0) << "the started library holds the layer";

    int libraryTally = 0;
    HYLBasGenericsLib_finalize(libraryTally);
    initialize(tally);
    initialize(tally);
    EXPECT_EQ(tally, 1);

    // The library starts and stops the other layers only.
    HYLBasGenericsLib_initialize(libraryTally);
    EXPECT_EQ(libraryTally, -1);
    HYLBasGenericsLib_finalize(libraryTally);
    EXPECT_EQ(libraryTally, -allLayers);

    finalize(tally);
    EXPECT_EQ(tally, 1);
    finalize(tally);
    EXPECT_EQ(tally, 0);
    HYLBasGenericsLib_initialize(libraryTally);
    EXPECT_EQ(libraryTally, 0);
  }
}

TEST(Lifecycle, GenericsModulePreparesTheVectorTrackingAllocator) {
  int tally = 0;
  HYLBasGenericsLib_finalize(tally);
  EXPECT_NE(HYLBasVectorTrackingAllocator::m_pool, nullptr) << "stays usable";
  HYLBasVectorTrackingAllocator::m_pool = nullptr;
  HYLBasGenericsLib_initialize(tally);
  EXPECT_EQ(HYLBasVectorTrackingAllocator::m_pool, &omi_Singleton<HYLBasMemPoolVector>::Instance());
}

} // namespace
