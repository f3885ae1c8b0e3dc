#pragma once

#include "model/SSHHost.h"

#include <string>
#include <vector>

/// Writes the proxy auto-configuration script that sends hosts through the tunnels.
namespace velmora::PacGenerator {

/// The script: one DIRECT line for each exception in the order given, then one line for each pattern of each enabled
/// Dynamic rule with a port, most specific first, then DIRECT for all else. Lines end in LF, the last one in nothing.
///
/// Patterns without "*" come before those with one further in, and those before the ones that begin with it; then the
/// pattern with more dots comes first, then the longer one not counting "*", then the one that stands first in the
/// host list. Connected or not makes no difference. Texts are put in as they are, quotes and all.
[[nodiscard]] std::string generate(const std::vector<SSHHost>& hosts, const std::vector<std::string>& exceptions);

}  // namespace velmora::PacGenerator
