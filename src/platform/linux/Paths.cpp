#include "platform/Paths.h"

#include <pwd.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <string>

namespace velmora {

namespace {

namespace fs = std::filesystem;

/// A directory that the environment names. A relative one does not count, as with all XDG variables.
std::optional<fs::path> directoryFrom(const char* variable) {
    const char* value = std::getenv(variable);
    if (value == nullptr || *value != '/') {
        return std::nullopt;
    }
    return fs::path(value);
}

fs::path homeDirectory() {
    if (const auto home = directoryFrom("HOME")) {
        return *home;
    }
    passwd entry{};
    passwd* found = nullptr;
    std::array<char, 16384> buffer{};
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        return found->pw_dir;
    }
    return "/";
}

/// Ours alone, and programs may run from it.
bool isFitForScripts(const fs::path& directory) {
    struct stat status {};
    if (::stat(directory.c_str(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != ::geteuid() ||
        (status.st_mode & 07777) != 0700) {
        return false;
    }
    struct statvfs mount {};
    return ::statvfs(directory.c_str(), &mount) == 0 && (mount.f_flag & ST_NOEXEC) == 0;
}

fs::path usualRuntimeDirectory() {
    return "/run/user/" + std::to_string(::getuid());
}

}  // namespace

Paths Paths::ofThisUser() {
    Paths paths;
    paths.home = homeDirectory();
    paths.applicationSupport = directoryFrom("XDG_DATA_HOME").value_or(paths.home / ".local/share");
    paths.library = directoryFrom("XDG_STATE_HOME").value_or(paths.home / ".local/state");
    paths.configuration = directoryFrom("XDG_CONFIG_HOME").value_or(paths.home / ".config");
    paths.largeTemporary = directoryFrom("TMPDIR").value_or("/tmp");

    const auto runtime = directoryFrom("XDG_RUNTIME_DIR");
    paths.temporary = runtime && isFitForScripts(*runtime) ? *runtime : paths.largeTemporary;
    paths.otherTemporaries = {runtime.value_or(usualRuntimeDirectory()), paths.largeTemporary, "/tmp"};
    paths.otherTemporaries.erase(paths.temporary);
    return paths;
}

}  // namespace velmora
