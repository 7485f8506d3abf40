# What `cmake --install` puts where: a CMake package, a pkg-config file, and by components what the Debian packages hold.
include(CMakePackageConfigHelpers)

set(TQZEL_CMAKE_FOLDER ${CMAKE_INSTALL_LIBDIR}/cmake/TqZelLogbook)
install(EXPORT TqZelLogbookTargets NAMESPACE TqZelLogbook:: DESTINATION ${TQZEL_CMAKE_FOLDER} COMPONENT Development)
configure_package_config_file(cmake/TqZelLogbookConfig.cmake.in TqZelLogbookConfig.cmake
  INSTALL_DESTINATION ${TQZEL_CMAKE_FOLDER})
write_basic_package_version_file(TqZelLogbookConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(
  FILES ${PROJECT_BINARY_DIR}/TqZelLogbookConfig.cmake ${PROJECT_BINARY_DIR}/TqZelLogbookConfigVersion.cmake
  DESTINATION ${TQZEL_CMAKE_FOLDER}
  COMPONENT Development)

# The file finds its prefix from where it lies, so that an installed tree may be moved.
set(TQZEL_PKGCONFIG_FOLDER ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH TQZEL_PREFIX_FROM_PKGCONFIG /${TQZEL_PKGCONFIG_FOLDER} /)
set(TQZEL_LIBRARIES -lTqZelLogbook)
if(TQZEL_PLATFORM STREQUAL standalone)
  string(APPEND TQZEL_LIBRARIES " -lTqZelPlatform")
endif()
configure_file(cmake/TqZelLogbook.pc.in TqZelLogbook.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/TqZelLogbook.pc DESTINATION ${TQZEL_PKGCONFIG_FOLDER} COMPONENT Development)
