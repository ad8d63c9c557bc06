# Packages of what is installed: `cpack -G ZIP` packs all of it, `cpack -G DEB` a package each for
# programs, for developers and of the documentation, and `cpack --config CPackSourceConfig.cmake` the
# sources. Debian's packages want a build for the prefix /usr.
set(HYLBAS_PACKAGE_CONTACT "$ENV{DEBFULLNAME} <$ENV{DEBEMAIL}>" CACHE STRING
  "Who answers for the Debian packages: name and mail address")
mark_as_advanced(HYLBAS_PACKAGE_CONTACT)
set(CPACK_PACKAGE_VENDOR ${PROJECT_NAME})
set(CPACK_PACKAGE_CONTACT ${HYLBAS_PACKAGE_CONTACT})
set(CPACK_VERBATIM_VARIABLES YES)

set(CPACK_SOURCE_GENERATOR TXZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-source)
set(CPACK_SOURCE_IGNORE_FILES "/build/" "/[.]git/" "/[.]cache/" "__pycache__" "~$")

# --- Debian: names of packages as of the components they hold

string(TOLOWER ${PROJECT_NAME} debianName)
set(debianRuntime ${debianName}${PROJECT_VERSION_MAJOR})
set(debianDevelopment ${debianName}-dev)
set(debianDocumentation ${debianName}-doc)
set(holdsRuntime "the shared libraries")
set(holdsDevelopment "headers, the CMake package, the pkg-config file and
views for debuggers")
set(holdsDocumentation "guides and examples")

set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/debian/Strip.cmake)
set(CPACK_DEB_COMPONENT_INSTALL YES)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION YES)
set(CPACK_COMPONENTS_ALL runtime development documentation)
foreach(component IN ITEMS Runtime Development Documentation)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${debian${component}})
  set(CPACK_COMPONENT_${upper}_DESCRIPTION "Vectors and red-black trees that small policy records drive, with typed
facades over them; ordered maps of int keys, dense two-dimensional arrays,
sorts, and vectors as text files.

This package holds ${holds${component}}.")
endforeach()
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS YES)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS YES)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/debian/triggers)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${debianRuntime} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "${debianDocumentation}, cmake, pkgconf")
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)

# What belongs to Debian's packages alone, and to no other installation.
find_program(HYLBAS_GZIP gzip)
mark_as_advanced(HYLBAS_GZIP)
if(UNIX AND HYLBAS_GZIP)
  set(changes ${PROJECT_BINARY_DIR}/debian)
  string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
  file(WRITE ${changes}/changelog "${debianName} (${PROJECT_VERSION}) unstable; urgency=medium

  * See CHANGELOG.md in ${debianDocumentation}.

 -- ${HYLBAS_PACKAGE_CONTACT}  ${date}
")
  execute_process(COMMAND ${HYLBAS_GZIP} -9 --no-name --force ${changes}/changelog COMMAND_ERROR_IS_FATAL ANY)
  foreach(component IN ITEMS Runtime Development Documentation)
    string(TOLOWER ${component} lower)
    install(FILES ${changes}/changelog.gz ${PROJECT_SOURCE_DIR}/cmake/debian/copyright
      DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${debian${component}} COMPONENT ${lower} EXCLUDE_FROM_ALL)
  endforeach()
  install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/SECURITY.md
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${debianDocumentation} COMPONENT documentation EXCLUDE_FROM_ALL)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs ${PROJECT_SOURCE_DIR}/examples
    DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${debianDocumentation} COMPONENT documentation EXCLUDE_FROM_ALL
    PATTERN site EXCLUDE)
endif()

include(CPack)
