#pragma once

#include <string>
#include <string_view>

namespace velmora {

/// The text of a settings file without the lines that hold an object of the toolkit's ("@Variant(…)", "@DateTime(…)"),
/// however they are quoted or escaped. We write none, and a few bytes of one make the toolkit ask for any amount of
/// memory.
[[nodiscard]] std::string withoutObjects(std::string_view settings);

}  // namespace velmora
