# The changelog as a source file of the program.

set(arrays "")
set(entries "")

macro(format_change)
  string(REPLACE "${backslash}" "\\\\" change "${change}")
  string(REPLACE "\"" "\\\"" change "${change}")
  string(REPLACE "${semicolon}" "\\073" change "${change}")
  string(APPEND changes "    \"${change}\",\n")
endmacro()

macro(format_entry)
  string(APPEND arrays "constexpr std::array<std::string_view, ${change_count}> changes${count}{\n${changes}};\n")
  string(APPEND entries "    {\"${version}\", \"${date}\", changes${count}},\n")
endmacro()

macro(format_file)
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
endmacro()
