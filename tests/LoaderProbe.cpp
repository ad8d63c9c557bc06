// Loads the library at run time, as a plug-in host does, and shows that loading starts it once and
// unloading stops it once. Arguments: the memory library's file, the library's file. With the
// library's file alone, shows what unloading does in a host that has no C++ runtime of its own. So
// this program calls nothing of the runtime, and is linked without it.
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

using EntryPoint = void(int&);

void* Required(char const* name, void* found) {
  if (found != nullptr) return found;
  std::fprintf(stderr, "there is no %s\n", name);
  std::exit(2);
}

void* Load(char const* file) { return Required(file, LoadSharedLibrary(file)); }

EntryPoint* Find(void* library, char const* name) {
  return reinterpret_cast<EntryPoint*>(Required(name, SymbolOf(library, name)));
}

// What a start adds to a tally, and the stop after it takes away: 1 for a layer that nobody holds.
int StartAndStop(EntryPoint* initialize, EntryPoint* finalize) {
  int tally = 0;
  initialize(tally);
  int const started = tally;
  finalize(tally);
  Expect("tally of a start and a stop", tally, 0);
  return started;
}

void ExpectLoadStartsOnceAndUnloadStopsOnce(char const* libraryFile, EntryPoint* allocInitialize,
                                            EntryPoint* allocFinalize) {
  Expect("memory library before load", StartAndStop(allocInitialize, allocFinalize), 1);

  void* const library = Load(libraryFile);
  auto* const initialize = Find(library, "_Z28HYLBasGenericsLib_initializeRi");
  auto* const finalize = Find(library, "_Z26HYLBasGenericsLib_finalizeRi");
  Expect("memory library while loaded", StartAndStop(allocInitialize, allocFinalize), 0);
  Expect("loaded library", StartAndStop(initialize, finalize), 0);

  int tally = 0;
  finalize(tally);
  Expect("undoing the one start by load", tally, -4);
  Expect("memory library after that", StartAndStop(allocInitialize, allocFinalize), 1);
  initialize(tally);
  Expect("and doing it again", tally, 0);

  Expect("unload", UnloadSharedLibrary(library), true);
  Expect("left in memory", LoadedLibrary(libraryFile) != nullptr, false);
  Expect("memory library after unload", StartAndStop(allocInitialize, allocFinalize), 1);
}

// The runtime that the library brings along calls the library's operator new, and so keeps it.
void ExpectLoadToStayWhereItBringsTheRuntime(char const* libraryFile) {
#if defined(_WIN32)
  bool const stays = false; // there the runtime calls its own
#else
  char const* const operatorNew = sizeof(void*) == 8 ? "_Znwm" : "_Znwj";
  bool const stays = HYLBAS_EXPORT_GLOBAL_NEW && dlsym(RTLD_DEFAULT, operatorNew) == nullptr;
#endif
  for (int round = 0; round != 2; ++round) {
    void* const library = Load(libraryFile);
    auto* const initialize = Find(library, "_Z28HYLBasGenericsLib_initializeRi");
    auto* const finalize = Find(library, "_Z26HYLBasGenericsLib_finalizeRi");
    Expect("loaded library", StartAndStop(initialize, finalize), 0);
    Expect("unload", UnloadSharedLibrary(library), true);
    void* const left = LoadedLibrary(libraryFile);
    Expect("left in memory", left != nullptr, stays);
    if (left == nullptr) continue;
    Expect("library that stays", StartAndStop(initialize, finalize), 0);
    UnloadSharedLibrary(left);
  }
}

} // namespace

int main(int argc, char** argv) {
  if (argc == 2) {
    ExpectLoadToStayWhereItBringsTheRuntime(argv[1]);
    return failures == 0 ? 0 : 1;
  }
  if (argc != 3) return 2;
  // Held all the time, so that its count outlives the library.
  void* const alloc = Load(argv[1]);
  auto* const initialize = Find(alloc, "_Z22HYLBasAlloc_initializeRi");
  auto* const finalize = Find(alloc, "_Z20HYLBasAlloc_finalizeRi");
  for (int round = 0; round != 3; ++round)
    ExpectLoadStartsOnceAndUnloadStopsOnce(argv[2], initialize, finalize);
  return failures == 0 ? 0 : 1;
}
