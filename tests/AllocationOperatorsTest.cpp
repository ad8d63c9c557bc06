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
    std::size_t volatile const size = tooMuch; // unseen, since compilers refuse such a request
    EXPECT_EQ(::operator new(size, std::nothrow), nullptr);
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

TEST(BuiltInNew, TakesArraysFromTheMemoryLibrary) {
  int* const ints = new (e_builtInAlloc) int[1000];
  double* const doubles = new (e_builtInAlloc) double[1000];
  std::memset(ints, 1, 1000 * sizeof(int));
  std::memset(doubles, 1, 1000 * sizeof(double));
  mem_deleteBuiltIn(ints);
  mem_deleteBuiltIn(doubles);
  mem_deleteBuiltIn(static_cast<int*>(nullptr));
  mem_deleteBuiltIn(static_cast<double*>(nullptr));
  EXPECT_THROW(::operator new[](tooMuch | 63, e_builtInAlloc), std::bad_alloc);
}

struct FromMemoryLibrary : mem_AllocationOperators {
  int values[10];
};

TEST(ClassNew, TakesObjectsFromTheMemoryLibrary) {
  auto* const object = new FromMemoryLibrary();
  EXPECT_EQ(object->values[9], 0);
  delete object;
  delete static_cast<FromMemoryLibrary*>(nullptr);
  EXPECT_THROW(mem_AllocationOperators::operator new(SIZE_MAX), std::bad_alloc);
  static_assert(sizeof(FromMemoryLibrary) == sizeof(FromMemoryLibrary::values));
}

TEST(PlacementNew, ReturnsThePlaceAndAllocatesNothing) {
  using New = void*(std::size_t, void*, HYLBasPlacement);
  using Delete = void(void*, void*, HYLBasPlacement);
  auto* const exportedNew = reinterpret_cast<New*>(FromLibrary("_ZnwmPv15HYLBasPlacement"));
  auto* const exportedDelete = reinterpret_cast<Delete*>(FromLibrary("_ZdlPvS_15HYLBasPlacement"));
  alignas(int) unsigned char place[sizeof(int)] = {1, 1, 1, 1};
  ASSERT_TRUE(exportedNew != nullptr && exportedDelete != nullptr);
  EXPECT_EQ(exportedNew(SIZE_MAX, place, e_placement), place);
  exportedDelete(place, place, e_placement);
  EXPECT_EQ(place[3], 1);
  EXPECT_EQ(*new (place, e_placement) int(77), 77);
}

} // namespace
