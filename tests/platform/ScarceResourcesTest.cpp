#include "base/Pipe.h"
#include "fakes/TemporaryDirectory.h"
#include "platform/posix/AsioProcessLauncher.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/epoll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <optional>

namespace {

/// What the system refuses. Counts down: the call that finds 1 fails.
std::atomic<int> refusedStart{0};
std::atomic<int> refusedWatch{0};
std::atomic<int> refusal{0};

bool isRefused(std::atomic<int>& countdown) {
    if (countdown == 0 || --countdown > 0) {
        return false;
    }
    errno = refusal;
    return true;
}

}  // namespace

// In the place of the C library's.

extern "C" int clone(int (*function)(void*), void* stack, int flags, void* argument, ...) {
    va_list more;
    va_start(more, argument);
    auto* const descriptor = va_arg(more, pid_t*);
    va_end(more);
    if (isRefused(refusedStart)) {
        return -1;
    }
    using Clone = int (*)(int (*)(void*), void*, int, void*, ...);
    static const auto theirs = reinterpret_cast<Clone>(::dlsym(RTLD_NEXT, "clone"));
    return theirs(function, stack, flags, argument, descriptor);
}

extern "C" int epoll_ctl(int epoll, int operation, int descriptor, epoll_event* event) noexcept {
    if (operation == EPOLL_CTL_ADD && isRefused(refusedWatch)) {
        return -1;
    }
    return static_cast<int>(::syscall(SYS_epoll_ctl, epoll, operation, descriptor, event));
}

namespace velmora {
namespace {

/// A system that has nothing left to give.
class ScarceResources : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(launch()); }  // what is paid once
    void TearDown() override {
        launcher_.reset();
        while (::waitpid(-1, nullptr, 0) > 0) {
        }
    }

    Result<std::unique_ptr<ChildProcess>, Error> launch() {
        auto pipe = makePipe();
        return launcher_->launch({"/bin/sleep", {"60"}, {}, std::move(pipe->reading)},
                                 {[](std::string_view) {}, [](int) {}});
    }

    static auto descriptors() { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); }

    void expectFailure(std::atomic<int>& refused, int at, int error, const std::string& message) {
        const auto before = descriptors();
        refusal = error;
        refused = at;
        const auto result = launch();
        refused = 0;
        ASSERT_FALSE(result);
        EXPECT_EQ(result.error().message, message);
        EXPECT_EQ(descriptors(), before);
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), 0) << "no other process has ended unnoticed";
        EXPECT_TRUE(launch()) << "and the next one starts again";
    }

    IoThread io_;
    std::optional<AsioProcessLauncher> launcher_{io_};
};

TEST_F(ScarceResources, AProcessForWhichThereIsNoMemoryIsAFailedLaunch) {
    expectFailure(refusedStart, 1, ENOMEM, "Cannot allocate memory");
    expectFailure(refusedStart, 1, EAGAIN, "Resource temporarily unavailable");
}

TEST_F(ScarceResources, AProcessThatCannotBeWatchedIsEndedAndIsAFailedLaunch) {
    for (const int at : {1, 2}) {
        expectFailure(refusedWatch, at, ENOMEM, "Cannot allocate memory");
        expectFailure(refusedWatch, at, ENOSPC, "No space left on device");
    }
}

}  // namespace
}  // namespace velmora
