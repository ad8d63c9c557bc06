# Which heap the memory library takes its blocks from (see TARNHYLBasAlloc/Heap.h).
if(HYLBAS_HEAP STREQUAL "system")
  return()
endif()
if(NOT HYLBAS_HEAP STREQUAL "jemalloc")
  message(FATAL_ERROR "HYLBAS_HEAP is '${HYLBAS_HEAP}', but should be 'system' or 'jemalloc'.")
endif()
if(NOT CMAKE_SYSTEM_NAME STREQUAL "Linux" OR NOT CMAKE_SIZEOF_VOID_P EQUAL 8)
  message(FATAL_ERROR "HYLBAS_HEAP=jemalloc is for 64-bit Linux: configure with HYLBAS_HEAP=system.")
endif()
find_library(HYLBAS_JEMALLOC_LIBRARY libjemalloc_pic.a
  DOC "jemalloc as a static library of position-independent code")
mark_as_advanced(HYLBAS_JEMALLOC_LIBRARY)
if(NOT HYLBAS_JEMALLOC_LIBRARY)
  message(FATAL_ERROR "HYLBAS_HEAP=jemalloc needs libjemalloc_pic.a, which was not found: "
    "'tools/bootstrap heap' installs it, HYLBAS_JEMALLOC_LIBRARY names it elsewhere.")
endif()

# Everything that two functions need, in one object that shows nothing else: whatever else is linked
# into the library keeps the process's own heap, and so does the process.
set(heap ${CMAKE_CURRENT_BINARY_DIR}/heap.o)
add_custom_command(OUTPUT ${heap}
  COMMAND ${CMAKE_LINKER} -r --undefined=malloc -o ${heap} ${HYLBAS_JEMALLOC_LIBRARY}
  COMMAND ${CMAKE_OBJCOPY}
    --redefine-sym malloc=hylbas_heap_malloc --redefine-sym free=hylbas_heap_free
    --keep-global-symbol=hylbas_heap_malloc --keep-global-symbol=hylbas_heap_free ${heap}
  DEPENDS ${HYLBAS_JEMALLOC_LIBRARY}
  VERBATIM)
target_sources(TARNHYLBasAlloc PRIVATE ${heap})
set_source_files_properties(${heap} PROPERTIES EXTERNAL_OBJECT ON GENERATED ON)
target_compile_definitions(TARNHYLBasAlloc PRIVATE HYLBAS_HEAP_IS_JEMALLOC=1)
find_package(Threads REQUIRED)
target_link_libraries(TARNHYLBasAlloc PRIVATE m Threads::Threads)
# Threads that still run, and forks, call back into the heap until the process ends.
target_link_options(TARNHYLBasAlloc PRIVATE LINKER:-z,nodelete)
