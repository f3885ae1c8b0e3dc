#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// All text is UTF-8. White space is what Unicode calls a space separator, and the tab; newlines are LF, VT, FF, CR,
// NEL and the two Unicode separators. Bytes that are not UTF-8 belong to neither.

[[nodiscard]] bool isValidUtf8(std::string_view text);

/// Whether the first character stands for a number, in any script: a digit, a fraction, an ideograph of one.
[[nodiscard]] bool startsWithNumber(std::string_view text);

/// Without white space at both ends; newlines stay.
[[nodiscard]] std::string_view trimWhitespace(std::string_view text);

/// Without white space and newlines at both ends.
[[nodiscard]] std::string_view trimWhitespaceAndNewlines(std::string_view text);

/// The pieces between separators, empty ones included; one piece for an empty text.
[[nodiscard]] std::vector<std::string_view> split(std::string_view text, char separator);

/// The pieces with the separator between each two.
[[nodiscard]] std::string join(const std::vector<std::string>& pieces, std::string_view separator);

}  // namespace velmora
