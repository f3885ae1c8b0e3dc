#pragma once

#include "base/Result.h"

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace velmora {

/// What a seal's list says about one file or symbolic link.
struct SealedItem {
    enum class Kind { file, link };

    Kind kind = Kind::file;
    std::string sha256;  ///< of a file's bytes, or of the text of a link

    bool operator==(const SealedItem&) const = default;
};

/// By path within the bundle.
using SealedItems = std::map<std::string, SealedItem>;

/// Where the seal is within a bundle.
inline constexpr std::string_view sealListPath = "Contents/_CodeSignature/files.sha256";
inline constexpr std::string_view sealSignaturePath = "Contents/_CodeSignature/files.sha256.sig";

/// Reads a list: lines of 64 lower-case hexadecimal digits, a space, a space (file) or an @ (link), and the path,
/// sorted by the bytes of the path. Anything else fails.
Result<SealedItems, Error> decodeSealList(std::string_view text);

/// Compares a bundle with the list. What is missing, changed or not in the list fails; so does a link that leaves the
/// bundle, and anything that is neither file, folder nor link. The error names the first such path.
Result<void, Error> compareWithSeal(const std::filesystem::path& bundle, const SealedItems& items);

}  // namespace velmora
