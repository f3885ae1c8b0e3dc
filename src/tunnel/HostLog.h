#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace velmora {

// The log file of a host: a header line for each start, what ssh wrote on standard error, an exit line. It only grows.
// Nothing here reports an error: a tunnel works without its log. Any thread.

/// Where a host's log stands. The name is used as it is; hosts of the same name share a file.
[[nodiscard]] std::filesystem::path hostLogPath(const std::filesystem::path& logDirectory, const std::string& hostName);

/// Adds bytes at the end of the file, which is made when it is missing.
void appendToLog(const std::filesystem::path& path, std::string_view bytes);

/// The line that says why ssh ended: the first of the whole file that ssh itself wrote as a plain message, else the
/// exit status in words. The file is read only as far as that line, in memory that does not grow with it.
[[nodiscard]] std::string exitReason(const std::filesystem::path& path, int exitStatus);

}  // namespace velmora
