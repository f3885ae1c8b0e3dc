#pragma once

#include "base/Uuid.h"

#include <cstdint>
#include <string>

namespace velmora {

/// What an import has done. Each one is a result of its own, also with equal numbers.
struct ImportResult {
    Uuid id = Uuid::random();
    std::int64_t imported = 0;
    std::int64_t skipped = 0;

    bool operator==(const ImportResult&) const = default;
};

/// What the user is told, such as "Imported 3 tunnels. Skipped 1 duplicate."
[[nodiscard]] std::string importAlertMessage(const ImportResult& result);

}  // namespace velmora
