// Supervises a number of sleeping processes and prints what that costs: memory a tunnel, and how often the process
// wakes up in some seconds of quiet.
//
//   supervise [tunnels] [seconds]
#include "platform/posix/AsioProcessLauncher.h"
#include "platform/posix/SystemProcessRunner.h"
#include "tunnel/TunnelEngine.h"

#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

namespace {

using namespace velmora;

class NoTime final : public Scheduler {
public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override {
        return std::chrono::system_clock::now();
    }
    [[nodiscard]] TimerHandle after(std::chrono::milliseconds, Task task) override {
        last = std::move(task);
        return std::make_unique<Timer>();
    }
    [[nodiscard]] TimerHandle every(std::chrono::milliseconds, Task) override { return std::make_unique<Timer>(); }
    void post(Task) override {}

    Task last;
};

long kilobytes(const char* name) {
    std::ifstream file("/proc/self/smaps_rollup");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(name)) {
            return std::atol(line.c_str() + std::string(name).size());
        }
    }
    return -1;
}

long contextSwitches() {
    long sum = 0;
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(thread.path() / "status");
        for (std::string line; std::getline(file, line);) {
            if (line.find("ctxt_switches:") != std::string::npos) {
                sum += std::atol(line.c_str() + line.find(':') + 1);
            }
        }
    }
    return sum;
}

}  // namespace

int main(int argc, char** argv) {
    const std::size_t tunnels = argc > 1 ? std::stoul(argv[1]) : 500;
    const unsigned seconds = argc > 2 ? static_cast<unsigned>(std::stoul(argv[2])) : 20;
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);

    const auto directory = std::filesystem::temp_directory_path() / ("velmora-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(directory);
    const auto script = directory / "sleeper";
    std::ofstream(script) << "#!/bin/sh\nexec sleep 600\n";
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    {
        IoThread io;
        AsioProcessLauncher launcher(io);
        NoTime scheduler;
        Environment environment = currentEnvironment();
        std::vector<SSHHost> hosts(tunnels);
        for (auto& host : hosts) {
            host.name = "h";
            host.hostname = "server.example";
        }
        TunnelEngine engine(scheduler, launcher,
                            {.hosts = [&]() -> const std::vector<SSHHost>& { return hosts; },
                             .settings = [] { return SshSettings(); },
                             .password = [](const Uuid&) { return std::nullopt; },
                             .environment = [&] { return environment; }},
                            {.sshProgram = script, .logDirectory = directory, .askpassDirectory = directory});
        engine.connect(hosts[0]);  // what is paid once
        const long before = kilobytes("Pss:");
        const long dirtyBefore = kilobytes("Private_Dirty:");
        for (const auto& host : hosts) {
            engine.connect(host);
            scheduler.last();  // it has survived
        }
        std::this_thread::sleep_for(std::chrono::seconds(2));
        const auto count = static_cast<double>(tunnels - 1);
        std::printf("tunnels %zu\nPSS a tunnel %.2f KB\nprivate dirty a tunnel %.2f KB\n", tunnels,
                    static_cast<double>(kilobytes("Pss:") - before) / count,
                    static_cast<double>(kilobytes("Private_Dirty:") - dirtyBefore) / count);
        const long switches = contextSwitches();
        ::sleep(seconds);
        // Our own sleep ends once.
        std::printf("wake-ups in %u s: %ld\n", seconds, contextSwitches() - switches - 1);
    }
    std::filesystem::remove_all(directory);
}
