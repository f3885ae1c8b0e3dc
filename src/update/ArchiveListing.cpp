#include "update/ArchiveListing.h"

#include "base/Text.h"
#include "base/UniqueFd.h"
#include "update/ZipContent.h"
#include "update/ZipDirectory.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <string_view>
#include <system_error>

namespace velmora {

namespace {

constexpr std::size_t longestTarget = 1024;

using Kind = ArchiveEntry::Kind;

bool isPlainText(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~' && c != '\\'; });
}

bool isSafePath(std::string_view path) {
    const auto parts = split(path, '/');
    return isPlainText(path) && std::none_of(parts.begin(), parts.end(), [](std::string_view part) {
               return part.empty() || part == "." || part == "..";
           });
}

/// Only the front of a link may go up, and not out of the folder that the archive is expanded into: behind another
/// link ".." would lead elsewhere.
bool isSafeTarget(std::string_view path, std::string_view target) {
    if (!isPlainText(target) || target.front() == '/') {
        return false;
    }
    auto depth = std::count(path.begin(), path.end(), '/');
    bool goingUp = true;
    for (const auto part : split(target, '/')) {
        if (part == "..") {
            if (!goingUp || --depth < 0) {
                return false;
            }
        } else if (part != "." && !part.empty()) {
            goingUp = false;
        }
    }
    return true;
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return lower;
}

Error unsafe(std::string_view name) {
    return {"“" + std::string(name) + "” leaves its folder or is not a file, folder or link"};
}

/// The names of an archive as a file system sees them that does not tell letters' case apart.
class Names final {
public:
    /// False when the path is there already, or leads through something that is no folder.
    bool add(std::string_view path, Kind kind) {
        const auto lower = lowerCase(path);
        for (auto slash = lower.find('/'); slash != std::string::npos; slash = lower.find('/', slash + 1)) {
            const auto above = lower.substr(0, slash);
            if (leaves_.contains(above)) {
                return false;
            }
            folders_.insert(above);
        }
        if (kind == Kind::folder) {
            folders_.insert(lower);
            return !leaves_.contains(lower) && namedFolders_.insert(lower).second;
        }
        return !folders_.contains(lower) && leaves_.insert(lower).second;
    }

private:
    std::set<std::string> leaves_;
    std::set<std::string> folders_;  ///< also those that only stand in the paths of others
    std::set<std::string> namedFolders_;
};

/// None for what is neither file, folder nor link, or is called otherwise than it is.
bool determineKind(const ZipEntry& entry, bool hasSlash, Kind& kind) {
    const auto type = entry.unixMode & S_IFMT;
    kind = type == S_IFLNK ? Kind::link : hasSlash ? Kind::folder : Kind::file;
    const bool agrees = type == 0 || type == S_IFLNK || type == (hasSlash ? S_IFDIR : S_IFREG);
    return agrees && !(hasSlash && (kind == Kind::link || entry.size != 0));
}

Result<void, Error> addEntry(int archive, const ZipEntry& packed, Names& names, ArchiveListing& listing,
                             const Cancellation& cancellation) {
    const bool hasSlash = packed.name.ends_with('/');
    const auto path = packed.name.substr(0, packed.name.size() - (hasSlash ? 1 : 0));
    ArchiveEntry entry;
    if (!isSafePath(path) || !determineKind(packed, hasSlash, entry.kind) || !names.add(path, entry.kind)) {
        return unsafe(packed.name);
    }
    entry.size = entry.kind == Kind::file ? packed.size : 0;
    entry.target.resize(entry.kind == Kind::link ? longestTarget : 0);
    if (!verifyZipContent(archive, packed, entry.target, cancellation)) {
        return Error{"“" + packed.name + "” is damaged"};
    }
    if (entry.kind == Kind::link && (packed.size > longestTarget || !isSafeTarget(path, entry.target))) {
        return unsafe(packed.name);
    }
    listing.emplace(path, std::move(entry));
    return {};
}

}  // namespace

ArchiveLimits ArchiveLimits::forArchiveOf(std::uint64_t bytes) {
    constexpr std::uint64_t always = std::uint64_t{64} << 20;
    constexpr std::uint64_t atMost = std::uint64_t{8} << 30;
    constexpr std::uint64_t factor = 20;
    constexpr std::size_t mostEntries = 50000;
    return {.unpackedBytes = std::clamp(bytes * factor, always, atMost), .entries = mostEntries};
}

Result<ArchiveListing, Error> listArchive(const std::filesystem::path& archive, const ArchiveLimits& limits,
                                          const Cancellation& cancellation) {
    const UniqueFd file(::open(archive.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!file) {
        return Error{archive.string() + ": " + std::generic_category().message(errno)};
    }
    const auto entries = readZipDirectory(file.get(), limits.entries);
    if (!entries) {
        return entries.error();
    }
    std::uint64_t unpacked = 0;
    for (const auto& entry : *entries) {
        unpacked += entry.size;  // each below 4 GiB, and they are counted
    }
    if (unpacked > limits.unpackedBytes) {
        return Error{"it would unpack to " + std::to_string(unpacked) + " bytes"};
    }
    Names names;
    ArchiveListing listing;
    for (const auto& entry : *entries) {
        if (const auto added = addEntry(file.get(), entry, names, listing, cancellation); !added) {
            return added.error();
        }
    }
    return listing;
}

}  // namespace velmora
