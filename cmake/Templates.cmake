# The templates of the tool's report as a header, so that the program needs no file beside it.
set(templates report reportEntry)
foreach(template IN LISTS templates)
  set(file ${PROJECT_SOURCE_DIR}/tool/${template}.html)
  file(READ ${file} ${template})
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
endforeach()
configure_file(${PROJECT_SOURCE_DIR}/tool/reportTemplates.h.in ${CMAKE_CURRENT_BINARY_DIR}/templates/reportTemplates.h @ONLY)

add_library(TqZelTemplates INTERFACE)
target_include_directories(TqZelTemplates INTERFACE ${CMAKE_CURRENT_BINARY_DIR}/templates)
