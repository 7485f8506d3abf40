# Fails unless PROGRAM, run by EMULATOR if there is one, on logbooks that it makes in FOLDER, prints what the README says.
file(REMOVE_RECURSE ${FOLDER})
execute_process(COMMAND ${CMAKE_COMMAND} -E env TQZEL_LOGBOOK_DIR=${FOLDER} ${EMULATOR} ${PROGRAM}
  OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
file(READ ${README} readme)
string(FIND "${readme}" "```text\n${output}```" place)
if(output STREQUAL "" OR place EQUAL -1)
  message(FATAL_ERROR "${PROGRAM} printed what ${README} does not show:\n${output}")
endif()
