#pragma once

#include "base/Observable.h"
#include "base/Result.h"
#include "base/UniqueFd.h"
#include "base/Uuid.h"
#include "model/ConnectionStatus.h"
#include "model/SSHHost.h"
#include "platform/ProcessLauncher.h"
#include "platform/Scheduler.h"
#include "tunnel/AskpassScript.h"
#include "tunnel/SshArguments.h"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace velmora {

using ConnectionTimes = std::unordered_map<Uuid, std::chrono::system_clock::time_point>;

/// What the engine takes from its owner. The functions are called on the main thread, while the engine acts.
struct TunnelSources {
    std::function<const std::vector<SSHHost>&()> hosts;  ///< as they are now
    std::function<SshSettings()> settings;               ///< as they are now
    std::function<std::optional<std::string>(const Uuid&)> password;
    std::function<Environment()> environment;  ///< what ssh is to find in its environment
};

/// Where the engine finds and leaves things.
struct TunnelPlaces {
    std::string sshProgram = "/usr/bin/ssh";
    std::filesystem::path home;
    std::filesystem::path logDirectory;
    std::filesystem::path askpassDirectory;
};

/// Runs one ssh per connected host, and brings back what ends without being asked to.
///
/// Every outcome is told through `statuses` and the host's log. Main thread only.
class TunnelEngine final {
public:
    TunnelEngine(Scheduler& scheduler, ProcessLauncher& launcher, TunnelSources sources, TunnelPlaces places);
    TunnelEngine(const TunnelEngine&) = delete;
    TunnelEngine& operator=(const TunnelEngine&) = delete;
    ~TunnelEngine();

    /// Starts the tunnel; does nothing when its ssh runs already.
    void connect(const SSHHost& host);
    /// Stops the tunnel on the user's behalf; it stays stopped.
    void disconnect(const SSHHost& host);
    /// Stops what is connecting or connected, starts anything else at once.
    void toggle(const SSHHost& host);
    /// Restarts every host that is connecting or connected, in the order of the list.
    void reconnectActiveHosts();
    /// Stops everything because the program ends. Statuses stay as they are.
    void terminateAllProcesses();

    /// The entry of the table, or disconnected.
    [[nodiscard]] ConnectionStatus status(const Uuid& id) const;
    void removeStatus(const Uuid& id);
    [[nodiscard]] std::filesystem::path logURL(const SSHHost& host) const;

    [[nodiscard]] Observable<StatusTable>& statuses() { return statuses_; }
    [[nodiscard]] const Observable<StatusTable>& statuses() const { return statuses_; }
    [[nodiscard]] Observable<ConnectionTimes>& connectedAt() { return connectedAt_; }
    [[nodiscard]] const Observable<ConnectionTimes>& connectedAt() const { return connectedAt_; }

private:
    /// Names a task in `delayedTasks_`. Forgetting the name does not cancel the task.
    using DelayedTask = std::uint64_t;

    void setStatus(const Uuid& id, ConnectionStatus status);
    void removeConnectionTime(const Uuid& id);
    [[nodiscard]] AskpassPrepared prepareAskpass(const SSHHost& host, Environment& environment);
    Result<std::unique_ptr<ChildProcess>, Error> launch(const SSHHost& host, std::vector<std::string> arguments,
                                                        Environment environment);
    [[nodiscard]] ProcessEvents eventsFor(const SSHHost& host);
    void checkSurvival(const Uuid& id);
    void handleExit(const Uuid& id, const std::string& reason);
    void retry(const Uuid& id);
    [[nodiscard]] DelayedTask startTask(std::chrono::milliseconds delay, std::function<void()> work);
    void cancelRetry(const Uuid& id);

    Scheduler& scheduler_;
    ProcessLauncher& launcher_;
    TunnelSources sources_;
    TunnelPlaces places_;

    Observable<StatusTable> statuses_;
    Observable<ConnectionTimes> connectedAt_;
    std::unordered_map<Uuid, std::unique_ptr<ChildProcess>> processes_;
    std::unordered_map<Uuid, UniqueFd> stdinPipes_;
    std::unordered_map<Uuid, AskpassScript> tempAskpassFiles_;
    std::unordered_map<Uuid, DelayedTask> retryTasks_;
    std::unordered_map<Uuid, std::int64_t> retryCounts_;
    std::unordered_set<Uuid> manuallyDisconnected_;

    std::unordered_map<DelayedTask, Scheduler::TimerHandle> delayedTasks_;
    DelayedTask nextTask_ = 0;

    /// Tasks that come back from the I/O thread hold this weakly: they find out whether the engine is still there.
    std::shared_ptr<TunnelEngine*> self_;
};

}  // namespace velmora
