#include "Fuzz.h"
#include "fakes/TemporaryDirectory.h"
#include "platform/qt/IniDefaultsStore.h"

#include <array>
#include <string>

// The settings file, as somebody may have edited it.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    static const TemporaryDirectory folder;
    constexpr std::array<std::string_view, 4> keys{"syncFolderPath", "proxyExceptions", "customPac", "updateFeedURL"};
    constexpr std::size_t names = 64;
    static std::size_t count = 0;
    // QSettings remembers the last files by their names, and does not read one again that seems unchanged.
    const auto file = folder / (std::to_string(count++ % names) + ".ini");
    writeContent(file, std::string(textOf(data, size)));
    std::array<std::string, keys.size()> values;
    {
        const auto defaults = std::make_unique<IniDefaultsStore>(file);
        for (std::size_t i = 0; i < keys.size(); ++i) {
            values[i] = defaults->string(keys[i]);
            require(values[i].empty() || defaults->contains(keys[i]), "what has a value is there");
            (void)defaults->boolean(keys[i]);
        }
        defaults->setString("written", values[0]);
    }
    const auto defaults = std::make_unique<IniDefaultsStore>(file);
    require(defaults->string("written") == values[0], "what is written is read");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        require(defaults->string(keys[i]) == values[i], "writing one value keeps the others");
    }
    std::filesystem::remove(file);
    return 0;
}
