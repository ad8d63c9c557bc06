# Packs the build tree as a ZIP, which must hold what was installed under `prefix`.
file(REMOVE_RECURSE ${work})
execute_process(COMMAND ${cpack} -G ZIP -C ${config} -B ${work} --config ${build}/CPackConfig.cmake
  COMMAND_ERROR_IS_FATAL ANY)
file(GLOB archive ${work}/TARNHYLBasGenericsLib-*.zip)
file(ARCHIVE_EXTRACT INPUT ${archive} DESTINATION ${work}/files)
file(GLOB_RECURSE installed RELATIVE ${prefix} ${prefix}/*)
file(GLOB folder ${work}/files/*)
file(GLOB_RECURSE packed RELATIVE ${folder} ${folder}/*)
if(NOT packed STREQUAL installed OR NOT packed MATCHES "HYLBasGenericsLib.h")
  message(FATAL_ERROR "packed:\n${packed}\ninstalled:\n${installed}")
endif()
