#include "platform/linux/AutostartEntry.h"

#include "base/AtomicFile.h"
#include "base/Text.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace velmora {

namespace {

/// A path as one argument in the command of a desktop entry: quoted for the command, then escaped as a value.
std::string asArgument(std::string_view path) {
    std::string argument = "\"";
    for (const char character : path) {
        switch (character) {
            case '"':
            case '`':
            case '$':
                argument += R"(\\)";
                argument += character;
                break;
            case '\\':
                argument += R"(\\\\)";
                break;
            case '%':
                argument += "%%";
                break;
            case '\n':
                argument += R"(\n)";
                break;
            case '\r':
                argument += R"(\r)";
                break;
            case '\t':
                argument += R"(\t)";
                break;
            default:
                argument += character;
        }
    }
    return argument + '"';
}

/// Whether this line of an entry keeps the session from starting it.
bool switchesOff(std::string_view line) {
    const auto equals = line.find('=');
    if (equals == std::string_view::npos) {
        return false;
    }
    const auto key = trimWhitespaceAndNewlines(line.substr(0, equals));
    const auto value = trimWhitespaceAndNewlines(line.substr(equals + 1));
    if (key == "Hidden") {
        return value == "true" || value == "1";
    }
    const bool isSwitch = key.starts_with("X-") && key.ends_with("-Autostart-enabled");  // each desktop has its own
    return isSwitch && (value == "false" || value == "0");
}

}  // namespace

AutostartEntry::AutostartEntry(const std::filesystem::path& configuration, std::filesystem::path program)
    : file_(configuration / "autostart" / "com.velmora.app.desktop"), program_(std::move(program)) {}

bool AutostartEntry::isEnabled() const {
    constexpr std::size_t largest = std::size_t{64} * 1024;
    const auto entry = readFile(file_, largest);
    if (!entry) {
        return false;
    }
    const auto all = lines(*entry);
    const auto isGroup = [](std::string_view line) { return line.starts_with('['); };
    const auto own = std::find(all.begin(), all.end(), "[Desktop Entry]");
    const auto end = own == all.end() ? own : std::find_if(own + 1, all.end(), isGroup);
    return own != all.end() && std::none_of(own, end, switchesOff);
}

void AutostartEntry::set(bool enabled) {
    std::error_code ignored;  // the switch keeps what the user chose
    if (!enabled) {
        std::filesystem::remove(file_, ignored);
        return;
    }
    std::filesystem::create_directories(file_.parent_path(), ignored);
    const std::string entry =
        "[Desktop Entry]\n"
        "Type=Application\n"
        "Name=Velmora\n"
        "Comment=Keeps SSH tunnels up\n"
        "Exec=" +
        asArgument(program_.string()) +
        "\n"
        "Icon=com.velmora.app\n"
        "Terminal=false\n";
    (void)writeFileAtomically(file_, entry);
}

}  // namespace velmora
