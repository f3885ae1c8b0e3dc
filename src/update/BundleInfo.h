#pragma once

#include "base/Result.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// What a bundle says about itself in its Contents/Info.plist.
struct BundleInfo {
    std::optional<std::string> shortVersion;  ///< CFBundleShortVersionString, where it is text

    bool operator==(const BundleInfo&) const = default;
};

/// Reads a property list, XML or binary. Anything but a dictionary fails, and so do more than 128 KB.
Result<BundleInfo, Error> decodeBundleInfo(std::string_view propertyList);

/// Reads the property list of a bundle.
Result<BundleInfo, Error> readBundleInfo(const std::filesystem::path& bundle);

}  // namespace velmora
