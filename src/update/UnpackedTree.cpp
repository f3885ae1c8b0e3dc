#include "update/UnpackedTree.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;
using Kind = ArchiveEntry::Kind;

constexpr mode_t writableByOthers = S_IWGRP | S_IWOTH;
constexpr mode_t permissionBits = S_IRWXU | S_IRWXG | S_IRWXO;

/// A folder may be there because of what is in it.
bool isListedFolder(const std::string& path, const ArchiveListing& listing) {
    const auto entry = listing.lower_bound(path);
    if (entry != listing.end() && entry->first == path) {
        return entry->second.kind == Kind::folder;
    }
    const auto below = listing.lower_bound(path + "/");
    return below != listing.end() && below->first.starts_with(path + "/");
}

bool isListed(const fs::path& item, const std::string& path, const struct stat& status, const ArchiveListing& listing) {
    if (S_ISDIR(status.st_mode)) {
        return isListedFolder(path, listing);
    }
    const auto entry = listing.find(path);
    if (entry == listing.end() || status.st_nlink != 1) {
        return false;
    }
    if (S_ISLNK(status.st_mode)) {
        std::error_code error;
        return entry->second.kind == Kind::link && fs::read_symlink(item, error) == entry->second.target;
    }
    return S_ISREG(status.st_mode) && entry->second.kind == Kind::file &&
           static_cast<std::uint64_t>(status.st_size) == entry->second.size;
}

bool restrictRights(const fs::path& item, const struct stat& status) {
    if (S_ISLNK(status.st_mode)) {
        return true;
    }
    const mode_t needed = S_ISDIR(status.st_mode) ? S_IRWXU : S_IRUSR;
    return ::chmod(item.c_str(), (status.st_mode & permissionBits & ~writableByOthers) | needed) == 0;
}

}  // namespace

Result<void, Error> secureUnpackedTree(const fs::path& folder, const ArchiveListing& listing) {
    std::error_code error;
    fs::recursive_directory_iterator items(folder, error);
    for (; !error && items != fs::recursive_directory_iterator(); items.increment(error)) {
        const auto& item = items->path();
        const auto path = item.lexically_relative(folder).string();
        struct stat status {};
        if (::lstat(item.c_str(), &status) != 0 || status.st_uid != ::geteuid() ||
            !isListed(item, path, status, listing)) {
            return Error{"“" + path + "” is not what the archive lists"};
        }
        if (!restrictRights(item, status)) {
            return Error{item.string() + ": " + std::generic_category().message(errno)};
        }
    }
    if (error) {
        return Error{folder.string() + ": " + error.message()};
    }
    return {};
}

std::optional<fs::path> findBundle(const fs::path& folder) {
    std::optional<fs::path> first;
    std::error_code error;
    for (fs::directory_iterator items(folder, error); !error && items != fs::directory_iterator();
         items.increment(error)) {
        // A link is no bundle: moved to another place it would lead nowhere, or somewhere else.
        const bool isFolder = items->symlink_status(error).type() == fs::file_type::directory;
        if (isFolder && items->path().extension() == ".app" && (!first || items->path() < *first)) {
            first = items->path();
        }
    }
    return first;
}

}  // namespace velmora
