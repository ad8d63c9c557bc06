# Installs the build tree into one folder and renames that to `prefix`: what was installed must not
# depend on where it was.
file(REMOVE_RECURSE ${prefix} ${prefix}-before)
execute_process(
  COMMAND ${CMAKE_COMMAND} --install ${build} --config ${config} --prefix ${prefix}-before
  COMMAND_ERROR_IS_FATAL ANY)
file(RENAME ${prefix}-before ${prefix})
