#pragma once

#include <string>
#include <string_view>

namespace velmora {

/// What macOS's code signing must find in a bundle: a certificate of Apple's for this team of developers.
[[nodiscard]] std::string codeRequirement(std::string_view teamIdentifier);

}  // namespace velmora
