#include "update/WorkArea.h"

#include "base/Uuid.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

Error systemError(const fs::path& path, int code) {
    return {path.string() + ": " + std::generic_category().message(code)};
}

/// Whether other users can rename what is ours in this folder.
bool isOpenToOthers(const struct stat& folder) {
    const bool foreign = folder.st_uid != ::geteuid() && folder.st_uid != 0;
    const bool shared = (folder.st_mode & (S_IWGRP | S_IWOTH)) != 0 && (folder.st_mode & S_ISVTX) == 0;
    return foreign || shared;
}

/// An archive may hold folders that even their owner cannot change.
void makeRemovable(const fs::path& folder) {
    std::error_code ignored;
    for (fs::recursive_directory_iterator items(folder, ignored);
         !ignored && items != fs::recursive_directory_iterator(); items.increment(ignored)) {
        if (items->symlink_status(ignored).type() == fs::file_type::directory) {
            fs::permissions(items->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
        }
    }
}

}  // namespace

Result<WorkArea, Error> WorkArea::create(const fs::path& temporaryFolder) {
    struct stat above {};
    if (::stat(temporaryFolder.c_str(), &above) != 0) {
        return systemError(temporaryFolder, errno);
    }
    if (isOpenToOthers(above)) {
        return Error{temporaryFolder.string() + ": other users can change what is in this folder"};
    }
    const auto path = temporaryFolder / ("VelmoraUpdate-" + Uuid::random().toString());
    if (::mkdir(path.c_str(), S_IRWXU) != 0) {
        return systemError(path, errno);
    }
    WorkArea area(path);
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != ::geteuid() ||
        (status.st_mode & 0777) != S_IRWXU) {
        return systemError(path, EACCES);
    }
    return area;
}

WorkArea::WorkArea(WorkArea&& other) noexcept : path_(std::exchange(other.path_, {})) {}

WorkArea::~WorkArea() {
    if (!path_.empty()) {
        makeRemovable(path_);
        std::error_code ignored;  // what cannot be removed stays in the temporary folder
        fs::remove_all(path_, ignored);
    }
}

}  // namespace velmora
