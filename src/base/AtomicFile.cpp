#include "base/AtomicFile.h"

#include "base/UniqueFd.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr mode_t privateFileMode = 0600;
constexpr mode_t privateDirectoryMode = 0700;
constexpr mode_t permissionBits = 07777;
constexpr unsigned ownersBits = 0700;

Error systemError(const fs::path& path, int code) {
    return {path.string() + ": " + std::generic_category().message(code)};
}

/// Gives an own file its mode. Some file systems, such as shares on a network, refuse to change one; then a file that
/// lets nobody but the owner do more than it should is good enough.
bool setMode(int fd, mode_t mode) {
    struct stat status {};
    if (::fstat(fd, &status) != 0) {
        return false;
    }
    const unsigned excess = status.st_mode & permissionBits & ~unsigned{mode};
    return (status.st_mode & permissionBits) == mode || ::fchmod(fd, mode) == 0 || (excess & ~ownersBits) == 0;
}

/// Removes the temporary file unless the rename has happened.
class TemporaryFile final {
public:
    explicit TemporaryFile(const fs::path& target) : name_(target.string() + ".XXXXXX") {
        fd_.reset(::mkostemp(name_.data(), O_CLOEXEC));
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (fd_ && !renamed_) {
            ::unlink(name_.c_str());
        }
    }

    [[nodiscard]] bool isOpen() const { return static_cast<bool>(fd_); }

    [[nodiscard]] bool write(std::string_view bytes, mode_t mode) {
        while (!bytes.empty()) {
            const auto count = ::write(fd_.get(), bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) {
                continue;
            }
            if (count < 0) {
                return false;
            }
            bytes.remove_prefix(static_cast<std::size_t>(count));
        }
        return setMode(fd_.get(), mode) && ::fsync(fd_.get()) == 0;
    }

    [[nodiscard]] bool renameTo(const fs::path& target) {
        renamed_ = ::rename(name_.c_str(), target.c_str()) == 0;
        return renamed_;
    }

private:
    std::string name_;
    UniqueFd fd_;
    bool renamed_ = false;
};

void syncDirectory(const fs::path& directory) {
    const UniqueFd fd(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd) {
        ::fsync(fd.get());  // some file systems cannot sync a folder; the rename has happened all the same
    }
}

/// Where the bytes really stand: the end of a chain of symbolic links, also when nothing is there yet.
Result<fs::path, Error> resolveLinks(fs::path path) {
    constexpr int mostLinks = 40;
    for (int i = 0; i < mostLinks; ++i) {
        std::error_code error;
        const fs::path target = fs::read_symlink(path, error);
        if (error) {
            return path;
        }
        path = target.is_absolute() ? target : path.parent_path() / target;
    }
    return systemError(path, ELOOP);
}

}  // namespace

Result<void, Error> writeFileAtomically(const fs::path& path, std::string_view bytes) {
    const auto resolved = resolveLinks(path);
    if (!resolved) {
        return resolved.error();
    }
    const fs::path& target = *resolved;

    mode_t mode = privateFileMode;
    struct stat existing {};
    if (::stat(target.c_str(), &existing) == 0) {
        if (!S_ISREG(existing.st_mode)) {
            return systemError(target, S_ISDIR(existing.st_mode) ? EISDIR : EINVAL);
        }
        mode = existing.st_mode & permissionBits;
    }

    TemporaryFile temporary(target);
    if (!temporary.isOpen() || !temporary.write(bytes, mode) || !temporary.renameTo(target)) {
        return systemError(target, errno);
    }
    syncDirectory(target.has_parent_path() ? target.parent_path() : fs::path("."));
    return {};
}

Result<std::string, Error> readFile(const fs::path& path, std::size_t maximumSize) {
    const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!fd) {
        return systemError(path, errno);
    }
    struct stat status {};
    if (::fstat(fd.get(), &status) != 0) {
        return systemError(path, errno);
    }
    if (!S_ISREG(status.st_mode)) {
        return Error{path.string() + ": not a regular file"};
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    if (size > maximumSize) {
        return Error{path.string() + ": larger than " + std::to_string(maximumSize) + " bytes"};
    }

    std::string bytes(size + 1, '\0');  // one more, to notice a file that grew
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const auto count = ::read(fd.get(), bytes.data() + filled, bytes.size() - filled);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return systemError(path, errno);
        }
        if (count == 0) {
            break;
        }
        filled += static_cast<std::size_t>(count);
    }
    if (filled != size) {
        return Error{path.string() + ": changed while it was read"};
    }
    bytes.resize(size);
    return bytes;
}

Result<void, Error> createPrivateDirectory(const fs::path& path) {
    std::error_code error;
    if (fs::is_directory(path, error)) {
        return {};
    }
    if (path.has_parent_path() && path.parent_path() != path) {
        if (auto above = createPrivateDirectory(path.parent_path()); !above) {
            return above;
        }
    }
    if (::mkdir(path.c_str(), privateDirectoryMode) != 0 && errno != EEXIST) {
        return systemError(path, errno);
    }
    return {};
}

}  // namespace velmora
