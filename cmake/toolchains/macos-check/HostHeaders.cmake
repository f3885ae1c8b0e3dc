# /usr/include holds the libraries' headers and those of glibc, which do not work for another system. The libraries'
# are linked into a folder of their own, and /usr/include is left out.
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/host-headers)
foreach(name boost unicode plist zconf.h zlib.h)
  file(CREATE_LINK /usr/include/${name} ${CMAKE_BINARY_DIR}/host-headers/${name} SYMBOLIC)
endforeach()
list(APPEND CMAKE_CXX_IMPLICIT_INCLUDE_DIRECTORIES /usr/include)
