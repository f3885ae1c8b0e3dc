#include "platform/linux/BundleSeal.h"

#include "base/Sha256.h"
#include "base/Text.h"

#include <algorithm>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t digestLength = 64;

bool isDigest(std::string_view text) {
    return text.size() == digestLength && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

/// Whether a link's text, followed from the folder of the link, stays below the bundle. Only the front may go up:
/// behind another link ".." would lead elsewhere.
bool staysInside(const fs::path& linkPath, const fs::path& target) {
    if (target.is_absolute() || target.empty()) {
        return false;
    }
    const auto above = linkPath.parent_path();
    auto depth = std::distance(above.begin(), above.end());
    bool goingUp = true;
    for (const auto& part : target) {
        if (part == "..") {
            if (!goingUp || --depth < 0) {
                return false;
            }
        } else if (part != ".") {
            goingUp = false;
        }
    }
    return true;
}

Result<SealedItem, Error> examine(const fs::directory_entry& entry, const fs::path& path) {
    std::error_code error;
    const auto status = entry.symlink_status(error);
    if (!error && fs::is_symlink(status)) {
        const auto target = fs::read_symlink(entry.path(), error);
        if (error || !staysInside(path, target)) {
            return Error{path.string() + ": link leaves the bundle"};
        }
        return SealedItem{SealedItem::Kind::link, sha256(target.string())};
    }
    if (error || !fs::is_regular_file(status)) {
        return Error{path.string() + ": not a file"};
    }
    auto digest = sha256OfFile(entry.path(), Cancellation());
    if (!digest) {
        return digest.error();
    }
    return SealedItem{SealedItem::Kind::file, std::move(*digest)};
}

Result<void, Error> compareItem(const fs::directory_entry& entry, const fs::path& path, SealedItems& left) {
    const auto sealed = left.find(path.string());
    if (sealed == left.end()) {
        return Error{path.string() + ": file added"};
    }
    const auto found = examine(entry, path);
    if (!found) {
        return found.error();
    }
    if (*found != sealed->second) {
        return Error{path.string() + ": file changed"};
    }
    left.erase(sealed);
    return {};
}

}  // namespace

Result<SealedItems, Error> decodeSealList(std::string_view text) {
    if (text.empty() || text.back() != '\n') {
        return Error{"the list of files is cut off"};
    }
    text.remove_suffix(1);
    SealedItems items;
    for (const auto line : split(text, '\n')) {
        constexpr std::size_t pathStart = digestLength + 2;
        const bool wellFormed = line.size() > pathStart && isDigest(line.substr(0, digestLength)) &&
                                line[digestLength] == ' ' &&
                                (line[digestLength + 1] == ' ' || line[digestLength + 1] == '@');
        if (!wellFormed) {
            return Error{"the list of files is malformed"};
        }
        const std::string path(line.substr(pathStart));
        if (!items.empty() && items.rbegin()->first >= path) {
            return Error{"the list of files is not sorted"};
        }
        const auto kind = line[digestLength + 1] == '@' ? SealedItem::Kind::link : SealedItem::Kind::file;
        items.emplace_hint(items.end(), path, SealedItem{kind, std::string(line.substr(0, digestLength))});
    }
    return items;
}

Result<void, Error> compareWithSeal(const fs::path& bundle, const SealedItems& items) {
    SealedItems left = items;
    std::error_code error;
    fs::recursive_directory_iterator entries(bundle, error);
    for (; !error && entries != fs::recursive_directory_iterator(); entries.increment(error)) {
        const auto path = entries->path().lexically_relative(bundle);
        const auto type = entries->symlink_status(error).type();
        if (error) {
            break;
        }
        const bool isSeal = type == fs::file_type::regular && (path == sealListPath || path == sealSignaturePath);
        if (isSeal || type == fs::file_type::directory) {
            continue;
        }
        if (auto compared = compareItem(*entries, path, left); !compared) {
            return compared;
        }
    }
    if (error) {
        return Error{bundle.string() + ": " + error.message()};
    }
    if (!left.empty()) {
        return Error{left.begin()->first + ": file missing"};
    }
    return {};
}

}  // namespace velmora
