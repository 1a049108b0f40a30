# What every target of this project is compiled with: the warnings, 64-bit file offsets (also on
# i386) and the sanitizers that a preset asks for in VIDEODOWN_SANITIZE.
function(videodown_target target)
  target_compile_definitions(${target} PRIVATE _FILE_OFFSET_BITS=64)
  target_compile_options(${target} PRIVATE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor)
  # What is static may end in somebody's shared object.
  get_target_property(type ${target} TYPE)
  if(NOT type STREQUAL "EXECUTABLE")
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  endif()
  if(VIDEODOWN_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
    target_compile_options(${target} PRIVATE -Wthread-safety)
  endif()
  if(VIDEODOWN_SANITIZE)
    target_compile_options(${target} PRIVATE
      -fsanitize=${VIDEODOWN_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(${target} PRIVATE -fsanitize=${VIDEODOWN_SANITIZE})
  endif()
endfunction()

# Installs a library with the HEADERS of its folder, for CMake and pkg-config. LINK are flags, and
# REQUIRES the pkg-config packages, that whoever links the library needs.
function(videodown_install_library target)
  cmake_parse_arguments(arg "" "FOLDER;LINK" "REQUIRES;HEADERS" ${ARGN})
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  if(NOT VIDEODOWN_INSTALL)
    return()
  endif()
  install(TARGETS ${target} EXPORT videodownTargets
    ARCHIVE COMPONENT development
    LIBRARY COMPONENT runtime NAMELINK_COMPONENT development)
  foreach(header IN LISTS arg_HEADERS)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${header} COMPONENT development
      DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/videodown/${arg_FOLDER}/${folder})
  endforeach()
  string(REPLACE "-" " " description ${target})
  # What a static library needs, everybody who links it needs.
  list(JOIN arg_REQUIRES ", " requires)
  string(PREPEND requires "Requires: ")
  if(arg_LINK)
    set(link "${arg_LINK} ")
  endif()
  file(RELATIVE_PATH toPrefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/videodown.pc.in ${target}.pc @ONLY)
  install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${target}.pc COMPONENT development
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()
