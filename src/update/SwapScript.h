#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

namespace velmora {

/// The shell script that puts a new bundle ($1) in the place of the installed one ($2) once the process has ended, and
/// puts the old one back when that fails. Paths reach it as arguments only, so that no name needs quoting in it.
///
/// `relaunchLines` are the system's own last lines, which start the new bundle.
[[nodiscard]] std::string swapScript(pid_t process, std::string_view relaunchLines);

}  // namespace velmora
