/// \file
/// Shared libraries at run time, alike on every platform.
#pragma once

#include <cstring>

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

inline void* LoadSharedLibrary(char const* file) { return LoadLibraryA(file); }
inline bool UnloadSharedLibrary(void* library) {
  return FreeLibrary(static_cast<HMODULE>(library)) != 0;
}
/// The library of that file where it is loaded already, or null.
inline void* LoadedLibrary(char const* file) {
  char const* const slash = std::strrchr(file, '/');
  return GetModuleHandleA(slash == nullptr ? file : slash + 1);
}
/// What the library exports under that name, or null.
inline void* SymbolOf(void* library, char const* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

#else

#include <dlfcn.h>
#include <link.h>

inline void* LoadSharedLibrary(char const* file) { return dlopen(file, RTLD_NOW | RTLD_LOCAL); }
inline bool UnloadSharedLibrary(void* library) { return dlclose(library) == 0; }
inline void* LoadedLibrary(char const* file) { return dlopen(file, RTLD_NOW | RTLD_NOLOAD); }
inline void* SymbolOf(void* library, char const* name) {
  void* const symbol = dlsym(library, name); // found in the libraries that it needs, too
  link_map* wanted = nullptr;
  Dl_info found;
  if (symbol == nullptr || dlinfo(library, RTLD_DI_LINKMAP, &wanted) != 0 ||
      dladdr(symbol, &found) == 0 || std::strcmp(found.dli_fname, wanted->l_name) != 0)
    return nullptr;
  return symbol;
}

#endif
