# The host's own memory library and core system library, as the targets TARNHYLBas::TARNHYLBasAlloc
# and TARNHYLBas::LUXCORE: what has these names already (a host that builds them itself makes such
# aliases), else the libraries TARNHYLBasAlloc and LUXCORE, where CMAKE_PREFIX_PATH or the variables
# HYLBAS_TARNHYLBasAlloc_LIBRARY and HYLBAS_LUXCORE_LIBRARY say. Used by the build and by the
# installed package; says in `hylbasMissing` what was not found.
set(hylbasMissing)
foreach(name IN ITEMS TARNHYLBasAlloc LUXCORE)
  if(TARGET TARNHYLBas::${name})
    continue()
  endif()
  find_library(HYLBAS_${name}_LIBRARY ${name} DOC "The host's library ${name}")
  if(NOT HYLBAS_${name}_LIBRARY)
    string(APPEND hylbasMissing "The host's library ${name} was not found: name its folder in "
      "CMAKE_PREFIX_PATH or its file in HYLBAS_${name}_LIBRARY. ")
    continue()
  endif()
  add_library(TARNHYLBas::${name} UNKNOWN IMPORTED GLOBAL)
  set_target_properties(TARNHYLBas::${name} PROPERTIES IMPORTED_LOCATION ${HYLBAS_${name}_LIBRARY})
endforeach()
