// The exported allocation operators. They are called by the addresses that the library itself
// exports: the compiler may not assume anything about them then, and a sanitizer's own replacement
// of the global operators does not stand in for them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "HYLBasAllocationOperators.h"
#include "support/SanitizerOptions.h"

namespace {

constexpr std::size_t tooMuch = SIZE_MAX - 64;

// The library's own definition of a symbol, or null. In mangled names `j` and `m` are the size type
// of 32 and 64 bits; in those of allocation functions it stands fifth.
void* FromLibrary(std::string name) {
  if (sizeof(std::size_t) == 4 && name[4] == 'm') name[4] = 'j';
  static void* const library = dlopen(HYLBAS_LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD);
  Dl_info info;
  void* const symbol = library == nullptr ? nullptr : dlsym(library, name.c_str());
  bool const found = symbol != nullptr && dladdr(symbol, &info) != 0 &&
                     std::strstr(info.dli_fname, "libTARNHYLBasGenericsLib") != nullptr;
  return found ? symbol : nullptr;
}

using Plain = void*(std::size_t);
using Debug = void*(std::size_t, int, char const*, int);

struct Form {
  char const* name;
  bool debug;

  void* symbol() const { return FromLibrary(name); }
  void* operator()(std::size_t size) const {
    return debug ? reinterpret_cast<Debug*>(symbol())(size, 1, "file.cpp", 7)
                 : reinterpret_cast<Plain*>(symbol())(size);
  }
};

Form const everyForm[] = {
    {"_ZnwmiPKci", true}, {"_ZnamiPKci", true}, {"_Znwm", false}, {"_Znam", false}};

bool IsExported(Form const& form) {
  bool const exported = form.symbol() != nullptr;
  EXPECT_EQ(exported, form.debug || HYLBAS_EXPORT_GLOBAL_NEW) << form.name;
  return exported;
}

TEST(GlobalNew, AllocatesFromTheRuntimeHeapOrCallsTheHandler) {
  for (Form const& form : everyForm) {
    if (!IsExported(form)) continue;
    SCOPED_TRACE(form.name);
    void* const block = form(100);
    ASSERT_NE(block, nullptr);
    std::memset(block, 1, 100);
    std::free(block);

    void* const likeMalloc = std::malloc(0);
    void* const empty = form(0);
    EXPECT_EQ(empty == nullptr, likeMalloc == nullptr);
    std::free(empty);
    std::free(likeMalloc);

    EXPECT_EQ(form(tooMuch), nullptr);
    static int handlerCalls;
    handlerCalls = 0;
    std::set_new_handler([] {
      if (++handlerCalls == 3) std::set_new_handler(nullptr);
    });
    EXPECT_EQ(form(tooMuch), nullptr);
    EXPECT_EQ(handlerCalls, 3);

    std::set_new_handler([] { throw std::bad_alloc(); });
    if (form.debug) {
      EXPECT_EQ(form(tooMuch), nullptr);
    } else {
      EXPECT_THROW(form(tooMuch), std::bad_alloc);
    }
    std::set_new_handler(nullptr);
  }
}

TEST(GlobalNew, ReplacesTheProcesssOwn) {
  if (HYLBAS_ADDRESS_SANITIZER) GTEST_SKIP() << "the sanitizer replaces the operators itself";
  if (!HYLBAS_EXPORT_GLOBAL_NEW) GTEST_SKIP() << "left out of this build";
  bool const wide = sizeof(std::size_t) > 4;
  EXPECT_EQ(dlsym(RTLD_DEFAULT, wide ? "_Znwm" : "_Znwj"), FromLibrary("_Znwm"));
  EXPECT_EQ(dlsym(RTLD_DEFAULT, wide ? "_Znam" : "_Znaj"), FromLibrary("_Znam"));
}

// What makes a new-expression test for null before it constructs anything.
static_assert(noexcept(::operator new(1, 1, "file.cpp", 7)));
static_assert(noexcept(::operator new[](1, 1, "file.cpp", 7)));

TEST(PlacementNew, ReturnsThePlaceAndAllocatesNothing) {
  alignas(int) unsigned char place[sizeof(int)] = {1, 1, 1, 1};
  EXPECT_EQ(::operator new(SIZE_MAX, place, e_placement), place);
  ::operator delete(place, place, e_placement);
  EXPECT_EQ(place[3], 1);
}

} // namespace
