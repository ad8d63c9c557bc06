# cmake -D TOUR=program -D ARGUMENTS=list -D STATUS=n
#       [-D OUTPUT_FILE=file] [-D OUTPUT=regex] [-D ERRORS=regex] -P CheckTour.cmake
# Runs the tour and fails unless it ends with STATUS, prints what is expected, and nothing on the
# stream for which nothing is.
execute_process(COMMAND ${TOUR} ${ARGUMENTS}
  RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)

if(NOT status STREQUAL STATUS)
  message(SEND_ERROR "ended with ${status}, not ${STATUS}")
endif()
if(OUTPUT_FILE)
  file(READ ${OUTPUT_FILE} expected)
  if(NOT output STREQUAL expected)
    message(SEND_ERROR "the output is not that of ${OUTPUT_FILE}")
  endif()
elseif(OUTPUT AND NOT output MATCHES "${OUTPUT}")
  message(SEND_ERROR "the output does not match ${OUTPUT}")
elseif(NOT OUTPUT AND NOT output STREQUAL "")
  message(SEND_ERROR "there is output")
endif()
if(ERRORS AND NOT errors MATCHES "${ERRORS}")
  message(SEND_ERROR "the error messages do not match ${ERRORS}")
elseif(NOT ERRORS AND NOT errors STREQUAL "")
  message(SEND_ERROR "there are error messages")
endif()
message("--- output\n${output}--- error messages\n${errors}---")
