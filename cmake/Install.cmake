# What a host's build needs to find and link the library: the three shared libraries, all public
# headers, a CMake package and a pkg-config file. The installed tree may be moved as a whole.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(hylbasHeaders ${CMAKE_INSTALL_INCLUDEDIR}/TARNHYLBasGenericsLib)
set(hylbasPackage ${CMAKE_INSTALL_LIBDIR}/cmake/TARNHYLBasGenericsLib)
set(hylbasPkgConfig ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

set(hylbasLibraries TARNHYLBasGenericsLib)
if(HYLBAS_HOST_SERVICES)
  list(APPEND hylbasLibraries TARNHYLBasAlloc LUXCORE)
endif()
install(TARGETS ${hylbasLibraries}
  EXPORT TARNHYLBasGenericsLibTargets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
  INCLUDES DESTINATION ${hylbasHeaders})

# The libraries find each other wherever they lie together.
set_target_properties(${hylbasLibraries} PROPERTIES
  INSTALL_RPATH "$ORIGIN")

install(DIRECTORY ${PROJECT_SOURCE_DIR}/ProtectedInterfaces/ ${PROJECT_SOURCE_DIR}/HostInterfaces/
  DESTINATION ${hylbasHeaders} COMPONENT development
  FILES_MATCHING PATTERN "*.h")

install(EXPORT TARNHYLBasGenericsLibTargets
  NAMESPACE TARNHYLBas::
  DESTINATION ${hylbasPackage} COMPONENT development)
configure_package_config_file(
  ${PROJECT_SOURCE_DIR}/cmake/TARNHYLBasGenericsLibConfig.cmake.in
  ${PROJECT_BINARY_DIR}/TARNHYLBasGenericsLibConfig.cmake
  INSTALL_DESTINATION ${hylbasPackage})
write_basic_package_version_file(
  ${PROJECT_BINARY_DIR}/TARNHYLBasGenericsLibConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
  ${PROJECT_SOURCE_DIR}/cmake/HostLibraries.cmake
  ${PROJECT_BINARY_DIR}/TARNHYLBasGenericsLibConfig.cmake
  ${PROJECT_BINARY_DIR}/TARNHYLBasGenericsLibConfigVersion.cmake
  DESTINATION ${hylbasPackage} COMPONENT development)

# The pkg-config file says where the prefix is, seen from itself, unless the directories were
# given as absolute paths.
set(hylbasPkgConfigFull ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH hylbasPrefix ${hylbasPkgConfigFull} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" hylbasPrefix "\${pcfiledir}/${hylbasPrefix}")
foreach(kind INCLUDEDIR LIBDIR)
  if(IS_ABSOLUTE ${CMAKE_INSTALL_${kind}})
    set(hylbasPkgConfig_${kind} ${CMAKE_INSTALL_${kind}})
  else()
    set(hylbasPkgConfig_${kind} "\${prefix}/${CMAKE_INSTALL_${kind}}")
  endif()
endforeach()
if(HYLBAS_HOST_SERVICES)
  set(hylbasHostLibs "-lTARNHYLBasAlloc -lLUXCORE")
else()
  set(hylbasHostLibs "${HYLBAS_TARNHYLBasAlloc_LIBRARY} ${HYLBAS_LUXCORE_LIBRARY}")
endif()
configure_file(${PROJECT_SOURCE_DIR}/cmake/TARNHYLBasGenericsLib.pc.in
  ${PROJECT_BINARY_DIR}/TARNHYLBasGenericsLib.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/TARNHYLBasGenericsLib.pc DESTINATION ${hylbasPkgConfig} COMPONENT development)

# What shows the containers in debuggers. gdb looks for a file named after the library where it
# keeps those of installed libraries.
set(hylbasViews ${PROJECT_SOURCE_DIR}/tools/debuggers)
install(FILES ${hylbasViews}/hylbas_views.py ${hylbasViews}/TARNHYLBasGenericsLib.natvis
  DESTINATION ${CMAKE_INSTALL_DATADIR}/TARNHYLBasGenericsLib COMPONENT development)
if(UNIX)
  install(FILES ${hylbasViews}/hylbas_views.py
    DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load${CMAKE_INSTALL_FULL_LIBDIR} COMPONENT development
    RENAME $<TARGET_FILE_NAME:TARNHYLBasGenericsLib>-gdb.py)
endif()

if(PROJECT_IS_TOP_LEVEL)
  include(cmake/Packages.cmake)
endif()
