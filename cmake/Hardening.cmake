include(CheckCXXCompilerFlag)

# What every binary of ours gets: addresses that can't be overwritten, a guarded stack, checked copies, jumps that lead
# only where they should; nothing that is never called. The sanitizers bring checks of their own, and want none of ours
# beside them.
if(NOT CMAKE_BUILD_TYPE STREQUAL Debug)
  set(machine_checks -fcf-protection)
  # For 32-bit ARM it is accepted, but costs three instructions in each function: 7 % of the code.
  if(NOT CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
    list(APPEND machine_checks -fstack-clash-protection)
  endif()
  foreach(flag IN LISTS machine_checks)
    check_cxx_compiler_flag(${flag} "has${flag}")
    if("${has${flag}}")
      add_compile_options(${flag})
    endif()
  endforeach()
  add_compile_options(-fstack-protector-strong -ffunction-sections -fdata-sections -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
  add_link_options(-Wl,-z,relro -Wl,-z,now -Wl,--gc-sections -Wl,--as-needed)
endif()

# Tests look at each index into a container. What is shipped doesn't.
if((TQZEL_TESTS OR TQZEL_FUZZ) AND NOT CMAKE_BUILD_TYPE MATCHES "^(Release|MinSizeRel)$")
  add_compile_definitions(_GLIBCXX_ASSERTIONS)
endif()

# A library names all that it calls; the functions of clang++'s sanitizers come with the program alone.
if(NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
  set(TQZEL_NOTHING_OPEN -Wl,--no-undefined)
endif()

# Small builds: the passes that are left out make this code larger, and so does linking it in parts.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  string(APPEND CMAKE_CXX_FLAGS_MINSIZEREL " -fno-ipa-sra -fno-gcse -fno-move-loop-invariants -flto-partition=one")
endif()
set(CMAKE_INTERPROCEDURAL_OPTIMIZATION_RELEASE ON)
set(CMAKE_INTERPROCEDURAL_OPTIMIZATION_MINSIZEREL ON)

# The same bytes wherever they are built: no path of the build machine.
set(own_folders ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR} ${CMAKE_SYSROOT})
if(CMAKE_SYSROOT)
  file(REAL_PATH ${CMAKE_SYSROOT} sysroot)
  list(APPEND own_folders ${sysroot})
endif()
foreach(folder IN LISTS own_folders)
  list(APPEND mapped_folders -ffile-prefix-map=${folder}=. -ffile-prefix-map=${folder}/=)  # the last that fits counts
endforeach()
add_compile_options(${mapped_folders})
add_link_options(${mapped_folders})  # optimisation at link time compiles
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# What is to be installed finds our libraries while it is in the build folder, and where it is installed only those of the
# system. CMake's own way of changing that leaves an empty element in the build folder, which means the current folder:
# whoever can write there could have any library loaded.
function(find_libraries_in_build_folder target component installed_folder)
  list(TRANSFORM ARGN PREPEND $ORIGIN/../ OUTPUT_VARIABLE folders)
  set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON INSTALL_RPATH "${folders}")
  cmake_path(ABSOLUTE_PATH installed_folder BASE_DIRECTORY "\${CMAKE_INSTALL_PREFIX}" OUTPUT_VARIABLE folder)
  install(CODE "file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}${folder}/$<TARGET_FILE_NAME:${target}>\")" COMPONENT ${component})
endfunction()
