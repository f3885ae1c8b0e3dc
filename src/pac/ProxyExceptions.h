#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

// The hosts that bypass every proxy: one text with one pattern per line, a host name, an address or a glob.

/// The patterns of the text, trimmed, as they were written: in order, in their case, repeats included.
[[nodiscard]] std::vector<std::string> parseExceptions(std::string_view text);

/// The bare host, in lower case, of what a user typed or pasted: scheme, user, port, path, query and fragment go.
/// Wildcards stay, and so does what only looks like a port. Empty when nothing is left.
[[nodiscard]] std::string normalizeExceptionPattern(std::string_view entry);

/// The text with each entry normalised, without empty ones and repeats, first occurrence first.
[[nodiscard]] std::string normalizeExceptions(std::string_view text);

/// The text with the normalised entry at the end; nothing when there is nothing to add. What the text holds already is
/// compared as it was written, case and all.
[[nodiscard]] std::optional<std::string> addProxyException(std::string_view text, std::string_view entry);

/// The patterns that a script sends DIRECT by lines in the shape of the generated ones, each once, in order. Lines that
/// are commented out do not count.
[[nodiscard]] std::vector<std::string> directPatterns(std::string_view pac);

}  // namespace velmora
