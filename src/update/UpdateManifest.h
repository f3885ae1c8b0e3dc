#pragma once

#include "base/Result.h"

#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// What the feed offers.
struct UpdateManifest {
    std::string version;                              ///< compared with the running one
    std::optional<std::string> build;                 ///< for information
    std::optional<std::string> date;                  ///< for information
    std::string url;                                  ///< of the archive, a zip file
    std::optional<std::string> sha256;                ///< of the archive, hexadecimal
    std::optional<std::string> notes;                 ///< for display
    std::optional<std::string> minimumSystemVersion;  ///< kept, not evaluated

    bool operator==(const UpdateManifest&) const = default;
};

/// Reads the feed's JSON object. A missing `version` or `url` and a value that is not text fail; null stands for an
/// absent optional value; unknown keys are ignored.
Result<UpdateManifest, Error> decodeManifest(std::string_view json);

}  // namespace velmora
