#include "Fuzz.h"
#include "base/Text.h"
#include "fakes/TemporaryDirectory.h"
#include "platform/qt/IniDefaultsStore.h"

#include <array>
#include <string>

// The settings file, as somebody may have edited it.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    constexpr std::array<std::string_view, 4> keys{"syncFolderPath", "proxyExceptions", "customPac", "updateFeedURL"};
    constexpr std::size_t names = 64;
    static const TemporaryDirectory folder;
    static std::size_t count = 0;
    // QSettings remembers the last files by their names, and does not read one again that seems unchanged.
    const auto file = folder / (std::to_string(count % names) + ".conf");
    const auto moved = folder / (std::to_string(count % names) + ".moved.conf");
    ++count;
    writeContent(file, std::string(textOf(data, size)));

    IniDefaultsStore edited(file);
    std::array<std::string, keys.size()> values;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        values[i] = edited.string(keys[i]);
        require(isValidUtf8(values[i]), "a value is text");
        require(values[i].empty() || edited.contains(keys[i]), "what has a value is there");
        (void)edited.boolean(keys[i]);
    }
    require(contentOf(file) == textOf(data, size), "reading leaves the file alone");
    edited.setString("written", values[0]);

    std::filesystem::rename(file, moved);
    const IniDefaultsStore again(moved);
    require(again.string("written") == values[0], "what is written is read");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        require(again.string(keys[i]) == values[i], "writing one value keeps the others");
    }
    std::filesystem::remove(moved);
    return 0;
}
