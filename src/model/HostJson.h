#pragma once

#include "base/Result.h"
#include "model/SSHHost.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// The largest list of hosts, in bytes, that is read from anywhere.
inline constexpr std::size_t maximumHostListSize = std::size_t{256} * 1024 * 1024;

/// Reads a JSON array of hosts. Every key may be missing or null and then has its default; unknown keys are ignored;
/// of a repeated key the last counts. A value of the wrong type or outside its set, invalid UTF-8, nesting beyond 64
/// levels or more than `maximumHostListSize` bytes fail the whole list: the error names the place, such as
/// "[2].forwardingRules[0].type", and the reason.
Result<std::vector<SSHHost>, Error> decodeHosts(std::string_view json);

/// Writes hosts as a compact JSON array, every key in the order of the fields.
/// Fails when a text is not valid UTF-8, because nobody could read it back.
Result<std::string, Error> encodeHosts(const std::vector<SSHHost>& hosts);

}  // namespace velmora
