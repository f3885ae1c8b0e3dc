#pragma once

#include "fakes/FakeProcessLauncher.h"
#include "fakes/FakeProcessRunner.h"
#include "fakes/InMemoryDefaultsStore.h"
#include "fakes/RecordingCredentialStore.h"
#include "fakes/TemporaryDirectory.h"
#include "fakes/VirtualScheduler.h"
#include "manager/TunnelManager.h"

#include <cstdint>

namespace velmora {

/// A whole system for a manager to live on: a home of its own, time that stands still, processes that are only noted.
struct FakeSystem {
    TemporaryDirectory home;
    TemporaryDirectory runtime;
    VirtualScheduler scheduler;
    FakeProcessLauncher launcher;
    FakeProcessRunner runner;
    RecordingCredentialStore credentials;
    InMemoryDefaultsStore defaults;
    Environment environment{{"SSH_AUTH_SOCK", "/agent"}};
    std::uint16_t pacPort = 0;  ///< any free one

    [[nodiscard]] Platform platform() {
        return {.paths = {.home = home.path(),
                          .applicationSupport = home / "share",
                          .library = home / "state",
                          .configuration = home / "config",
                          .temporary = runtime.path(),
                          .largeTemporary = runtime.path()},
                .scheduler = scheduler,
                .launcher = launcher,
                .runner = runner,
                .credentials = credentials,
                .defaults = defaults,
                .environment = environment,
                .pacPort = pacPort};
    }
};

}  // namespace velmora
