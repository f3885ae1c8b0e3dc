#include "FaultyFiles.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::faults {
namespace {

struct State {
    bool armed = false;
    Fault fault = Fault::none;
    long operation = 0;
    long count = 0;
    bool diskFull = false;            ///< a short write was reported
    std::optional<mode_t> fixedMode;  ///< of every file
    std::string below;
    std::vector<int> descriptors;  ///< of files below the folder
};

State& state() {
    static State instance;
    return instance;
}

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

bool isWatched(std::string_view path) {
    return state().armed && path.starts_with(state().below);
}

bool isWatched(int descriptor) {
    const auto& all = state().descriptors;
    return state().armed && std::find(all.begin(), all.end(), descriptor) != all.end();
}

[[noreturn]] void die() {
    ::kill(::getpid(), SIGKILL);
    std::abort();
}

int watched(int descriptor) {
    if (descriptor >= 0) {
        state().descriptors.push_back(descriptor);
    }
    return descriptor;
}

/// Runs one operation, or lets it fail.
template <typename Operation>
auto attempt(Operation operation) -> decltype(operation()) {
    State& now = state();
    const bool isMeant = ++now.count == now.operation;
    if (!isMeant) {
        return operation();
    }
    switch (now.fault) {
        case Fault::ioError:
            errno = EIO;
            return -1;
        case Fault::noSpace:
            errno = ENOSPC;
            return -1;
        case Fault::readOnly:
            errno = EROFS;
            return -1;
        case Fault::killBefore:
            die();
        case Fault::killAfter:
        case Fault::killHalfway:
            operation();
            die();
        default:
            return operation();
    }
}

ssize_t attemptWrite(int descriptor, const void* bytes, size_t size) {
    const auto write = real<ssize_t(int, const void*, size_t)>("write");
    State& now = state();
    if (now.diskFull) {
        errno = ENOSPC;
        return -1;
    }
    const bool isHalf = now.fault == Fault::shortWrite || now.fault == Fault::killHalfway;
    if (!isHalf || now.count + 1 != now.operation) {
        return attempt([&] { return write(descriptor, bytes, size); });
    }
    ++now.count;
    const ssize_t written = write(descriptor, bytes, size / 2);
    if (now.fault == Fault::killHalfway) {
        die();
    }
    now.diskFull = true;
    return written;
}

}  // namespace

void arm(const std::filesystem::path& below, Fault fault, long operation) {
    state() = {.armed = true, .fault = fault, .operation = operation, .fixedMode = {}, .below = below.string()};
}

void armFixedMode(const std::filesystem::path& below, mode_t mode) {
    state() = {.armed = true, .fixedMode = mode, .below = below.string()};
}

long disarm() {
    const long count = state().count;
    state() = {};
    return count;
}

}  // namespace velmora::faults

using namespace velmora::faults;

extern "C" {

int open(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, unsigned) : 0U;
    va_end(rest);
    const auto next = real<int(const char*, int, ...)>("open");
    return isWatched(path) ? watched(attempt([&] { return next(path, flags, mode); })) : next(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list rest;
    va_start(rest, flags);
    const auto mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(rest, unsigned) : 0U;
    va_end(rest);
    const auto next = real<int(const char*, int, ...)>("open64");
    return isWatched(path) ? watched(attempt([&] { return next(path, flags, mode); })) : next(path, flags, mode);
}

int mkostemp(char* name, int flags) {
    const auto next = real<int(char*, int)>("mkostemp");
    if (!isWatched(name)) {
        return next(name, flags);
    }
    const int descriptor = watched(attempt([&] { return next(name, flags); }));
    if (descriptor >= 0 && state().fixedMode) {
        real<int(int, mode_t)>("fchmod")(descriptor, *state().fixedMode);
    }
    return descriptor;
}

int close(int descriptor) {
    std::erase(state().descriptors, descriptor);
    return real<int(int)>("close")(descriptor);
}

ssize_t write(int descriptor, const void* bytes, size_t size) {
    return isWatched(descriptor) ? attemptWrite(descriptor, bytes, size)
                                 : real<ssize_t(int, const void*, size_t)>("write")(descriptor, bytes, size);
}

int fsync(int descriptor) {
    const auto next = real<int(int)>("fsync");
    return isWatched(descriptor) ? attempt([&] { return next(descriptor); }) : next(descriptor);
}

int fdatasync(int descriptor) {
    const auto next = real<int(int)>("fdatasync");
    return isWatched(descriptor) ? attempt([&] { return next(descriptor); }) : next(descriptor);
}

int fchmod(int descriptor, mode_t mode) noexcept {
    const auto next = real<int(int, mode_t)>("fchmod");
    if (isWatched(descriptor) && state().fixedMode) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return isWatched(descriptor) ? attempt([&] { return next(descriptor, mode); }) : next(descriptor, mode);
}

int ftruncate64(int descriptor, off64_t size) noexcept {
    const auto next = real<int(int, off64_t)>("ftruncate64");
    return isWatched(descriptor) ? attempt([&] { return next(descriptor, size); }) : next(descriptor, size);
}

int rename(const char* from, const char* to) noexcept {
    const auto next = real<int(const char*, const char*)>("rename");
    return isWatched(to) ? attempt([&] { return next(from, to); }) : next(from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept {
    const auto next = real<int(int, const char*, int, const char*, unsigned)>("renameat2");
    const auto work = [&] { return next(fromFolder, from, toFolder, to, flags); };
    return isWatched(to) ? attempt(work) : work();
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) noexcept {
    const auto next = real<int(int, const char*, int, const char*, int)>("linkat");
    const auto work = [&] { return next(fromFolder, from, toFolder, to, flags); };
    return isWatched(to) ? attempt(work) : work();
}

int unlink(const char* path) noexcept {
    const auto next = real<int(const char*)>("unlink");
    return isWatched(path) ? attempt([&] { return next(path); }) : next(path);
}

}  // extern "C"
