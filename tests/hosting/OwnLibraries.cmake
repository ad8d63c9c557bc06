# Builds the host's libraries, the library over them and the host, all installed under one prefix.
# Expects `generator`, `common` (options), `sources` and `work`.
set(prefix ${work}/prefix)
file(REMOVE_RECURSE ${work})
function(build name folder)
  foreach(step IN ITEMS "-G;${generator};-S;${folder};-B;${work}/${name};${common};-DCMAKE_INSTALL_PREFIX=${prefix};-DCMAKE_PREFIX_PATH=${prefix};${ARGN}"
                        "--build;${work}/${name}")
    execute_process(COMMAND ${CMAKE_COMMAND} ${step} COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
  endforeach()
endfunction()
function(install name)
  execute_process(COMMAND ${CMAKE_COMMAND} --install ${work}/${name} COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
endfunction()

build(services ${sources}/examples/host/services -DHOST_INTERFACES=${sources}/HostInterfaces)
install(services)
build(library ${sources} -DHYLBAS_HOST_SERVICES=OFF -DHYLBAS_BUILD_TESTS=OFF -DHYLBAS_BUILD_EXAMPLES=OFF)
install(library)
build(host ${sources}/examples/host -DINTERPOSE=OFF)
execute_process(COMMAND ${work}/host/host COMMAND_ERROR_IS_FATAL ANY)
