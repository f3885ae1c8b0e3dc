#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace velmora {

// For the texts that the libraries without a user interface hand up to one. UTF-8; any thread, once the program has
// installed its translations. `context` and `text` are literals: lupdate collects them.

/// The text in the user's language, or as it stands where nobody has translated it.
[[nodiscard]] std::string localized(const char* context, const char* text);

/// The form of the text that the language has for so many; "%n" becomes the number. `disambiguation` is null, or tells
/// apart what reads the same in English.
[[nodiscard]] std::string localizedCount(const char* context, const char* text, const char* disambiguation, int count);

/// The text with "%1" to "%9" replaced by the arguments, which are left as they are. More than there are arguments
/// stay.
[[nodiscard]] std::string filled(std::string_view text, std::initializer_list<std::string_view> arguments);

}  // namespace velmora
