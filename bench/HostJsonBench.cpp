// The hosts file against the JSON library's own work on the same document: 10,000 hosts with 4 rules each.
#include "model/HostJson.h"

#include <benchmark/benchmark.h>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>

namespace {

using namespace velmora;

std::vector<SSHHost> manyHosts() {
    std::vector<SSHHost> hosts(10000);
    for (std::size_t i = 0; i < hosts.size(); ++i) {
        auto& host = hosts[i];
        const auto number = std::to_string(i);
        host.name = "server " + number;
        host.hostname = "host-" + number + ".internal.example";
        host.username = "deploy";
        host.identityFile = "~/.ssh/id_ed25519";
        host.customOptions = "ForwardAgent=yes\nLogLevel=ERROR";
        host.forwardingRules.resize(4);
        for (auto& rule : host.forwardingRules) {
            rule.type = ForwardingType::dynamic;
            rule.bindAddress = "localhost";
            rule.bindPort = 21000;
            rule.targetAddress = "db.internal.example";
            rule.targetPort = 5432;
            rule.pacPatterns = "*.internal.example\n10.0.*";
        }
    }
    return hosts;
}

const std::string& document() {
    static const auto json = *encodeHosts(manyHosts());
    return json;
}

void reportSize(benchmark::State& state) {
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * document().size()));
}

void decodeOurs(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(decodeHosts(document()));
    }
    reportSize(state);
}

void parseOfTheLibrary(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(boost::json::parse(document()));
    }
    reportSize(state);
}

void encodeOurs(benchmark::State& state) {
    const auto hosts = manyHosts();
    for (auto _ : state) {
        benchmark::DoNotOptimize(encodeHosts(hosts));
    }
    reportSize(state);
}

void serializeOfTheLibrary(benchmark::State& state) {
    const auto value = boost::json::parse(document());
    for (auto _ : state) {
        benchmark::DoNotOptimize(boost::json::serialize(value));
    }
    reportSize(state);
}

BENCHMARK(decodeOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(parseOfTheLibrary)->Unit(benchmark::kMillisecond);
BENCHMARK(encodeOurs)->Unit(benchmark::kMillisecond);
BENCHMARK(serializeOfTheLibrary)->Unit(benchmark::kMillisecond);

}  // namespace
