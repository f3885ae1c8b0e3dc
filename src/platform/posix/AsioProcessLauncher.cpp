#include "platform/posix/AsioProcessLauncher.h"

#include "base/Pipe.h"
#include "platform/posix/Spawn.h"

#include <boost/asio/basic_waitable_timer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/posix/basic_stream_descriptor.hpp>
#include <boost/asio/post.hpp>
#include <boost/system/system_error.hpp>
#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <future>
#include <mutex>
#include <tuple>
#include <unordered_set>

namespace velmora {

namespace {

namespace asio = boost::asio;

using Descriptor = asio::posix::basic_stream_descriptor<asio::io_context::executor_type>;
using Timer = asio::basic_waitable_timer<std::chrono::steady_clock, asio::wait_traits<std::chrono::steady_clock>,
                                         asio::io_context::executor_type>;

}  // namespace

/// The processes that still run. The table is shared by both threads, the buffer is the I/O thread's.
class AsioProcessLauncher::Children final {
public:
    void add(std::shared_ptr<Child> child) {
        const std::lock_guard lock(mutex_);
        running_.insert(std::move(child));
    }
    void remove(const std::shared_ptr<Child>& child) {
        const std::lock_guard lock(mutex_);
        running_.erase(child);
    }
    [[nodiscard]] std::unordered_set<std::shared_ptr<Child>> all() const {
        const std::lock_guard lock(mutex_);
        return running_;
    }
    [[nodiscard]] std::array<char, 65536>& buffer() { return buffer_; }

private:
    mutable std::mutex mutex_;
    std::unordered_set<std::shared_ptr<Child>> running_;
    std::array<char, 65536> buffer_{};
};

/// One process. Lives on the I/O thread, but for `terminate`.
class AsioProcessLauncher::Child final : public std::enable_shared_from_this<Child> {
public:
    Child(asio::io_context& context, SpawnedProcess process, UniqueFd standardOutput, UniqueFd standardError,
          ProcessEvents events, const std::shared_ptr<Children>& siblings)
        : pid_(process.pid),
          exit_(context),
          standardError_(context),
          standardOutput_(std::move(standardOutput)),
          events_(std::move(events)),
          siblings_(siblings) {
        take(exit_, std::move(process.exitDescriptor));
        take(standardError_, std::move(standardError));
    }

    void start() {
        waitForOutput();
        exit_.async_wait(Descriptor::wait_read, [self = shared_from_this()](const boost::system::error_code& error) {
            if (!error) {
                self->finish();
            }
        });
    }

    void stopWatching() {
        reminder_.reset();
        exit_.close();
        standardError_.close();
    }

    /// Any thread.
    void terminate() {
        sendTerminate();
        asio::post(exit_.get_executor(), [self = shared_from_this()] { self->remind(mostReminders); });
    }

private:
    /// Throws when the system cannot watch one more.
    static void take(Descriptor& descriptor, UniqueFd fd) {
        descriptor.assign(fd.get());
        std::ignore = fd.release();
    }

    void waitForOutput() {
        standardError_.async_wait(Descriptor::wait_read,
                                  [self = shared_from_this()](const boost::system::error_code& error) {
                                      if (!error && self->readOutput(longestRead) > 0) {
                                          self->waitForOutput();
                                      }
                                  });
    }

    /// Passes on one piece of what is there. Zero when there will be no more.
    std::size_t readOutput(std::size_t atMost) {
        const auto siblings = siblings_.lock();
        if (!siblings) {
            return 0;
        }
        auto& buffer = siblings->buffer();
        ssize_t count = 0;
        do {
            count = ::read(standardError_.native_handle(), buffer.data(), std::min(atMost, buffer.size()));
        } while (count < 0 && errno == EINTR);
        if (count <= 0) {
            return 0;
        }
        events_.standardError({buffer.data(), static_cast<std::size_t>(count)});
        return static_cast<std::size_t>(count);
    }

    /// What is in the pipe when the process has ended, and no more: another process may hold the pipe for ever.
    void readRest() {
        int available = 0;
        if (::ioctl(standardError_.native_handle(), FIONREAD, &available) != 0) {
            return;
        }
        auto left = static_cast<std::size_t>(available);
        while (left > 0) {
            const auto count = readOutput(left);
            if (count == 0) {
                return;
            }
            left -= count;
        }
    }

    void finish() {
        readRest();
        const int status = waitForEnd();
        stopWatching();
        standardOutput_.reset();
        if (const auto siblings = siblings_.lock()) {
            siblings->remove(shared_from_this());
            events_.exited(status);
        }
        events_ = {};
    }

    /// Any thread: the number is ours until the process has been waited for.
    void sendTerminate() {
        const std::lock_guard lock(mutex_);
        if (!ended_) {
            ::kill(pid_, SIGTERM);
        }
    }

    /// ssh looks whether a signal came and then goes to sleep until its next keep-alive. A signal between the two is
    /// lost on it, and it keeps its ports; another one wakes it.
    void remind(int times) {
        if (times == 0 || !exit_.is_open()) {
            return;
        }
        if (!reminder_) {
            reminder_ = std::make_unique<Timer>(exit_.get_executor());  // most processes never need one
        }
        reminder_->expires_after(reminderDelay);
        reminder_->async_wait([self = shared_from_this(), times](const boost::system::error_code& error) {
            if (!error) {
                self->sendTerminate();
                self->remind(times - 1);
            }
        });
    }

    int waitForEnd() {
        const std::lock_guard lock(mutex_);
        ended_ = true;
        return reap(pid_);
    }

    static constexpr std::size_t longestRead = 65536;
    static constexpr auto reminderDelay = std::chrono::milliseconds(250);
    static constexpr int mostReminders = 8;

    const pid_t pid_;
    std::mutex mutex_;
    bool ended_ = false;
    Descriptor exit_;
    std::unique_ptr<Timer> reminder_;
    Descriptor standardError_;
    UniqueFd standardOutput_;  // never read: nothing is written there, and a reader would be one more thing to wake
    ProcessEvents events_;
    std::weak_ptr<Children> siblings_;
};

class AsioProcessLauncher::Handle final : public ChildProcess {
public:
    explicit Handle(std::shared_ptr<Child> child) : child_(std::move(child)) {}
    void terminate() override { child_->terminate(); }

private:
    std::shared_ptr<Child> child_;
};

AsioProcessLauncher::AsioProcessLauncher(IoThread& io) : io_(io), children_(std::make_shared<Children>()) {}

AsioProcessLauncher::~AsioProcessLauncher() {
    std::promise<void> stopped;
    asio::post(io_.context(), [this, &stopped] {
        for (const auto& child : children_->all()) {
            child->terminate();
            child->stopWatching();
            children_->remove(child);
        }
        stopped.set_value();
    });
    stopped.get_future().wait();
}

Result<std::unique_ptr<ChildProcess>, Error> AsioProcessLauncher::launch(ProcessSpec spec, ProcessEvents events) {
    auto output = makePipe();
    auto error = makePipe();
    if (!output || !error) {
        return output ? error.error() : output.error();
    }
    auto process = spawn({.program = spec.program,
                          .arguments = spec.arguments,
                          .environment = spec.environment,
                          .standardInput = spec.standardInput.get(),
                          .standardOutput = output->writing.get(),
                          .standardError = error->writing.get(),
                          .whenParentDies = WhenParentDies::terminate});
    if (!process) {
        return process.error();
    }
    const pid_t pid = process->pid;
    try {
        auto child = std::make_shared<Child>(io_.context(), *std::move(process), std::move(output->reading),
                                             std::move(error->reading), std::move(events), children_);
        children_->add(child);
        asio::post(io_.context(), [child] { child->start(); });
        return std::unique_ptr<ChildProcess>(std::make_unique<Handle>(std::move(child)));
    } catch (const boost::system::system_error& unwatched) {
        ::kill(pid, SIGKILL);  // it has done nothing yet, and nobody would hear of its end
        reap(pid);
        return Error{unwatched.code().message()};
    }
}

}  // namespace velmora
