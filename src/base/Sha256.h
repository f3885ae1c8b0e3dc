#pragma once

#include "base/Cancellation.h"
#include "base/Result.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace velmora {

/// 64 lower-case hexadecimal digits.
[[nodiscard]] std::string sha256(std::string_view bytes);

/// The same of a file's bytes, however large it is; a symbolic link is not followed. The error names the path and the
/// reason. Any thread.
Result<std::string, Error> sha256OfFile(const std::filesystem::path& path, const Cancellation& cancellation);

}  // namespace velmora
