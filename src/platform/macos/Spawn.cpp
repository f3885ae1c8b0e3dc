#include "platform/posix/Spawn.h"

#include <spawn.h>
#include <sys/event.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

Error describe(int code) {
    return {std::generic_category().message(code)};
}

class SpawnAttributes final {
public:
    SpawnAttributes() {
        ::posix_spawnattr_init(&attributes_);
        ::posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_CLOEXEC_DEFAULT | POSIX_SPAWN_SETSID |
                                                     POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        sigset_t all;
        sigfillset(&all);
        ::posix_spawnattr_setsigdefault(&attributes_, &all);
        sigset_t none;
        sigemptyset(&none);
        ::posix_spawnattr_setsigmask(&attributes_, &none);
    }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;
    ~SpawnAttributes() { ::posix_spawnattr_destroy(&attributes_); }

    [[nodiscard]] const posix_spawnattr_t* get() const { return &attributes_; }

private:
    posix_spawnattr_t attributes_{};
};

class SpawnFileActions final {
public:
    explicit SpawnFileActions(const std::array<int, 3>& streams) {
        ::posix_spawn_file_actions_init(&actions_);
        for (int target = 0; target < 3; ++target) {
            ::posix_spawn_file_actions_adddup2(&actions_, streams[static_cast<std::size_t>(target)], target);
        }
    }
    SpawnFileActions(const SpawnFileActions&) = delete;
    SpawnFileActions& operator=(const SpawnFileActions&) = delete;
    ~SpawnFileActions() { ::posix_spawn_file_actions_destroy(&actions_); }

    [[nodiscard]] const posix_spawn_file_actions_t* get() const { return &actions_; }

private:
    posix_spawn_file_actions_t actions_{};
};

/// A queue that becomes readable when the process ends; at once when it has ended already.
UniqueFd watchExit(pid_t pid) {
    UniqueFd queue(::kqueue());
    if (!queue) {
        return {};
    }
    struct kevent change {};
    EV_SET(&change, static_cast<uintptr_t>(pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    if (::kevent(queue.get(), &change, 1, nullptr, 0, nullptr) == 0) {
        return queue;
    }
    if (errno != ESRCH) {
        return {};
    }
    EV_SET(&change, 1, EVFILT_USER, EV_ADD, NOTE_TRIGGER, 0, nullptr);  // already a zombie
    return ::kevent(queue.get(), &change, 1, nullptr, 0, nullptr) == 0 ? std::move(queue) : UniqueFd();
}

}  // namespace

Result<SpawnedProcess, Error> spawn(const SpawnRequest& request) {
    const SpawnStrings strings(request);
    if (!strings.arePassable()) {
        return describe(EINVAL);
    }
    const SpawnAttributes attributes;
    const SpawnFileActions actions({request.standardInput, request.standardOutput, request.standardError});
    pid_t pid = -1;
    const int code = ::posix_spawn(&pid, request.program.c_str(), actions.get(), attributes.get(), strings.arguments(),
                                   strings.environment());
    if (code != 0) {
        return describe(code);
    }
    auto exitDescriptor = watchExit(pid);
    if (!exitDescriptor) {
        const int reason = errno;
        ::kill(pid, SIGKILL);
        reap(pid);
        return describe(reason);
    }
    return SpawnedProcess{pid, std::move(exitDescriptor)};
}

}  // namespace velmora
