# Writes the list of changes that the About box shows, from the changelog.
#
#   cmake -DINPUT=CHANGELOG.md -DOUTPUT=Changelog.cpp -DVERSION=1.15.0 -P GenerateChangelog.cmake
#
# Stops at the first line that is not understood. The newest entry is that of VERSION; versions and dates fall from entry
# to entry; every entry has a change; changes are plain text.
cmake_minimum_required(VERSION 3.25)

set(line_number 0)
macro(refuse reason)
  message(FATAL_ERROR "${INPUT}:${line_number}: ${reason}")
endmacro()

# What CMake's lists give a meaning to stands as control characters until the end.
string(ASCII 1 semicolon)
string(ASCII 2 open)
string(ASCII 3 close)
string(ASCII 4 backslash)
file(READ ${INPUT} text)
string(REPLACE ";" "${semicolon}" text "${text}")
string(REPLACE "[" "${open}" text "${text}")
string(REPLACE "]" "${close}" text "${text}")
string(REPLACE "\\" "${backslash}" text "${text}")
string(REPLACE "\n" ";" all_lines "${text}")

set(digit "[0-9]")
set(number "(0|[1-9][0-9]*)")
set(heading "^## ${open}(${number}\\.${number}\\.${number})${close} - \
(${digit}${digit}${digit}${digit}-(0[1-9]|1[0-2])-(0[1-9]|[12]${digit}|3[01]))$")

set(count 0)  # of entries
set(change "")
set(changes "")  # of the entry, as C++
set(change_count 0)
set(arrays "")
set(entries "")

macro(finish_change)
  if(NOT change STREQUAL "")
    if(change MATCHES "[`*]|${open}|${close}")
      refuse("a change is plain text, without markup: ${change}")
    endif()
    string(REPLACE "${backslash}" "\\\\" change "${change}")
    string(REPLACE "\"" "\\\"" change "${change}")
    string(REPLACE "${semicolon}" "\\073" change "${change}")
    string(APPEND changes "    \"${change}\",\n")
    math(EXPR change_count "${change_count} + 1")
    set(change "")
  endif()
endmacro()

macro(finish_entry)
  finish_change()
  if(count GREATER 0)
    if(change_count EQUAL 0)
      refuse("version ${version} has no change")
    endif()
    string(APPEND arrays "constexpr std::array<std::string_view, ${change_count}> changes${count}{\n${changes}};\n")
    string(APPEND entries "    {\"${version}\", \"${date}\", changes${count}},\n")
  endif()
  set(changes "")
  set(change_count 0)
endmacro()

foreach(line IN LISTS all_lines)
  math(EXPR line_number "${line_number} + 1")
  if(line MATCHES "^## ")
    finish_entry()
    if(NOT line MATCHES "${heading}")
      refuse("expected \"## [version] - year-month-day\"")
    endif()
    set(new_version ${CMAKE_MATCH_1})
    set(new_date ${CMAKE_MATCH_5})
    if(count EQUAL 0 AND NOT new_version VERSION_EQUAL VERSION)
      refuse("the newest entry is ${new_version}, and the program is ${VERSION}")
    elseif(count GREATER 0 AND NOT (new_version VERSION_LESS version AND new_date STRLESS date))
      refuse("${new_version} of ${new_date} is not before ${version} of ${date}")
    endif()
    set(version ${new_version})
    set(date ${new_date})
    math(EXPR count "${count} + 1")
  elseif(count EQUAL 0)
    continue()  # the introduction
  elseif(line MATCHES "^### (Added|Changed|Deprecated|Removed|Fixed|Security)$" OR line STREQUAL "")
    finish_change()
  elseif(line MATCHES "^- ([^ ].*)$")
    set(new_change "${CMAKE_MATCH_1}")
    finish_change()
    set(change "${new_change}")
  elseif(line MATCHES "^  ([^ ].*)$" AND NOT change STREQUAL "")
    string(APPEND change " ${CMAKE_MATCH_1}")
  else()
    refuse("neither a heading nor a change: ${line}")
  endif()
endforeach()
finish_entry()
if(count EQUAL 0)
  refuse("no entry at all")
endif()

file(
  WRITE ${OUTPUT}
  "// Made from CHANGELOG.md by cmake/GenerateChangelog.cmake.
#include \"ui/Changelog.h\"

#include <array>

namespace velmora {

namespace {

${arrays}
constexpr std::array<ChangelogEntry, ${count}> entries{{
${entries}}};

}  // namespace

constinit const std::span<const ChangelogEntry> changelog = entries;

}  // namespace velmora
")
