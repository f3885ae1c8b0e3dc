# Writes the list of changes that the About box shows, or one that a package holds, from the changelog.
#
#   cmake -DFORMAT=cpp -DINPUT=CHANGELOG.md -DOUTPUT=Changelog.cpp -DVERSION=1.15.0 -P GenerateChangelog.cmake
#
# FORMAT is one of the files in changelog/; each says what it makes and what else it wants to know.
# Stops at the first line that is not understood. The newest entry is that of VERSION; versions and dates fall from entry
# to entry; every entry has a change; changes are plain text.
cmake_minimum_required(VERSION 3.25)

# What a format defines: format_change() appends the text `change`, format_entry() the entry of `version` and `date`, number
# `count`, with its `changes`; format_file() writes OUTPUT. Texts hold the control characters below; plain() returns them as
# they were.
include(${CMAKE_CURRENT_LIST_DIR}/changelog/${FORMAT}.cmake)

set(line_number 0)
macro(refuse reason)
  message(FATAL_ERROR "${INPUT}:${line_number}: ${reason}")
endmacro()

# What CMake's lists give a meaning to stands as control characters until the end.
string(ASCII 1 semicolon)
string(ASCII 2 open)
string(ASCII 3 close)
string(ASCII 4 backslash)
function(plain text result)
  string(REPLACE "${semicolon}" ";" text "${text}")
  string(REPLACE "${backslash}" "\\" text "${text}")
  set(${result} "${text}" PARENT_SCOPE)
endfunction()
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
set(changes "")  # of the entry, in the format
set(change_count 0)

macro(finish_change)
  if(NOT change STREQUAL "")
    if(change MATCHES "[`*]|${open}|${close}")
      refuse("a change is plain text, without markup: ${change}")
    endif()
    format_change()
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
    format_entry()
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
format_file()
