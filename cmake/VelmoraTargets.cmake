# How the project's libraries are declared.
#
# Each folder of src/ is one static library. Headers are included as "folder/Name.h". A library sees only the folders
# that it links: every library's include root holds one link to its own folder and nothing else, so that an include
# against the direction of the layers does not compile.

add_library(velmora_flags INTERFACE)
target_compile_options(
  velmora_flags
  INTERFACE -Wall
            -Wextra
            -Wno-missing-field-initializers
            -Wpedantic
            -Wshadow
            -Wconversion
            -Wnon-virtual-dtor
            -Woverloaded-virtual
            $<$<PLATFORM_ID:Darwin>:-Wunguarded-availability>
            $<$<BOOL:${VELMORA_WERROR}>:-Werror>)
target_compile_definitions(
  velmora_flags
  INTERFACE QT_NO_CAST_FROM_ASCII
            QT_NO_CAST_TO_ASCII
            QT_NO_KEYWORDS
            QT_NO_CONTEXTLESS_CONNECT
            BOOST_ASIO_NO_DEPRECATED
            BOOST_ASIO_DISABLE_BOOST_COROUTINE)
if(VELMORA_SANITIZE MATCHES thread)
  # ThreadSanitizer does not know fences; the locks around them order the same things.
  target_compile_definitions(velmora_flags INTERFACE BOOST_ASIO_DISABLE_FENCED_BLOCK)
endif()
if(VELMORA_SANITIZE)
  # With the sanitizers' code in between, GCC takes values of the standard library for uninitialised.
  target_compile_options(velmora_flags INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  # Without the check of objects' types: it opens a pipe to look at them, and takes a lack of descriptors for a wrong one.
  target_compile_options(velmora_flags INTERFACE -fsanitize=${VELMORA_SANITIZE} -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=all -fno-sanitize=vptr)
  target_link_options(velmora_flags INTERFACE -fsanitize=${VELMORA_SANITIZE})
endif()

# What is shipped is built as distributions build their own programs: checked copies and formats, a guarded stack, and no
# table of addresses that can be written to once the program runs.
set(shipped $<AND:$<CONFIG:Release>,$<PLATFORM_ID:Linux>>)
target_compile_options(
  velmora_flags INTERFACE "$<${shipped}:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong;-fstack-clash-protection>")
target_link_options(velmora_flags INTERFACE "$<${shipped}:LINKER:-z,relro>")

# velmora_library(name DIR folder SOURCES … LINKS … [PRIVATE_LINKS …])
function(velmora_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  set(target velmora_${name})
  set(root ${CMAKE_BINARY_DIR}/include/${name})
  file(MAKE_DIRECTORY ${root})
  if(NOT EXISTS ${root}/${name})
    file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${name} ${root}/${name} SYMBOLIC)
  endif()
  if(ARG_SOURCES)
    add_library(${target} STATIC ${ARG_SOURCES})
    target_include_directories(${target} PUBLIC ${root})
    target_link_libraries(${target} PUBLIC ${ARG_LINKS} PRIVATE velmora_flags ${ARG_PRIVATE_LINKS})
  else()
    add_library(${target} INTERFACE)
    target_include_directories(${target} INTERFACE ${root})
    target_link_libraries(${target} INTERFACE ${ARG_LINKS})
  endif()
endfunction()
