#include "platform/qt/SingleInstance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

namespace velmora {

namespace {

constexpr mode_t privateFile = S_IRUSR | S_IWUSR;

void makePrivateDirectories(const std::filesystem::path& directory) {
    const mode_t previous = ::umask(S_IRWXG | S_IRWXO);
    std::error_code ignored;
    std::filesystem::create_directories(directory, ignored);
    ::umask(previous);
}

}  // namespace

SingleInstance::SingleInstance(const std::filesystem::path& directory) : pipePath_(directory / "instance.pipe") {
    makePrivateDirectories(directory);
    const auto lockPath = directory / "instance.lock";
    // The other one may be about to make the pipe, or may have closed it because it is about to end.
    constexpr int attempts = 100;
    constexpr auto pause = std::chrono::milliseconds(20);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (lock(lockPath)) {
            listen();
            return;
        }
        if (knock()) {
            break;
        }
        std::this_thread::sleep_for(pause);
    }
    role_ = Role::later;
}

SingleInstance::~SingleInstance() = default;

/// False only when another program holds the lock.
bool SingleInstance::lock(const std::filesystem::path& file) {
    lock_.reset(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, privateFile));
    return !lock_ || ::flock(lock_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

void SingleInstance::listen() {
    struct stat status {};
    if (::lstat(pipePath_.c_str(), &status) == 0 && !S_ISFIFO(status.st_mode)) {
        ::unlink(pipePath_.c_str());
    }
    ::mkfifo(pipePath_.c_str(), privateFile);
    // Open for writing too: otherwise the pipe reads as ended whenever nobody is knocking.
    pipe_.reset(::open(pipePath_.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW));
}

/// False when nobody listens.
bool SingleInstance::knock() const {
    const UniqueFd pipe(::open(pipePath_.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW));
    constexpr char anything = '\n';
    // A full pipe says the same as one byte more.
    return pipe && (::write(pipe.get(), &anything, 1) == 1 || errno == EAGAIN);
}

void SingleInstance::stopListening() {
    notifier_.reset();
    pipe_.reset();
}

void SingleInstance::onKnock(std::function<void()> knocked) {
    if (!pipe_) {
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(pipe_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this, knocked = std::move(knocked)] {
                         if (drain()) {
                             knocked();
                         }
                     });
}

bool SingleInstance::drain() const {
    std::array<char, 512> knocks{};
    bool any = false;
    while (::read(pipe_.get(), knocks.data(), knocks.size()) > 0) {
        any = true;
    }
    return any;
}

}  // namespace velmora
