# The changelog as the <releases> of an AppStream file. Wants TEMPLATE, the file in which @RELEASES@ stands for them.

set(RELEASES "")

macro(format_change)
  plain("${change}" escaped)
  string(REPLACE "&" "&amp;" escaped "${escaped}")
  string(REPLACE "<" "&lt;" escaped "${escaped}")
  string(REPLACE ">" "&gt;" escaped "${escaped}")
  string(REGEX REPLACE "https?://" "" escaped "${escaped}")  # AppStream's texts have no links
  string(APPEND changes "          <li>${escaped}</li>\n")
endmacro()

macro(format_entry)
  string(APPEND RELEASES "    <release version=\"${version}\" date=\"${date}\">\n      <description>\n        <ul>\n${changes}"
                         "        </ul>\n      </description>\n    </release>\n")
endmacro()

macro(format_file)
  configure_file(${TEMPLATE} ${OUTPUT} @ONLY)
endmacro()
