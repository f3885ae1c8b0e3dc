// What sharing costs the main thread, and the Core Tunnel import against the JSON library's own parse of the same file.
#include "base/AtomicFile.h"
#include "fakes/InMemoryDefaultsStore.h"
#include "fakes/TemporaryDirectory.h"
#include "fakes/VirtualScheduler.h"
#include "model/HostJson.h"
#include "sync/CoreTunnelImporter.h"
#include "sync/FolderSync.h"

#include <benchmark/benchmark.h>
#include <boost/json/parse.hpp>

namespace {

using namespace velmora;

std::vector<SSHHost> thousandHosts() {
    std::vector<SSHHost> hosts(1000);
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        hosts[i].name = "server " + std::to_string(i);
        hosts[i].hostname = "host-" + std::to_string(i) + ".internal.example";
        hosts[i].forwardingRules.resize(4);
    }
    return hosts;
}

// ---- the poll ----

void pollAnUnchangedFile(benchmark::State& state) {
    const TemporaryDirectory folder;
    VirtualScheduler scheduler;
    InMemoryDefaultsStore defaults;
    FolderSync sync(scheduler, defaults);
    sync.setFolder(folder.path());
    sync.push(thousandHosts());
    for (auto _ : state) {
        scheduler.advance(std::chrono::seconds(5));
    }
}

// ---- saving into the folder, against a bare atomic write of the same bytes ----

void pushThousandHosts(benchmark::State& state) {
    const TemporaryDirectory folder;
    VirtualScheduler scheduler;
    InMemoryDefaultsStore defaults;
    FolderSync sync(scheduler, defaults);
    sync.setFolder(folder.path());
    const auto hosts = thousandHosts();
    for (auto _ : state) {
        sync.push(hosts);
    }
}

void bareAtomicWrite(benchmark::State& state) {
    const TemporaryDirectory folder;
    const auto json = *encodeHosts(thousandHosts());
    for (auto _ : state) {
        benchmark::DoNotOptimize(writeFileAtomically(folder / "file", json));
    }
}

// ---- import ----

const std::string& tenThousandProfiles() {
    static const auto file = [] {
        std::string json = R"({"profiles":[)";
        for (int i = 0; i < 10000; ++i) {
            const auto number = std::to_string(i);
            json += (i > 0 ? "," : "") +
                    (R"({"name":"server )" + number + R"(","address":"host-)" + number +
                     R"(.internal.example","port":22,"user":"deploy","autoConnect":true,"identityFile":"~/.ssh/id",)"
                     R"("options":{"ServerAliveInterval":"30","ServerAliveCountMax":"3","Compression":"yes"},)"
                     R"("forwardings":[{"type":"local","bindAddress":"127.0.0.1","bindPort":8080,)"
                     R"("targetAddress":"db.internal.example","targetPort":5432,"enabled":true},)"
                     R"({"type":"dynamic","bindAddress":"127.0.0.1","bindPort":1080,"enabled":true}]})");
        }
        return json + "]}";
    }();
    return file;
}

void importProfiles(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(CoreTunnelImporter::decode(tenThousandProfiles()));
    }
}

void parseOfTheLibrary(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(boost::json::parse(tenThousandProfiles()));
    }
}

BENCHMARK(pollAnUnchangedFile)->Unit(benchmark::kMicrosecond);
BENCHMARK(bareAtomicWrite)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(pushThousandHosts)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(parseOfTheLibrary)->Unit(benchmark::kMillisecond);
BENCHMARK(importProfiles)->Unit(benchmark::kMillisecond);

}  // namespace
