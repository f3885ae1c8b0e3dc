#include "Fuzz.h"
#include "base/Text.h"
#include "fakes/TemporaryDirectory.h"
#include "pac/PacGenerator.h"
#include "pac/PacImporter.h"

#include <algorithm>
#include <set>
#include <string>

// A script of somebody else whose patterns are imported.

namespace {

using namespace velmora;

std::vector<SSHHost> hostsListeningOn(const std::vector<PacImporter::Entry>& entries) {
    std::set<std::int64_t> ports{1080};
    for (const auto& entry : entries) {
        ports.insert(entry.port);
    }
    std::vector<SSHHost> hosts(1);
    for (const auto port : ports) {
        ForwardingRule rule;
        rule.type = ForwardingType::dynamic;
        rule.bindPort = port;
        rule.pacPatterns = " *.known \n";
        hosts.front().forwardingRules.push_back(std::move(rule));
    }
    return hosts;
}

/// Whether the pattern is still the same when it has been stored, one a line, and read back.
bool isOneItem(const std::string& pattern) {
    return listItems(pattern) == std::vector<std::string_view>{pattern};
}

void checkGeneratedScript(const std::vector<SSHHost>& hosts) {
    const auto script = PacGenerator::generate(hosts, {});
    const auto found = PacImporter::parse(script);
    for (const auto& rule : hosts.front().forwardingRules) {
        for (const auto pattern : listItems(rule.pacPatterns)) {
            require(
                rule.bindPort < 1 || pattern.find('\\') != std::string_view::npos ||
                    std::ranges::find(found, PacImporter::Entry{std::string(pattern), rule.bindPort}) != found.end(),
                "our own script can be imported");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryDirectory folder;
    const auto file = folder / "proxy.pac";
    writeContent(file, std::string(textOf(data, size)));

    const auto script = PacImporter::readScript(file);
    require(script.empty() || script == textOf(data, size), "a script is read whole or not at all");
    const auto entries = PacImporter::parse(script);
    std::set<std::pair<std::string, std::int64_t>> seen;
    bool areItems = true;
    for (const auto& entry : entries) {
        require(!entry.pattern.empty() && entry.pattern.find('"') == std::string::npos, "a pattern stood in quotes");
        require(entry.port >= 0, "a port is digits");
        require(seen.emplace(entry.pattern, entry.port).second, "each pattern and port comes once");
        areItems = areItems && isOneItem(entry.pattern);
    }
    auto hosts = hostsListeningOn(entries);
    const auto additions = PacImporter::addPatterns(entries, hosts);
    require(additions <= entries.size(), "each entry is added once to the one rule on its port");
    require(entries.empty() == (PacImporter::outcome(entries, additions).message == "Nothing found"),
            "the words fit what was found");
    if (areItems) {
        auto twice = hosts;
        require(PacImporter::addPatterns(entries, twice) == 0 && twice == hosts, "nothing is added twice");
        checkGeneratedScript(hosts);
    }
    return 0;
}
