// What `connect` costs the main thread until the program runs, against a bare posix_spawn with three pipes.
#include "platform/posix/AsioProcessLauncher.h"
#include "platform/posix/SystemProcessRunner.h"
#include "tunnel/TunnelEngine.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>

namespace {

using namespace velmora;

/// Ends at once whatever it is given; what it costs is the same for both.
constexpr auto program = "/bin/true";

class NoTime final : public Scheduler {
public:
    [[nodiscard]] std::chrono::system_clock::time_point now() const override {
        return std::chrono::system_clock::now();
    }
    [[nodiscard]] TimerHandle after(std::chrono::milliseconds, Task) override { return std::make_unique<Timer>(); }
    [[nodiscard]] TimerHandle every(std::chrono::milliseconds, Task) override { return std::make_unique<Timer>(); }
    void post(Task) override {}
};

SSHHost typicalHost() {
    SSHHost host;
    host.name = "bench";
    host.hostname = "server.example";
    host.username = "deploy";
    host.forwardingRules.resize(4);
    for (auto& rule : host.forwardingRules) {
        rule.bindPort = 8080;
        rule.targetAddress = "db";
        rule.targetPort = 5432;
    }
    return host;
}

void connectHost(benchmark::State& state) {
    const auto directory = std::filesystem::temp_directory_path() / ("velmora-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(directory);
    {
        IoThread io;
        AsioProcessLauncher launcher(io);
        NoTime scheduler;
        auto environment = currentEnvironment();
        environment["SSH_AUTH_SOCK"] = "/agent";
        const std::vector<SSHHost> hosts{typicalHost()};
        TunnelEngine engine(scheduler, launcher,
                            {.hosts = [&]() -> const std::vector<SSHHost>& { return hosts; },
                             .settings = [] { return SshSettings(); },
                             .password = [](const Uuid&) { return std::nullopt; },
                             .environment = [&] { return environment; }},
                            {.sshProgram = program, .logDirectory = directory, .askpassDirectory = directory});
        for (auto _ : state) {
            engine.connect(hosts[0]);
            state.PauseTiming();
            engine.disconnect(hosts[0]);
            ::usleep(1000);  // let it end and be reaped before the next
            state.ResumeTiming();
        }
    }
    std::filesystem::remove_all(directory);
}

void barePosixSpawn(benchmark::State& state) {
    const auto arguments = [] {
        auto list = sshArguments(typicalHost(), {}, "/", AskpassPrepared::no);
        list.insert(list.begin(), program);
        return list;
    }();
    std::vector<char*> pointers;
    for (const auto& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    for (auto _ : state) {
        std::array<std::array<int, 2>, 3> pipes{};
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        for (std::size_t i = 0; i < pipes.size(); ++i) {
            ::pipe2(pipes[i].data(), O_CLOEXEC);
            ::posix_spawn_file_actions_adddup2(&actions, pipes[i][i == 0 ? 0 : 1], static_cast<int>(i));
        }
        pid_t pid = -1;
        ::posix_spawn(&pid, program, &actions, nullptr, pointers.data(), environ);
        for (std::size_t i = 0; i < pipes.size(); ++i) {
            ::close(pipes[i][i == 0 ? 0 : 1]);
        }
        state.PauseTiming();
        ::posix_spawn_file_actions_destroy(&actions);
        ::kill(pid, SIGTERM);
        for (std::size_t i = 0; i < pipes.size(); ++i) {
            ::close(pipes[i][i == 0 ? 1 : 0]);
        }
        ::waitpid(pid, nullptr, 0);
        ::usleep(1000);
        state.ResumeTiming();
    }
}

BENCHMARK(barePosixSpawn)->Unit(benchmark::kMicrosecond)->UseRealTime()->Iterations(500)->Repetitions(5);
BENCHMARK(connectHost)->Unit(benchmark::kMicrosecond)->UseRealTime()->Iterations(500)->Repetitions(5);

}  // namespace
