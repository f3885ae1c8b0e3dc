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
                argument += "\\\\";
                argument += character;
                break;
            case '\\':
                argument += "\\\\\\\\";
                break;
            case '%':
                argument += "%%";
                break;
            default:
                argument += character;
        }
    }
    return argument + '"';
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
    return std::none_of(all.begin(), all.end(), [](std::string_view line) {
        return line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false";
    });
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
