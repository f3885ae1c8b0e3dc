#pragma once

#include "base/Uuid.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>

namespace velmora {

/// How a tunnel is doing right now. Never stored in a file.
struct ConnectionStatus {
    enum class State : std::uint8_t { disconnected, connecting, connected, error };

    State state = State::disconnected;
    std::string message;  ///< shown to the user; only with `error`

    bool operator==(const ConnectionStatus&) const = default;

    static ConnectionStatus disconnected() { return {}; }
    static ConnectionStatus connecting() { return {State::connecting, {}}; }
    static ConnectionStatus connected() { return {State::connected, {}}; }
    static ConnectionStatus error(std::string message) { return {State::error, std::move(message)}; }

    /// Connecting or connected.
    [[nodiscard]] bool isActive() const { return state == State::connecting || state == State::connected; }
};

/// A host without an entry is disconnected.
using StatusTable = std::unordered_map<Uuid, ConnectionStatus>;

}  // namespace velmora
