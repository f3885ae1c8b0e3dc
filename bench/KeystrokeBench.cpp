// One keystroke in a host's name, with 1,000 hosts and 4,000 patterns, until the served proxy script has changed.
#include "fakes/FakeSystem.h"

#include <benchmark/benchmark.h>

namespace {

using namespace velmora;

std::vector<SSHHost> thousandHosts() {
    std::vector<SSHHost> hosts(1000);
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        const auto number = std::to_string(i);
        hosts[i].name = "server " + number;
        hosts[i].hostname = "host-" + number + ".internal.example";
        hosts[i].forwardingRules.resize(1);
        auto& rule = hosts[i].forwardingRules[0];
        rule.type = ForwardingType::dynamic;
        rule.bindPort = 21000 + static_cast<std::int64_t>(i);
        rule.pacPatterns =
            "*.zone" + number + ".example\nhost" + number + ".example\n10." + number + ".*\n*.n" + number;
    }
    return hosts;
}

void keystroke(benchmark::State& state) {
    FakeSystem system;
    TunnelManager manager(system.platform());
    manager.hosts().set(thousandHosts());
    for (auto _ : state) {
        manager.hosts().edit([](std::vector<SSHHost>& hosts) { hosts[500].name += 'x'; });
        benchmark::DoNotOptimize(manager.pacServer().content());
    }
}

BENCHMARK(keystroke)->Unit(benchmark::kMillisecond)->Iterations(200);

}  // namespace
