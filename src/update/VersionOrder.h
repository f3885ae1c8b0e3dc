#pragma once

#include <string_view>

namespace velmora {

/// Whether the first version comes after the second: as text, with runs of ASCII digits compared as numbers of any
/// length. "1.10" comes after "1.9", "1.2.0" after "1.2"; "1.02" and "1.2" are equal.
[[nodiscard]] bool isNewerVersion(std::string_view version, std::string_view than);

}  // namespace velmora
