# Fails unless PROGRAM, a command, prints what stands in the file EXPECTED.
execute_process(COMMAND ${PROGRAM} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
file(READ ${EXPECTED} expected)
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "Printed:\n${output}\nExpected, as ${EXPECTED} says:\n${expected}")
endif()
