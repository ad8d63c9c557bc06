# `cmake --build ... --target docs`: the reference made from the headers' comments, where doxygen
# is installed. Part of no other target.
find_package(Doxygen QUIET OPTIONAL_COMPONENTS dot)
if(DOXYGEN_FOUND)
  if(TARGET Doxygen::dot)
    set(HYLBAS_HAVE_DOT YES)
  else()
    set(HYLBAS_HAVE_DOT NO)
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
  add_custom_target(docs
    COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/Doxyfile
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    COMMENT "Reference in ${PROJECT_BINARY_DIR}/docs/html/index.html"
    VERBATIM)
endif()
