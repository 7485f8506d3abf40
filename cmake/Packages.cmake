# Debian packages: `cpack` in the build folder of the preset "release".
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tqzel-logbook)
set(CPACK_PACKAGE_CONTACT "The libTqZelLogbook developers")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL Library Development Platform Tool)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_STRIP_FILES ON)

# Which packages hold the libraries we link, this machine's package manager knows; of another machine it can't.
if(NOT CMAKE_CROSSCOMPILING)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${PROJECT_BINARY_DIR}/src ${PROJECT_BINARY_DIR}/standalone)
elseif(CMAKE_LIBRARY_ARCHITECTURE STREQUAL arm-linux-gnueabihf)
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()
# A package goes with those of the very same build.
set(same "(= ${PROJECT_VERSION})")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libtqzellogbook${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/triggers)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS "libtqzelplatform${PROJECT_VERSION_MAJOR} ${same}")
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "Logbooks of an RF power amplifier: events in, words out")

set(CPACK_DEBIAN_PLATFORM_PACKAGE_NAME libtqzelplatform${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_PLATFORM_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_PLATFORM_PACKAGE_CONTROL_EXTRA ${PROJECT_SOURCE_DIR}/cmake/triggers)
set(CPACK_COMPONENT_PLATFORM_DESCRIPTION "SQLite files, JSON text, diagnostic log and clock for libTqZelLogbook")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtqzellogbook-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
  "libtqzellogbook${PROJECT_VERSION_MAJOR} ${same}, libtqzelplatform${PROJECT_VERSION_MAJOR} ${same}, libjsoncpp-dev, libboost-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, CMake package and pkg-config file of libTqZelLogbook")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME tqzel-logbook)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS
  "libtqzellogbook${PROJECT_VERSION_MAJOR} ${same}, libtqzelplatform${PROJECT_VERSION_MAJOR} ${same}")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "Records, shows, checks, clears, exports, imports and reports RF amplifier logbooks")

include(CPack)
