#include "platform/Paths.h"

#include <limits.h>
#include <pwd.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace velmora {

namespace {

namespace fs = std::filesystem;

fs::path homeDirectory() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && *home == '/') {
        return home;
    }
    const passwd* entry = ::getpwuid(::getuid());
    return entry != nullptr ? fs::path(entry->pw_dir) : fs::path("/");
}

/// The user's own temporary directory; nobody else may look into it.
fs::path temporaryDirectory() {
    std::array<char, PATH_MAX> buffer{};
    const std::size_t length = ::confstr(_CS_DARWIN_USER_TEMP_DIR, buffer.data(), buffer.size());
    if (length > 0 && length <= buffer.size()) {
        return buffer.data();
    }
    const char* directory = std::getenv("TMPDIR");
    return directory != nullptr && *directory == '/' ? directory : "/tmp";
}

}  // namespace

Paths Paths::ofThisUser() {
    Paths paths;
    paths.home = homeDirectory();
    paths.library = paths.home / "Library";
    paths.applicationSupport = paths.library / "Application Support";
    paths.configuration = paths.library / "Preferences";
    paths.temporary = temporaryDirectory();
    paths.largeTemporary = paths.temporary;
    return paths;
}

}  // namespace velmora
