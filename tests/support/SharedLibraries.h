/// \file
/// Shared libraries at run time, alike on every platform: null for what is not there.
#pragma once

#if defined(_WIN32)

#define WIN32_LEAN_AND_MEAN
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <cstring>
#include <windows.h>

inline void* LoadSharedLibrary(char const* file) { return LoadLibraryA(file); }
inline bool UnloadSharedLibrary(void* library) { return FreeLibrary(HMODULE(library)) != 0; }
/// The library of that file where it is loaded already.
inline void* LoadedLibrary(char const* file) {
  char const* const slash = std::strrchr(file, '/');
  return GetModuleHandleA(slash == nullptr ? file : slash + 1);
}
inline void* SymbolOf(void* library, char const* name) {
  return reinterpret_cast<void*>(GetProcAddress(HMODULE(library), name));
}

#else

#include <dlfcn.h>

inline void* LoadSharedLibrary(char const* file) { return dlopen(file, RTLD_NOW | RTLD_LOCAL); }
inline bool UnloadSharedLibrary(void* library) { return dlclose(library) == 0; }
inline void* LoadedLibrary(char const* file) { return dlopen(file, RTLD_NOW | RTLD_NOLOAD); }
inline void* SymbolOf(void* library, char const* name) { return dlsym(library, name); }

#endif
