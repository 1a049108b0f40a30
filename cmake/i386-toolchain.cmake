# Compiles for 32-bit x86 with clang against the libraries in build/i386-root (scripts/test-i386),
# and lets what it made run outside that folder: with its loader and libraries, as they lie there.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/i386-root)
cmake_path(ABSOLUTE_PATH CMAKE_SYSROOT NORMALIZE)

set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET i686-linux-gnu)
set(CMAKE_CXX_FLAGS_INIT -march=i686) # as Debian's i386: no SSE
set(CMAKE_LIBRARY_ARCHITECTURE i386-linux-gnu)
string(CONCAT CMAKE_EXE_LINKER_FLAGS_INIT
  "-Wl,--disable-new-dtags,--dynamic-linker=${CMAKE_SYSROOT}/lib/ld-linux.so.2"
  ",-rpath=${CMAKE_SYSROOT}/usr/lib/i386-linux-gnu,-rpath=${CMAKE_SYSROOT}/lib/i386-linux-gnu")

# Programs, moc among them, come from this machine; everything else from the root.
foreach(module IN ITEMS Core Gui Widgets)
  file(GLOB Qt6${module}Tools_DIR /usr/lib/*/cmake/Qt6${module}Tools)
endforeach()
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_SYSROOT_DIR} ${CMAKE_SYSROOT})
set(ENV{PKG_CONFIG_LIBDIR} ${CMAKE_SYSROOT}/usr/lib/i386-linux-gnu/pkgconfig)
