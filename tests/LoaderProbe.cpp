// Loads the library at run time, as a plug-in host does, and shows that loading starts it once and
// unloading stops it once. Arguments: the memory library's file, the library's file; or the latter
// alone, as in a host that has no C++ runtime of its own. So this program calls nothing of the
// runtime, and is linked without it.
#include <cstdio>
#include <cstdlib>

#include "support/SharedLibraries.h"

namespace {

int failures = 0;

void Expect(char const* what, int found, int expected) {
  if (found == expected) return;
  std::fprintf(stderr, "%s: %d instead of %d\n", what, found, expected);
  ++failures;
}

void Call(void* library, char const* name, int& tally) {
  void* const entryPoint = SymbolOf(library, name);
  if (entryPoint == nullptr) std::exit(2);
  reinterpret_cast<void (*)(int&)>(entryPoint)(tally);
}

constexpr char const *start = "_Z28HYLBasGenericsLib_initializeRi",
                     *stop = "_Z26HYLBasGenericsLib_finalizeRi",
                     *startMemory = "_Z22HYLBasAlloc_initializeRi",
                     *stopMemory = "_Z20HYLBasAlloc_finalizeRi";

// A start adds 1 to its tally for each layer that nobody holds, and the stop takes it away.
void ExpectToStart(void* library, char const* first, char const* last, int layers) {
  int tally = 0;
  if (library == nullptr) return;
  Call(library, first, tally);
  Expect(first, tally, layers);
  Call(library, last, tally);
  Expect(last, tally, 0);
}

} // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  char const* const file = argv[argc - 1];
  // Held all the time, so that its count outlives the library.
  void* const memory = argc == 2 ? nullptr : LoadSharedLibrary(argv[1]);
  bool stays = false;
#if !defined(_WIN32)
  // The runtime that the library brings along calls the library's operator new, and so keeps it.
  char const* const operatorNew = sizeof(void*) == 8 ? "_Znwm" : "_Znwj";
  stays = memory == nullptr && HYLBAS_EXPORT_GLOBAL_NEW && !SymbolOf(RTLD_DEFAULT, operatorNew);
#endif
  for (int round = 0; round != 3; ++round) {
    void* const library = LoadSharedLibrary(file);
    ExpectToStart(memory, startMemory, stopMemory, 0);
    ExpectToStart(library, start, stop, 0);
    int tally = 0;
    Call(library, stop, tally);
    Expect("tally of the stop after loading", tally, -4);
    ExpectToStart(memory, startMemory, stopMemory, 1);
    Call(library, start, tally);
    Expect("unloading", UnloadSharedLibrary(library), true);
    void* const left = LoadedLibrary(file);
    Expect("left in memory", left != nullptr, stays);
    ExpectToStart(left, start, stop, 0);
    if (left != nullptr) UnloadSharedLibrary(left);
    ExpectToStart(memory, startMemory, stopMemory, 1);
  }
  return failures == 0 ? 0 : 1;
}
