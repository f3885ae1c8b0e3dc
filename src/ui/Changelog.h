#pragma once

#include <span>
#include <string_view>

namespace velmora {

/// What has changed with one version. All of it is plain UTF-8 text, there for the whole run.
struct ChangelogEntry {
    std::string_view version;
    std::string_view date;  ///< year, month and day, as in "2026-05-04"
    std::span<const std::string_view> changes;
};

/// Newest first. The build makes it from CHANGELOG.md.
extern const std::span<const ChangelogEntry> changelog;

}  // namespace velmora
