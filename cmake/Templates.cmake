# The templates of the tool's report as a header, so that the program needs no file beside it.
set(templates report reportEntry)
foreach(template IN LISTS templates)
  set(file ${PROJECT_SOURCE_DIR}/tool/${template}.html)
  file(READ ${file} ${template})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
endforeach()

# What the digits stand for in base64, for a number of bytes that leaves two over when it is divided by three.
function(base64_of_hex hex result)
  set(letters ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/)
  string(REGEX MATCHALL "......" groups "${hex}00")
  set(text "")
  foreach(group IN LISTS groups)
    foreach(shift 18 12 6 0)
      math(EXPR index "0x${group} >> ${shift} & 63")
      string(SUBSTRING ${letters} ${index} 1 letter)
      string(APPEND text ${letter})
    endforeach()
  endforeach()
  string(REGEX REPLACE ".$" "=" text ${text})
  set(${result} ${text} PARENT_SCOPE)
endfunction()

# The page's policy lets a browser run its one script by what that is, so that no text in it can bring another.
string(REGEX REPLACE "^.*<script>(.*)</script>.*$" "\\1" script "${report}")
string(SHA256 digest "${script}")
base64_of_hex(${digest} scriptHash)
string(CONFIGURE "${report}" report @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/tool/reportTemplates.h.in ${CMAKE_CURRENT_BINARY_DIR}/templates/reportTemplates.h @ONLY)

add_library(TqZelTemplates INTERFACE)
target_include_directories(TqZelTemplates INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/templates)
