#include "platform/posix/Spawn.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sched.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <mutex>
#include <system_error>

namespace velmora {

namespace {

/// What the new process needs. It shares our memory until the program runs, so `error` comes back by itself.
struct ChildPlan {
    const char* program = nullptr;
    char* const* arguments = nullptr;
    char* const* environment = nullptr;
    std::array<int, 3> streams{};
    bool dieWithParent = false;
    pid_t parent = -1;
    volatile int error = 0;
};

bool placeStreams(const std::array<int, 3>& streams) {
    for (int target = 0; target < 3; ++target) {
        const int source = streams[static_cast<std::size_t>(target)];
        // A descriptor that stands in its place already would close when the program starts.
        const bool placed = source == target ? ::fcntl(source, F_SETFD, 0) == 0 : ::dup2(source, target) == target;
        if (!placed) {
            return false;
        }
    }
    return true;
}

/// Handlers that the application installed must not run here: they would run in the application's memory. And what the
/// application was started with, ignored or blocked, is not the program's to bear: ssh could not be asked to end.
void restoreSignals() {
    struct sigaction byDefault {};
    byDefault.sa_handler = SIG_DFL;
    for (int number = 1; number < NSIG; ++number) {
        ::sigaction(number, &byDefault, nullptr);  // refused for the few that cannot be changed
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// Runs in the new process on a stack of its own: system calls only, no allocation, no way back.
__attribute__((no_sanitize("address", "thread", "undefined"))) int runChild(void* argument) {
    auto& plan = *static_cast<ChildPlan*>(argument);
    if (plan.dieWithParent) {
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (::getppid() != plan.parent) {
            ::_exit(127);  // the parent was gone before it could be noticed
        }
    }
    ::setsid();
    if (placeStreams(plan.streams)) {
        ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC);
        restoreSignals();
        ::execve(plan.program, plan.arguments, plan.environment);
    }
    plan.error = errno;
    ::_exit(127);
}

/// While the new process borrows our memory, no signal may interrupt us.
class AllSignalsBlocked final {
public:
    AllSignalsBlocked() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &previous_);
    }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;
    ~AllSignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }

private:
    sigset_t previous_{};
};

Error describe(int code) {
    return {std::generic_category().message(code)};
}

}  // namespace

Result<SpawnedProcess, Error> spawn(const SpawnRequest& request) {
    const SpawnStrings strings(request);
    if (!strings.arePassable()) {
        return describe(EINVAL);
    }

    // One stack for all: the caller sleeps until the new process has left it.
    static std::mutex stackMutex;
    alignas(std::max_align_t) static std::array<std::byte, std::size_t{64} * 1024> stack;
    const std::lock_guard lock(stackMutex);
    const AllSignalsBlocked blocked;

    ChildPlan plan;
    plan.program = request.program.c_str();
    plan.arguments = strings.arguments();
    plan.environment = strings.environment();
    plan.streams = {request.standardInput, request.standardOutput, request.standardError};
    plan.dieWithParent = request.whenParentDies == WhenParentDies::terminate;
    plan.parent = ::getpid();

    // As posix_spawn does it, which has no way to ask for the parent-death signal.
    int exitDescriptor = -1;
    const pid_t pid = ::clone(runChild, stack.data() + stack.size(), CLONE_VM | CLONE_VFORK | CLONE_PIDFD | SIGCHLD,
                              &plan, &exitDescriptor);
    if (pid < 0) {
        return describe(errno);
    }
    UniqueFd descriptor(exitDescriptor);
    if (plan.error != 0) {
        reap(pid);
        return describe(plan.error);
    }
    return SpawnedProcess{pid, std::move(descriptor)};
}

}  // namespace velmora
