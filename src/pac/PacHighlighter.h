#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

/// Tells which parts of a proxy auto-configuration script an editor shows in which colour.
namespace velmora::PacHighlighter {

enum class Kind : std::uint8_t { keyword, builtIn, string, comment };

/// Position and length in UTF-16 code units, as in a QString or a QTextDocument.
struct Range {
    std::size_t start = 0;
    std::size_t length = 0;
    Kind kind = Kind::keyword;

    bool operator==(const Range&) const = default;
};

/// The ranges in order; none is empty, none overlaps another, and neighbours of one kind come as one. What is in none
/// has the plain colour. Lines end in LF, as in QTextDocument::toPlainText().
///
/// A comment wins over all else, also inside a string, and a string wins over the words in it. Takes time in
/// proportion to the text, whatever it holds.
[[nodiscard]] std::vector<Range> highlight(std::u16string_view script);

}  // namespace velmora::PacHighlighter
