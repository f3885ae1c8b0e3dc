#pragma once

#include <QString>

#include <cstdint>
#include <string_view>

namespace velmora {

/// Who draws the menu decides what its text may hold.
enum class MenuText : std::uint8_t {
    widget,   ///< Qt or the system: "&" marks a mnemonic, "&&" is an ampersand
    exported  ///< another program, over D-Bus: "_" marks a mnemonic, "__" is an underscore
};

/// Any UTF-8 text as one line, for the screen: line breaks and control characters become spaces.
[[nodiscard]] QString oneLine(std::string_view text);

/// A host's name as one line. A name without anything visible reads "Unnamed".
[[nodiscard]] QString displayName(std::string_view name);

/// The text of a menu entry that reads as the host's name does, without a mnemonic. A very long name is cut in the
/// middle.
[[nodiscard]] QString menuLabel(std::string_view name, MenuText drawnAs);

}  // namespace velmora
