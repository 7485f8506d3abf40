# The templates of the tool's report as a header, so that the program needs no file beside it.
set(templates report reportEntry)
foreach(template IN LISTS templates)
  set(file ${PROJECT_SOURCE_DIR}/tool/${template}.html)
  file(READ ${file} ${template})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
endforeach()

# The page's policy lets a browser run its one script by what that is, so that no text in it can bring another.
string(REGEX REPLACE "^.*<script>(.*)</script>.*$" "\\1" script "${report}")
string(SHA256 digest "${script}")
string(TOUPPER ${digest} digest)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E echo_append ${digest}
  COMMAND basenc --base16 --decode
  COMMAND base64
  OUTPUT_VARIABLE scriptHash OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
string(CONFIGURE "${report}" report @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/tool/reportTemplates.h.in ${CMAKE_CURRENT_BINARY_DIR}/templates/reportTemplates.h @ONLY)

add_library(TqZelTemplates INTERFACE)
target_include_directories(TqZelTemplates INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/templates)
