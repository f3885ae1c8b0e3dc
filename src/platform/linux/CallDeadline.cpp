#include "platform/linux/CallDeadline.h"

namespace velmora {

CallDeadline::CallDeadline(std::chrono::milliseconds allowed)
    : watch_([this, allowed](const std::stop_token& stop) {
          std::unique_lock lock(mutex_);
          ended_.wait_for(lock, stop, allowed, [] { return false; });
          if (!stop.stop_requested()) {
              g_cancellable_cancel(cancellable_.get());
          }
      }) {}

}  // namespace velmora
