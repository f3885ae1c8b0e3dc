# Configures the tree as for a Mac on a Debian system, to compile sources for macOS without one. Nothing links, and so
# nothing of it ever runs.
#
#   cmake -B build/macos -G Ninja --toolchain cmake/toolchains/macos-check.cmake -D VELMORA_BUILD_TESTS=OFF
#
# Apple's headers are not there. Their place take declarations of our own for the little that the adapters use
# (tests/macos/stubs), over the headers of libc++ and musl. Qt, Boost, ICU, libplist and zlib are Debian's: their headers
# are the same everywhere.

set(VELMORA_MACOS_ARCHITECTURE arm64 CACHE STRING "arm64 or x86_64")
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VELMORA_MACOS_ARCHITECTURE)

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR ${VELMORA_MACOS_ARCHITECTURE})
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_CXX_COMPILER_TARGET ${VELMORA_MACOS_ARCHITECTURE}-apple-macos)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# The system's CMake packages: for any architecture, as nothing links.
cmake_host_system_information(RESULT host_processor QUERY OS_PLATFORM)
set(CMAKE_LIBRARY_ARCHITECTURE ${host_processor}-linux-gnu)
set(CMAKE_PREFIX_PATH /usr)
set(Qt6_DIR /usr/lib/${CMAKE_LIBRARY_ARCHITECTURE}/cmake/Qt6)
list(PREPEND CMAKE_MODULE_PATH ${CMAKE_CURRENT_LIST_DIR}/macos-check)
set(CMAKE_PROJECT_velmora_INCLUDE ${CMAKE_CURRENT_LIST_DIR}/macos-check/HostHeaders.cmake)

get_filename_component(stubs ${CMAKE_CURRENT_LIST_DIR}/../../tests/macos/stubs ABSOLUTE)
string(JOIN " " CMAKE_CXX_FLAGS_INIT
  -nostdinc++ -nostdlibinc -D_GNU_SOURCE -D_LIBCPP_PROVIDES_DEFAULT_RUNE_TABLE
  -isystem ${stubs}/frameworks -isystem ${stubs}/kernel -isystem ${stubs}/system
  -isystem /usr/lib/llvm-14/include/c++/v1
  -isystem /usr/include/${host_processor}-linux-musl
  -isystem ${CMAKE_BINARY_DIR}/host-headers)
