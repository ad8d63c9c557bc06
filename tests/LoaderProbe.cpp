// Loads the library at run time, as a plug-in host does, and shows that loading starts it once and
// unloading stops it once. Arguments: the memory library's file, the library's file.
#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

namespace {

int failures = 0;

void Expect(char const* what, int found, int expected) {
  if (found == expected) return;
  std::fprintf(stderr, "%s: %d instead of %d\n", what, found, expected);
  ++failures;
}

void* Load(char const* file) {
  void* const library = dlopen(file, RTLD_NOW | RTLD_LOCAL);
  if (library != nullptr) return library;
  std::fprintf(stderr, "%s\n", dlerror());
  std::exit(2);
}

template <class Function>
Function* Find(void* library, char const* name) {
  if (void* const symbol = dlsym(library, name)) return reinterpret_cast<Function*>(symbol);
  std::fprintf(stderr, "%s\n", dlerror());
  std::exit(2);
}

using EntryPoint = void(int&);

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
  auto* const initialize = Find<EntryPoint>(library, "_Z28HYLBasGenericsLib_initializeRi");
  auto* const finalize = Find<EntryPoint>(library, "_Z26HYLBasGenericsLib_finalizeRi");
  Expect("memory library while loaded", StartAndStop(allocInitialize, allocFinalize), 0);
  Expect("loaded library", StartAndStop(initialize, finalize), 0);

  int tally = 0;
  finalize(tally);
  Expect("undoing the one start by load", tally, -4);
  Expect("memory library after that", StartAndStop(allocInitialize, allocFinalize), 1);
  initialize(tally);
  Expect("and doing it again", tally, 0);

  Expect("unload", dlclose(library), 0);
  Expect("left in memory", dlopen(libraryFile, RTLD_NOW | RTLD_NOLOAD) != nullptr, 0);
  Expect("memory library after unload", StartAndStop(allocInitialize, allocFinalize), 1);
}

} // namespace

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  // Held all the time, so that its count outlives the library.
  void* const alloc = Load(argv[1]);
  auto* const initialize = Find<EntryPoint>(alloc, "_Z22HYLBasAlloc_initializeRi");
  auto* const finalize = Find<EntryPoint>(alloc, "_Z20HYLBasAlloc_finalizeRi");
  for (int round = 0; round != 3; ++round)
    ExpectLoadStartsOnceAndUnloadStopsOnce(argv[2], initialize, finalize);
  return failures == 0 ? 0 : 1;
}
