# Debian's packages hold no symbols that the loader does without.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_STRIP_FILES YES)
endif()
