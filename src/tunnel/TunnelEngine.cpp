#include "tunnel/TunnelEngine.h"

#include "base/Localized.h"
#include "base/Pipe.h"
#include "base/Text.h"
#include "tunnel/Backoff.h"
#include "tunnel/HostLog.h"

#include <array>
#include <ctime>
#include <tuple>

namespace velmora {

namespace {

using namespace std::chrono_literals;

/// A process that lives this long counts as connected; nothing else tells.
constexpr auto survivalTime = 3s;

std::string logHeader(std::chrono::system_clock::time_point now, const std::vector<std::string>& arguments) {
    const auto time = std::chrono::system_clock::to_time_t(now);
    std::tm utc{};
    ::gmtime_r(&time, &utc);
    std::array<char, 64> stamp{};
    std::strftime(stamp.data(), stamp.size(), "[%Y-%m-%d %H:%M:%S +0000] ssh ", &utc);
    return stamp.data() + join(arguments, " ") + "\n";
}

}  // namespace

TunnelEngine::TunnelEngine(Scheduler& scheduler, ProcessLauncher& launcher, TunnelSources sources, TunnelPlaces places)
    : scheduler_(scheduler),
      launcher_(launcher),
      sources_(std::move(sources)),
      places_(std::move(places)),
      self_(std::make_shared<TunnelEngine*>(this)) {}

TunnelEngine::~TunnelEngine() = default;

void TunnelEngine::connect(const SSHHost& host) {
    if (processes_.contains(host.id)) {
        return;
    }
    if (host.hostname.empty()) {
        setStatus(host.id, ConnectionStatus::error(localized("velmora::TunnelEngine", "No hostname configured")));
        return;
    }
    manuallyDisconnected_.erase(host.id);
    cancelRetry(host.id);
    setStatus(host.id, ConnectionStatus::connecting());

    auto environment = sources_.environment();
    const auto askpass = prepareAskpass(host, environment);
    auto arguments = sshArguments(host, sources_.settings(), places_.home.string(), askpass);
    appendToLog(logURL(host), logHeader(scheduler_.now(), arguments));
    auto launched = launch(host, std::move(arguments), std::move(environment));
    if (!launched) {
        setStatus(host.id, ConnectionStatus::error(launched.error().message));
        return;
    }
    processes_[host.id] = std::move(*launched);
    // Belongs to the host, not to the process: it is never cancelled and judges what it finds.
    std::ignore = startTask(survivalTime, [this, id = host.id] { checkSurvival(id); });
}

Result<std::unique_ptr<ChildProcess>, Error> TunnelEngine::launch(const SSHHost& host,
                                                                  std::vector<std::string> arguments,
                                                                  Environment environment) {
    auto pipe = makePipe();
    if (!pipe) {
        return pipe.error();
    }
    stdinPipes_[host.id] = std::move(pipe->writing);  // open for the life of the process: ssh never sees its end
    return launcher_.launch(
        {places_.sshProgram, std::move(arguments), std::move(environment), std::move(pipe->reading)}, eventsFor(host));
}

AskpassPrepared TunnelEngine::prepareAskpass(const SSHHost& host, Environment& environment) {
    if (host.authMethod != AuthMethod::password) {
        return AskpassPrepared::no;
    }
    const auto password = sources_.password(host.id);
    if (!password || password->empty()) {
        return AskpassPrepared::no;
    }
    auto script = writeAskpassScript(places_.askpassDirectory, *password);
    if (!script) {
        return AskpassPrepared::no;
    }
    environment["SSH_ASKPASS"] = script->path().string();
    environment["SSH_ASKPASS_REQUIRE"] = "force";
    environment.try_emplace("DISPLAY", "dummy");
    tempAskpassFiles_.insert_or_assign(host.id, *std::move(script));
    return AskpassPrepared::yes;
}

/// Everything here runs on the I/O thread and touches nothing of the engine: the log is a path, the rest is posted.
ProcessEvents TunnelEngine::eventsFor(const SSHHost& host) {
    auto log = logURL(host);
    auto exited = [id = host.id, log, &scheduler = scheduler_, self = std::weak_ptr(self_)](int status) {
        appendToLog(log, "[exit " + std::to_string(status) + "]\n");
        scheduler.post([id, self, reason = exitReason(log, status)] {
            if (const auto engine = self.lock()) {
                (*engine)->handleExit(id, reason);
            }
        });
    };
    return {[log = std::move(log)](std::string_view bytes) { appendToLog(log, bytes); }, std::move(exited)};
}

void TunnelEngine::checkSurvival(const Uuid& id) {
    if (!processes_.contains(id) || status(id) != ConnectionStatus::connecting()) {
        return;
    }
    setStatus(id, ConnectionStatus::connected());
    connectedAt_.edit([&](ConnectionTimes& times) { times[id] = scheduler_.now(); });
    retryCounts_.erase(id);
}

void TunnelEngine::handleExit(const Uuid& id, const std::string& reason) {
    processes_.erase(id);
    stdinPipes_.erase(id);
    removeConnectionTime(id);
    tempAskpassFiles_.erase(id);
    if (manuallyDisconnected_.contains(id)) {
        retryCounts_.erase(id);
        setStatus(id, ConnectionStatus::disconnected());
        return;
    }
    const auto delay = reconnectDelay(retryCounts_[id]++);
    setStatus(id, ConnectionStatus::error(filled(localized("velmora::TunnelEngine", "Reconnecting in %1s… (%2)"),
                                                 {std::to_string(delay.count()), reason})));
    retryTasks_[id] = startTask(delay, [this, id] { retry(id); });  // an earlier one still comes
}

void TunnelEngine::retry(const Uuid& id) {
    retryTasks_.erase(id);
    for (const auto& host : sources_.hosts()) {
        if (host.id == id) {
            connect(SSHHost(host));  // a copy: connecting tells others, and they may change the list
            return;
        }
    }
}

void TunnelEngine::disconnect(const SSHHost& host) {
    manuallyDisconnected_.insert(host.id);
    cancelRetry(host.id);
    retryCounts_.erase(host.id);
    if (const auto process = processes_.find(host.id); process != processes_.end()) {
        process->second->terminate();
        processes_.erase(process);
    }
    stdinPipes_.erase(host.id);
    removeConnectionTime(host.id);
    tempAskpassFiles_.erase(host.id);
    setStatus(host.id, ConnectionStatus::disconnected());
}

void TunnelEngine::toggle(const SSHHost& host) {
    if (status(host.id).isActive()) {
        disconnect(host);
    } else {
        connect(host);
    }
}

void TunnelEngine::reconnectActiveHosts() {
    std::vector<SSHHost> active;
    for (const auto& host : sources_.hosts()) {
        if (status(host.id).isActive()) {
            active.push_back(host);
        }
    }
    for (const auto& host : active) {
        disconnect(host);
        connect(host);
    }
}

void TunnelEngine::terminateAllProcesses() {
    for (const auto& [id, process] : processes_) {
        process->terminate();
    }
    tempAskpassFiles_.clear();
    for (const auto& [id, task] : retryTasks_) {
        delayedTasks_.erase(task);
    }
}

TunnelEngine::DelayedTask TunnelEngine::startTask(std::chrono::milliseconds delay, std::function<void()> work) {
    const auto task = nextTask_++;
    delayedTasks_[task] = scheduler_.after(delay, [this, task, work = std::move(work)] {
        work();
        delayedTasks_.erase(task);
    });
    return task;
}

void TunnelEngine::cancelRetry(const Uuid& id) {
    if (const auto entry = retryTasks_.find(id); entry != retryTasks_.end()) {
        delayedTasks_.erase(entry->second);
        retryTasks_.erase(entry);
    }
}

ConnectionStatus TunnelEngine::status(const Uuid& id) const {
    const auto entry = statuses_->find(id);
    return entry != statuses_->end() ? entry->second : ConnectionStatus::disconnected();
}

void TunnelEngine::removeStatus(const Uuid& id) {
    statuses_.edit([&](StatusTable& table) { table.erase(id); });
}

std::filesystem::path TunnelEngine::logURL(const SSHHost& host) const {
    return hostLogPath(places_.logDirectory, host.name);
}

void TunnelEngine::setStatus(const Uuid& id, ConnectionStatus status) {
    statuses_.edit([&](StatusTable& table) { table[id] = std::move(status); });
}

void TunnelEngine::removeConnectionTime(const Uuid& id) {
    if (connectedAt_->contains(id)) {
        connectedAt_.edit([&](ConnectionTimes& times) { times.erase(id); });
    }
}

}  // namespace velmora
