// The exported allocation operators. They are called by the addresses that the library itself
// exports: the compiler may not assume anything about them then, and a sanitizer's own replacement
// of the global operators does not stand in for them.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include "HYLBasAllocationOperators.h"
#include "support/SanitizerOptions.h"
#include "support/SharedLibraries.h"

namespace {

constexpr std::size_t tooMuch = SIZE_MAX - 64;

// What the library exports under a mangled name, or null. `m` in it stands for the size type, fifth
// in the names of allocation functions, and is another letter where that is not unsigned long.
void* FromLibrary(std::string name) {
  if (name[4] == 'm') name[4] = sizeof(std::size_t) == 4 ? 'j' : sizeof(long) == 4 ? 'y' : 'm';
  return SymbolOf(LoadedLibrary(HYLBAS_LIBRARY_FILE), name.c_str());
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
#if defined(_WIN32)
    // The C runtime's own: memory is tried again while it answers other than 0.
    handlerCalls = 0;
    using Handler = int (*)(std::size_t);
    auto* const setHandler = reinterpret_cast<Handler (*)(Handler)>(
        SymbolOf(LoadedLibrary("msvcrt.dll"), "?_set_new_handler@@YAP6AH_K@ZP6AH0@Z@Z"));
    ASSERT_NE(setHandler, nullptr);
    setHandler([](std::size_t) { return ++handlerCalls == 3 ? 0 : 1; });
    EXPECT_EQ(form(tooMuch), nullptr);
    EXPECT_EQ(handlerCalls, 3);
    setHandler(nullptr);
#endif

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
  // Through pointers that the compiler knows nothing of: it takes for granted that these throw.
  Plain* volatile const own[] = {::operator new, ::operator new[] };
  for (Plain* const form : own)
    EXPECT_EQ(form(tooMuch), nullptr);
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
