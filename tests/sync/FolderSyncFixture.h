#pragma once

#include "fakes/InMemoryDefaultsStore.h"
#include "fakes/TemporaryDirectory.h"
#include "fakes/VirtualScheduler.h"
#include "model/HostJson.h"
#include "sync/FolderSync.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <utility>
#include <vector>

namespace velmora {

inline SSHHost syncedHost(const std::string& name) {
    SSHHost host;
    host.name = name;
    host.hostname = name + ".example";
    return host;
}

/// A synchroniser on a virtual clock, and what it delivers.
class FolderSyncFixture : public testing::Test {
protected:
    FolderSyncFixture() {
        sync_.setOnChange([this](std::vector<SSHHost> hosts) { received_.push_back(std::move(hosts)); });
    }

    void poll() { scheduler_.advance(std::chrono::seconds(5)); }

    std::filesystem::path folder() const { return directory_ / "shared"; }
    std::filesystem::path file() const { return folder() / "velmora-sync.json"; }

    /// Somebody else writes the file; its date is so many nanoseconds after a fixed moment.
    void writeFromElsewhere(const std::string& content, std::int64_t nanoseconds) const {
        writeContent(file(), content);
        setDate(nanoseconds);
    }
    void setDate(std::int64_t nanoseconds) const {
        std::filesystem::last_write_time(file(), someDate_ + std::chrono::nanoseconds(nanoseconds));
    }

    TemporaryDirectory directory_;
    VirtualScheduler scheduler_;
    InMemoryDefaultsStore defaults_;
    FolderSync sync_{scheduler_, defaults_};
    std::vector<std::vector<SSHHost>> received_;
    const std::vector<SSHHost> hosts_{syncedHost("b"), syncedHost("a")};

private:
    const std::filesystem::file_time_type someDate_ =
        std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
};

}  // namespace velmora
