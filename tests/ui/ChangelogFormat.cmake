# Gives GenerateChangelog.cmake changelogs, good and bad, and looks at what it says to them.
cmake_minimum_required(VERSION 3.25)
set(script ${CMAKE_CURRENT_LIST_DIR}/../../cmake/GenerateChangelog.cmake)
string(RANDOM LENGTH 12 suffix)
set(folder $ENV{TMPDIR})
if(NOT folder)
  set(folder /tmp)
endif()
set(folder ${folder}/velmora-changelog-${suffix})
file(MAKE_DIRECTORY ${folder})
set(failed FALSE)

# expect(refused|accepted reason text)
function(expect outcome reason text)
  file(WRITE ${folder}/CHANGELOG.md "${text}")
  execute_process(
    COMMAND ${CMAKE_COMMAND} -DFORMAT=cpp -DINPUT=${folder}/CHANGELOG.md -DOUTPUT=${folder}/out.cpp -DVERSION=1.1.0 -P ${script}
    RESULT_VARIABLE result
    OUTPUT_QUIET ERROR_VARIABLE said)
  if(result EQUAL 0)
    set(got accepted)
  else()
    set(got refused)
  endif()
  if(NOT got STREQUAL outcome OR (outcome STREQUAL refused AND NOT said MATCHES "CHANGELOG.md:[0-9]+: "))
    message("${reason}: expected it to be ${outcome}, it was ${got}: ${said}")
    set(failed TRUE PARENT_SCOPE)
  endif()
endfunction()

set(good "# Changelog\n\nWords.\n\n## [1.1.0] - 2026-02-01\n\n### Added\n\n- One\n  and more.\n- Two; \"three\" \\ four.\n\n\
## [1.0.0] - 2026-01-31\n\n- First.\n")
expect(accepted "well formed" "${good}")

# expect_in(file text…): that the file holds each of the texts.
function(expect_in file)
  file(READ ${folder}/${file} made)
  foreach(words IN LISTS ARGN)
    string(FIND "${made}" "${words}" position)
    if(position EQUAL -1)
      message("not written to ${file}: ${words}")
      set(failed TRUE PARENT_SCOPE)
    endif()
  endforeach()
endfunction()
expect_in(out.cpp "\"One and more.\"" "\"Two\\073 \\\"three\\\" \\\\ four.\"" "{\"1.0.0\", \"2026-01-31\", changes2}")

# What packages hold, from the same text with a longer change; the dates are a leap day and the day after it.
string(REPLACE "- First.\n" "- First <b>&</b> a change that is longer than a line of Debian's may be; it goes on.\n- At http://a.example/b.\n" text "${good}")
string(REPLACE "2026-02-01" "2024-03-01" text "${text}")
string(REPLACE "2026-01-31" "2024-02-29" text "${text}")
file(WRITE ${folder}/CHANGELOG.md "${text}")
file(WRITE ${folder}/template "<releases>\n@RELEASES@</releases>\n")
foreach(format IN ITEMS debian appstream)
  execute_process(
    COMMAND ${CMAKE_COMMAND} -DFORMAT=${format} -DINPUT=${folder}/CHANGELOG.md -DOUTPUT=${folder}/${format} -DVERSION=1.1.0
            -DPACKAGE=velmora -DREVISION=1 "-DMAINTAINER=A B <a@b.example>" -DTEMPLATE=${folder}/template -P ${script}
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(WRITE ${folder}/debian.expected "velmora (1.1.0-1) unstable; urgency=medium

  * One and more.
  * Two; \"three\" \\ four.

 -- A B <a@b.example>  Fri, 01 Mar 2024 12:00:00 +0000

velmora (1.0.0-1) unstable; urgency=medium

  * First <b>&</b> a change that is longer than a line of Debian's may be; it
    goes on.
  * At http://a.example/b.

 -- A B <a@b.example>  Thu, 29 Feb 2024 12:00:00 +0000
")
execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${folder}/debian ${folder}/debian.expected RESULT_VARIABLE differs)
if(differs)
  file(READ ${folder}/debian made)
  message("Debian's changelog is\n${made}")
  set(failed TRUE)
endif()
expect_in(appstream "<releases>\n    <release version=\"1.1.0\" date=\"2024-03-01\">" "<li>One and more.</li>"
          " \"three\" \\ four.</li>" "<li>First &lt;b&gt;&amp;&lt;/b&gt; a change" "<li>At a.example/b.</li>" "</release>\n</releases>")

function(expect_refusal_with reason find replacement)
  string(REPLACE "${find}" "${replacement}" text "${good}")
  expect(refused "${reason}" "${text}")
  set(failed ${failed} PARENT_SCOPE)
endfunction()
expect(refused "empty" "")
expect(refused "no entry" "# Changelog\n\nWords.\n")
expect_refusal_with("a newest entry of another version" "[1.1.0]" "[1.2.0]")
expect_refusal_with("versions that rise" "[1.0.0]" "[1.1.1]")
expect_refusal_with("a version twice" "[1.0.0]" "[1.1.0]")
expect_refusal_with("a version of two numbers" "[1.0.0]" "[1.0]")
expect_refusal_with("a leading zero" "[1.0.0]" "[1.00.0]")
expect_refusal_with("the same date twice" "2026-01-31" "2026-02-01")
expect_refusal_with("a month of one digit" "2026-01-31" "2026-1-31")
expect_refusal_with("a month that is none" "2026-01-31" "2026-13-31")
expect_refusal_with("a day that is none" "2026-01-31" "2026-01-32")
expect_refusal_with("no date" " - 2026-01-31" "")
expect_refusal_with("an entry without a change" "- First.\n" "")
expect_refusal_with("an unknown heading" "### Added" "### Misc")
expect_refusal_with("text that is no change" "- First." "First.")
expect_refusal_with("a continuation of nothing" "- First." "  First.")
expect_refusal_with("a change without words" "- First." "- ")
expect_refusal_with("markup" "- First." "- `First`.")
expect_refusal_with("a link" "- First." "- [First](x).")

file(REMOVE_RECURSE ${folder})
if(failed)
  message(FATAL_ERROR "see above")
endif()
