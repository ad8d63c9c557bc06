# How the definitions of host services in a test program take the place of the host libraries' in its
# whole process.
if(WIN32)
  # What the programs define of the host's is exported, and nothing else.
  add_compile_definitions(TARNHYLBASALLOC_BUILD LUXCORE_BUILD)
  set(CMAKE_EXE_EXPORTS_CXX_FLAG "")
endif()

# Elsewhere the loader prefers a program's definitions. On Windows a library calls the libraries that
# it was linked with: the program gets host libraries of its own beside it, of the same names, in
# which its definitions stand in front of the others.
function(hylbas_replace_host_services program)
  set_target_properties(${program} PROPERTIES ENABLE_EXPORTS ON)
  if(NOT WIN32)
    return()
  endif()
  set(folder ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/${program})
  set_target_properties(${program} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${folder})
  foreach(host IN ITEMS TARNHYLBasAlloc LUXCORE)
    set(library ${program}.${host})
    add_library(${library} SHARED $<TARGET_OBJECTS:${host}>)
    set_target_properties(${library} PROPERTIES LINKER_LANGUAGE CXX OUTPUT_NAME ${host}
      RUNTIME_OUTPUT_DIRECTORY ${folder} ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}/${program})
    target_link_options(${library} PRIVATE LINKER:--allow-multiple-definition
      LINKER:--whole-archive,$<TARGET_LINKER_FILE:${program}>,--no-whole-archive)
    add_dependencies(${library} ${program})
    set_property(TARGET ${library} PROPERTY LINK_DEPENDS $<TARGET_LINKER_FILE:${program}>)
  endforeach()
  add_custom_command(TARGET ${program} POST_BUILD COMMAND ${CMAKE_COMMAND} -E copy_if_different
    $<TARGET_FILE:TARNHYLBasGenericsLib> ${folder})
endfunction()
