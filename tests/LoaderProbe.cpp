// Loads the library at run time, as a plug-in host does, and shows that loading starts it once and
// unloading stops it once. Arguments: the memory library's file, the library's file; or the latter
// alone, as in a host that has no C++ runtime of its own. So this program calls nothing of the
// runtime, and is linked without it.
#include <cstdio>
#include <cstdlib>
#include <cstring>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

// Shared libraries, null for what is not there.
#if defined(_WIN32)
void* Load(char const* file) { return LoadLibraryA(file); }
void* Loaded(char const* file) { return GetModuleHandleA(std::strrchr(file, '/') + 1); }
bool Unload(void* library) { return FreeLibrary(HMODULE(library)) != 0; }
void* SymbolOf(void* library, char const* name) {
  return reinterpret_cast<void*>(GetProcAddress(HMODULE(library), name));
}
bool BringsTheRuntime() { return false; } // there the runtime calls its own operator new
#else
void* Load(char const* file) { return dlopen(file, RTLD_NOW | RTLD_LOCAL); }
void* Loaded(char const* file) { return dlopen(file, RTLD_NOW | RTLD_NOLOAD); }
bool Unload(void* library) { return dlclose(library) == 0; }
void* SymbolOf(void* library, char const* name) { return dlsym(library, name); }
bool BringsTheRuntime() { return !dlsym(RTLD_DEFAULT, sizeof(void*) == 8 ? "_Znwm" : "_Znwj"); }
#endif

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
  char const* const file = argv[argc - 1];
  // Held all the time, so that its count outlives the library.
  void* const memory = argc == 2 ? nullptr : Load(argv[1]);
  if (argc != 2 && memory == nullptr) return 2;
  // The runtime that the library brings along calls the library's operator new, and so keeps it.
  bool const stays = memory == nullptr && HYLBAS_EXPORT_GLOBAL_NEW && BringsTheRuntime();
  for (int round = 0; round != 3; ++round) {
    void* const library = Load(file);
    ExpectToStart(memory, startMemory, stopMemory, 0);
    ExpectToStart(library, start, stop, 0);
    int tally = 0;
    Call(library, stop, tally);
    Expect("tally of the stop after loading", tally, -4);
    ExpectToStart(memory, startMemory, stopMemory, 1);
    Call(library, start, tally);
    Expect("tally of the start after that", tally, 0);
    Expect("unloading", Unload(library), true);
    void* const left = Loaded(file);
    Expect("left in memory", left != nullptr, stays);
    ExpectToStart(left, start, stop, 0);
    if (stays) Unload(left);
    ExpectToStart(memory, startMemory, stopMemory, 1);
  }
#if HYLBAS_MEMORY_STAYS
  if (memory != nullptr) {
    Unload(memory);
    Expect("memory library left in memory", Loaded(argv[1]) != nullptr, true);
  }
#endif
  return failures == 0 ? 0 : 1;
}
