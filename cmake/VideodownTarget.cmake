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
