#pragma once

#include "model/SSHHost.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// Reads the host patterns of a proxy auto-configuration script that somebody else wrote.
namespace velmora::PacImporter {

/// A pattern and the port of the SOCKS proxy on this machine that the script sends it to.
struct Entry {
    std::string pattern;
    std::int64_t port = 0;

    bool operator==(const Entry&) const = default;
};

using ArrayTable = std::unordered_map<std::string, std::vector<std::string>>;

/// What to tell the user after an import.
struct Outcome {
    std::string message;
    std::string informativeText;

    bool operator==(const Outcome&) const = default;
};

inline constexpr std::size_t maximumFileSize = std::size_t{16} * 1024 * 1024;

/// How many bytes of entries loops over arrays give at most: each loop gives all items of its array once more, so that
/// a file could ask for more memory than there is.
inline constexpr std::size_t maximumArraySize = 4 * maximumFileSize;

/// The script in a file. Empty when the file cannot be read, is no UTF-8, or is larger than `maximumFileSize` bytes.
[[nodiscard]] std::string readScript(const std::filesystem::path& path);

/// What the script sends to a SOCKS5 proxy on 127.0.0.1 or localhost, each pattern and port once: first by loops over
/// arrays, then by conditions. Lines that begin with "//" do not count; block comments do.
[[nodiscard]] std::vector<Entry> parse(std::string_view content);

/// Loops over an array variable that return a proxy. What goes beyond `maximumArraySize` is left out.
[[nodiscard]] std::vector<Entry> parseArrayStyle(std::string_view content);

/// Conditions that return a proxy, also over several lines. Of several conditions in a row the last one counts.
[[nodiscard]] std::vector<Entry> parseInlineStyle(std::string_view content);

/// The items in double quotes of each array variable, by the variable's name; its last declaration holds.
[[nodiscard]] ArrayTable extractArrays(std::string_view content);

/// Adds each entry's pattern to every Dynamic rule on its port, enabled or not, that does not hold it yet. Returns the
/// number of additions; a rule without any is left as it is.
std::size_t addPatterns(const std::vector<Entry>& entries, std::vector<SSHHost>& hosts);

/// The words for an import that found these entries and made so many additions.
[[nodiscard]] Outcome outcome(const std::vector<Entry>& entries, std::size_t additions);

}  // namespace velmora::PacImporter
