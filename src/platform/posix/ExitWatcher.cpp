#include "platform/posix/ExitWatcher.h"

#include <cstdlib>
#include <utility>

namespace velmora {

namespace {

const std::function<void()>* watching = nullptr;

void exiting() {
    if (const auto* watcher = std::exchange(watching, nullptr)) {
        (*watcher)();
    }
}

}  // namespace

ExitWatcher::ExitWatcher(std::function<void()> exiting) : exiting_(std::move(exiting)) {
    [[maybe_unused]] static const int registered = std::atexit(velmora::exiting);  // it cannot be taken back
    watching = &exiting_;
}

ExitWatcher::~ExitWatcher() {
    watching = nullptr;
}

}  // namespace velmora
