# How everything in this tree is compiled. Directory settings, so a project that embeds this one
# keeps its own.
include(CheckCXXCompilerFlag)
include(CheckCXXSourceCompiles)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
if(NOT WIN32) # where it would keep the exported inline members out of the library
  set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
endif()
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(WIN32)
  set(CMAKE_SHARED_LIBRARY_PREFIX "") # compilers agree on the names of DLLs
endif()

if(PROJECT_IS_TOP_LEVEL)
  if(WIN32) # programs find DLLs beside them
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
  endif()
  set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
  if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Debug, Release, RelWithDebInfo or MinSizeRel" FORCE)
  endif()
  find_program(HYLBAS_CCACHE ccache)
  mark_as_advanced(HYLBAS_CCACHE)
  if(HYLBAS_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${HYLBAS_CCACHE})
  endif()
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion)
set(CMAKE_COMPILE_WARNING_AS_ERROR ${HYLBAS_WARNINGS_AS_ERRORS})

# Norms have the same bits on every platform: each step of a computation is rounded to IEEE double.
# Fused multiply-adds skip a rounding; the x87 unit of 32-bit x86 rounds to another precision.
add_compile_options(-ffp-contract=off)
check_cxx_source_compiles("
  #if !defined(__i386__)
  #error not this one
  #endif
  int main() { return 0; }" HYLBAS_TARGET_IS_32BIT_X86)
if(HYLBAS_TARGET_IS_32BIT_X86)
  add_compile_options(-msse2 -mfpmath=sse)
endif()

# Kernels that take no 32-bit programs run those of the tests under an emulator.
if(HYLBAS_TARGET_IS_32BIT_X86 AND PROJECT_IS_TOP_LEVEL AND HYLBAS_BUILD_TESTS AND NOT CMAKE_CROSSCOMPILING)
  include(CheckCXXSourceRuns)
  check_cxx_source_runs("int main() { return 0; }" HYLBAS_RUNS_32BIT_PROGRAMS)
  if(NOT HYLBAS_RUNS_32BIT_PROGRAMS)
    find_program(HYLBAS_QEMU_I386 qemu-i386 REQUIRED)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${HYLBAS_QEMU_I386})
  endif()
endif()

# What a host may put its own definitions in place of lives in the host libraries, always called
# from another one, so within one library g++ may bind and inline calls as clang does by itself.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  check_cxx_compiler_flag(-fno-semantic-interposition HYLBAS_HAVE_NO_SEMANTIC_INTERPOSITION)
  if(HYLBAS_HAVE_NO_SEMANTIC_INTERPOSITION)
    add_compile_options(-fno-semantic-interposition)
  endif()
endif()

# As Debian builds its packages: overruns end the process before they are of use, and the tables of
# functions are read-only. Sanitizers look for the same and more, and unoptimised code cannot.
if(HYLBAS_HARDENING AND CMAKE_SYSTEM_NAME STREQUAL "Linux" AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  add_compile_options("$<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
  add_link_options("$<$<NOT:$<CONFIG:Debug>>:LINKER:-z,relro;LINKER:-z,now>")
endif()

# A shared library names everything that it needs. clang's sanitizer runtimes are the exception:
# they are linked into the program alone.
if(CMAKE_SYSTEM_NAME STREQUAL "Linux"
   AND NOT (CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND CMAKE_CXX_FLAGS MATCHES "-fsanitize"))
  add_link_options($<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,SHARED_LIBRARY>:LINKER:--no-undefined>)
endif()
