#pragma once

#include "platform/ProcessLauncher.h"
#include "platform/posix/IoThread.h"

#include <memory>

namespace velmora {

/// Starts processes from the main thread and watches all of them from one I/O thread.
class AsioProcessLauncher final : public ProcessLauncher {
public:
    /// The I/O thread outlives the launcher.
    explicit AsioProcessLauncher(IoThread& io);
    ~AsioProcessLauncher() override;

    Result<std::unique_ptr<ChildProcess>, Error> launch(ProcessSpec spec, ProcessEvents events) override;

private:
    class Child;
    class Handle;
    class Children;

    IoThread& io_;
    std::shared_ptr<Children> children_;
};

}  // namespace velmora
