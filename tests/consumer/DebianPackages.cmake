# Packs the sources, builds them elsewhere, makes Debian's packages there, unpacks these into an empty
# root and builds the consumer against that. Expects `build`, `generator`, `compiler`, `program` and
# `work`; `lintian` may be missing.
file(REMOVE_RECURSE ${work})
file(MAKE_DIRECTORY ${work}/unpacked)
function(run)
  execute_process(COMMAND ${ARGV} WORKING_DIRECTORY ${work} COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
endfunction()

run(cpack -B ${work} --config ${build}/CPackSourceConfig.cmake)
file(GLOB archive ${work}/*-source.tar.xz)
file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${work})
file(GLOB sources ${work}/*-source)
run(${CMAKE_COMMAND} -G ${generator} -S ${sources} -B ${work}/build -D CMAKE_CXX_COMPILER=${compiler}
    -D CMAKE_INSTALL_PREFIX=/usr -D HYLBAS_BUILD_TESTS=OFF -D HYLBAS_BUILD_EXAMPLES=OFF
    -D "HYLBAS_PACKAGE_CONTACT=A Packager <packager@debian.org>")
run(${CMAKE_COMMAND} --build ${work}/build)
run(cpack -G DEB -B ${work} --config ${work}/build/CPackConfig.cmake)

file(GLOB packages ${work}/*.deb)
foreach(package IN LISTS packages)
  run(dpkg --extract ${package} ${work}/unpacked)
endforeach()
run(${CMAKE_COMMAND} -G ${generator} -S ${program} -B ${work}/consumer -D CMAKE_CXX_COMPILER=${compiler}
    -D CMAKE_PREFIX_PATH=${work}/unpacked/usr)
run(${CMAKE_COMMAND} --build ${work}/consumer)
run(${work}/consumer/consumer)
if(lintian)
  run(${lintian} --fail-on error --suppress-tags maintscript-calls-ldconfig,package-name-doesnt-match-sonames ${packages})
endif()
