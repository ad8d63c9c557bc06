# GoogleTest: the packaged library where it fits the target, else built from its packaged sources.
if(CMAKE_SIZEOF_VOID_P EQUAL 8 AND NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
else()
  set(GTEST_SOURCES /usr/src/googletest CACHE PATH "GoogleTest's sources")
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  add_subdirectory(${GTEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  # The sources are not ours to hold to our warnings.
  target_compile_options(gtest PRIVATE -w)
  target_compile_options(gtest_main PRIVATE -w)
endif()
