#include "tunnel/AskpassScript.h"

#include "base/Uuid.h"

#include <QByteArray>
#include <QByteArrayView>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view namePrefix = "velmora-askpass-";
constexpr std::string_view nameSuffix = ".sh";
constexpr mode_t scriptMode = 0700;

struct CloseFolder {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

bool isScriptName(std::string_view name) {
    if (!name.starts_with(namePrefix) || !name.ends_with(nameSuffix)) {
        return false;
    }
    name.remove_prefix(namePrefix.size());
    name.remove_suffix(nameSuffix.size());
    return Uuid::parse(name).has_value();
}

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(fd, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

/// An open script file that a program can run: the kernel refuses while somebody holds it open for writing, so the lock
/// moves to a descriptor that only reads. Nothing when any step fails.
UniqueFd writeLockedScript(const fs::path& path, std::string_view text) {
    const UniqueFd writer(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, scriptMode));
    if (!writer) {
        return {};
    }
    UniqueFd lock(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC));
    const bool isReady = lock && ::flock(lock.get(), LOCK_SH) == 0 && ::fchmod(writer.get(), scriptMode) == 0 &&
                         writeAll(writer.get(), text);
    if (!isReady) {
        ::unlink(path.c_str());
        return {};
    }
    return lock;
}

void removeIfAbandoned(const fs::path& path) {
    const UniqueFd fd(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!fd || ::fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid()) {
        return;
    }
    const bool isBeingMade = status.st_size == 0;  // and holds no password yet
    if (!isBeingMade && ::flock(fd.get(), LOCK_EX | LOCK_NB) == 0) {
        ::unlink(path.c_str());
    }
}

}  // namespace

AskpassScript::AskpassScript(fs::path path, UniqueFd lock) : path_(std::move(path)), lock_(std::move(lock)) {}

AskpassScript::AskpassScript(AskpassScript&& other) noexcept
    : path_(std::exchange(other.path_, {})), lock_(std::move(other.lock_)) {}

AskpassScript& AskpassScript::operator=(AskpassScript&& other) noexcept {
    std::swap(path_, other.path_);
    std::swap(lock_, other.lock_);
    return *this;
}

AskpassScript::~AskpassScript() {
    if (!path_.empty()) {
        ::unlink(path_.c_str());
    }
}

std::optional<AskpassScript> writeAskpassScript(const fs::path& directory, std::string_view password) {
    auto path = directory / (std::string(namePrefix) + Uuid::random().toString() + std::string(nameSuffix));
    auto lock = writeLockedScript(path, askpassScriptText(password));
    if (!lock) {
        return std::nullopt;
    }
    return AskpassScript(std::move(path), std::move(lock));
}

std::string askpassScriptText(std::string_view password) {
    const auto encoded = QByteArray::fromRawData(password.data(), static_cast<qsizetype>(password.size())).toBase64();
    return "#!/bin/sh\nprintf '%s' '" + encoded.toStdString() + "' | /usr/bin/base64 -d && printf '\\n'\n";
}

void removeAbandonedAskpassScripts(const fs::path& directory) {
    // Names alone: in a temporary folder with ten thousand files, a path for each of them is a tenth of the start.
    const std::unique_ptr<DIR, CloseFolder> folder(::opendir(directory.c_str()));
    while (folder) {
        // cppcheck-suppress readdirCalled  ; a stream of one thread's own is safe
        const dirent* entry = ::readdir(folder.get());
        if (entry == nullptr) {
            return;
        }
        if (isScriptName(static_cast<const char*>(entry->d_name))) {
            removeIfAbandoned(directory / static_cast<const char*>(entry->d_name));
        }
    }
}

}  // namespace velmora
