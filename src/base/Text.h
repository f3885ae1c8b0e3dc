#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// All text is UTF-8. White space is what Unicode calls a space separator, and the tab; newlines are LF, VT, FF, CR,
// NEL and the two Unicode separators. Bytes that are not UTF-8 belong to neither. Views that are returned point into
// the text that was passed.

[[nodiscard]] bool isValidUtf8(std::string_view text);
[[nodiscard]] bool isAscii(std::string_view text);

/// Without white space at both ends; newlines stay.
[[nodiscard]] std::string_view trimWhitespace(std::string_view text);

/// Without white space and newlines at both ends.
[[nodiscard]] std::string_view trimWhitespaceAndNewlines(std::string_view text);

/// The pieces between separators, empty ones included; one piece for an empty text.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);

/// The pieces between newlines, empty ones included; one piece for an empty text. CR LF ends a line once.
[[nodiscard]] std::vector<std::string_view> lines(std::string_view text);

/// The items of a text that holds one item per line: the lines without white space at both ends, empty ones dropped.
[[nodiscard]] std::vector<std::string_view> listItems(std::string_view text);

/// The pieces with the separator between each two.
[[nodiscard]] std::string join(const std::vector<std::string>& pieces, std::string_view separator);

/// The characters as a reader counts them: grapheme clusters. A letter with its accents is one, and so is CR LF.
[[nodiscard]] std::vector<std::string_view> characters(std::string_view text);
[[nodiscard]] std::size_t characterCount(std::string_view text);

/// Whether a character (one of those above) is a number to Unicode: a digit of any script, a fraction, a numeral.
[[nodiscard]] bool isNumeric(std::string_view character);

/// In lower case by Unicode's rules, the same in every locale.
[[nodiscard]] std::string lowercased(std::string_view text);

}  // namespace velmora
