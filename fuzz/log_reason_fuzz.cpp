#include "Fuzz.h"
#include "base/Text.h"
#include "fakes/TemporaryDirectory.h"
#include "tunnel/HostLog.h"

#include <string>

// The log of a host, which holds whatever ssh and the server wrote, compared with the plain way to find the reason. A
// first byte of "%" repeats the white space behind it a thousand times, to reach the border of a block.

namespace {

using namespace velmora;

constexpr std::size_t longestReason = 4096;

std::string plainReason(std::string_view log) {
    for (const auto line : split(log, '\n')) {
        const auto text = trimWhitespaceAndNewlines(line);
        if (!text.empty() && !text.starts_with("[") && !text.starts_with("Warning:") && !text.starts_with("debug")) {
            return std::string(text);
        }
    }
    return "Exited (code 255)";
}

std::string logOf(std::string_view input) {
    if (!input.starts_with('%')) {
        return std::string(input);
    }
    input.remove_prefix(1);
    const auto blank = input.substr(0, input.find(trimWhitespaceAndNewlines(input)));
    std::string log;
    for (int i = 0; i < 1000; ++i) {
        log += blank;
    }
    return log.append(input.substr(blank.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryDirectory folder;
    const auto file = folder / "a.log";
    const auto log = logOf(textOf(data, size));
    writeContent(file, log);

    const auto reason = exitReason(file, 255);
    const auto expected = plainReason(log);
    require(!reason.empty() && reason.size() <= longestReason, "there is a reason of bounded length");
    require(expected.starts_with(reason), "the reason is the first line that is worth showing");
    require(reason == expected || expected.size() >= longestReason, "a reason is only cut where it is too long");
    require(isValidUtf8(reason) || !isValidUtf8(log), "a reason is cut between characters");
    return 0;
}
