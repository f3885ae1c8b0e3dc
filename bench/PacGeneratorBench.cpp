// What writing the script costs, against a std::stable_sort of the keys that it sorts by.
#include "pac/PacGenerator.h"
#include "pac/PacHighlighter.h"
#include "pac/ProxyExceptions.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace velmora;

std::string typicalPattern(std::mt19937& random) {
    constexpr std::array labels{"db", "web", "build", "intranet", "eu-west-1", "cache", "git", "monitoring"};
    const auto pick = [&](unsigned below) { return static_cast<unsigned>(random() % below); };
    std::string pattern = pick(2) == 0 ? "*" : labels[pick(labels.size())] + std::to_string(pick(1000));
    for (auto left = 1 + pick(3); left > 0; --left) {
        pattern += std::string(".") + labels[pick(labels.size())];
    }
    return pick(5) == 0 ? "10." + std::to_string(pick(256)) + ".*" : pattern + ".example";
}

std::vector<SSHHost> hostsWith(std::int64_t patterns, std::int64_t patternsPerHost) {
    std::mt19937 random(20240501);
    std::vector<SSHHost> hosts(static_cast<std::size_t>(patterns / patternsPerHost));
    for (auto& host : hosts) {
        host.name = "Host " + std::to_string(random() % 10000);
        ForwardingRule rule;
        rule.type = ForwardingType::dynamic;
        rule.bindPort = 1024 + static_cast<std::int64_t>(random() % 60000);
        for (std::int64_t i = 0; i < patternsPerHost; ++i) {
            rule.pacPatterns += typicalPattern(random) + "\n";
        }
        host.forwardingRules.push_back(std::move(rule));
    }
    return hosts;
}

/// Class of the wildcard, then dots, then literal characters, the latter two negated.
using Key = std::tuple<int, int, int>;

std::vector<Key> keysOf(const std::vector<SSHHost>& hosts) {
    std::vector<Key> keys;
    for (const auto& host : hosts) {
        for (const auto& pattern : parseExceptions(host.forwardingRules.front().pacPatterns)) {
            const auto stars = std::ranges::count(pattern, '*');
            keys.emplace_back(pattern.front() == '*' ? 2 : (stars > 0 ? 1 : 0),
                              -static_cast<int>(std::ranges::count(pattern, '.')),
                              -static_cast<int>(static_cast<std::ptrdiff_t>(pattern.size()) - stars));
        }
    }
    return keys;
}

void generate(benchmark::State& state) {
    const auto hosts = hostsWith(state.range(0), state.range(1));
    for (auto _ : state) {
        benchmark::DoNotOptimize(PacGenerator::generate(hosts, {}));
    }
}

void stableSortOfTheKeys(benchmark::State& state) {
    const auto keys = keysOf(hostsWith(state.range(0), state.range(1)));
    for (auto _ : state) {
        auto sorted = keys;
        std::ranges::stable_sort(sorted);
        benchmark::DoNotOptimize(sorted.data());
    }
}

void highlightMegabyte(benchmark::State& state) {
    const auto script = PacGenerator::generate(hostsWith(12000, 4), {});
    const std::u16string text(script.begin(), script.end());
    for (auto _ : state) {
        benchmark::DoNotOptimize(PacHighlighter::highlight(text));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(script.size()));
}

/// Patterns, and how many of them each host has.
void sizes(benchmark::internal::Benchmark* bench) {
    bench->Unit(benchmark::kMicrosecond)->ArgNames({"patterns", "perHost"});
    bench->Args({4000, 4});
    for (const std::int64_t perHost : {4, 25}) {
        for (const std::int64_t patterns : {1000, 10000, 100000}) {
            bench->Args({patterns, perHost});
        }
    }
}

BENCHMARK(generate)->Apply(sizes);
BENCHMARK(stableSortOfTheKeys)->Apply(sizes);
BENCHMARK(highlightMegabyte)->Unit(benchmark::kMillisecond);

}  // namespace
