#pragma once

#include <pacparser.h>

#include <stdexcept>
#include <string>

namespace velmora {

/// A JavaScript engine with one proxy script in it. Only one exists at a time.
class PacEngine final {
public:
    explicit PacEngine(const std::string& script) {
        if (pacparser_init() == 0) {
            throw std::runtime_error("no engine");
        }
        if (pacparser_parse_pac_string(script.c_str()) == 0) {
            pacparser_cleanup();
            throw std::runtime_error("not a script: " + script);
        }
    }
    PacEngine(const PacEngine&) = delete;
    PacEngine& operator=(const PacEngine&) = delete;
    ~PacEngine() { pacparser_cleanup(); }

    [[nodiscard]] std::string proxyFor(const std::string& host) const {
        // The text belongs to the engine.
        const auto* proxy = pacparser_find_proxy(("http://" + host + "/").c_str(), host.c_str());
        return proxy != nullptr ? proxy : "";
    }
};

}  // namespace velmora
