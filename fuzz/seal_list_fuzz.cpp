#include "Fuzz.h"
#include "fakes/TemporaryDirectory.h"
#include "platform/linux/BundleSeal.h"

#include <filesystem>
#include <string>

// The list of files in the seal of a bundle.

namespace {

/// A bundle of one file and one link, for seeds that are a list of just these.
class SmallBundle final {
public:
    SmallBundle() {
        std::filesystem::create_directories(folder_ / "Contents");
        velmora::writeContent(folder_ / "Contents/a", "a\n");
        std::filesystem::create_symlink("a", folder_ / "Contents/b");
    }

    [[nodiscard]] const std::filesystem::path& path() const { return folder_.path(); }

private:
    velmora::TemporaryDirectory folder_;
};

std::string written(const velmora::SealedItems& items) {
    std::string list;
    for (const auto& [path, item] : items) {
        list += item.sha256;
        list += item.kind == velmora::SealedItem::Kind::link ? " @" : "  ";
        list += path;
        list += '\n';
    }
    return list;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    static const SmallBundle bundle;
    const auto items = decodeSealList(textOf(data, size));
    if (!items) {
        require(!items.error().message.empty(), "a refusal has a reason");
        return 0;
    }
    require(!items->empty(), "a list that seals nothing is no list");
    require(written(*items) == textOf(data, size), "there is one way to write a list");
    if (compareWithSeal(bundle.path(), *items)) {
        require(items->size() == 2 && items->contains("Contents/a") && items->contains("Contents/b"),
                "only the list of a bundle's files fits the bundle");
    }
    return 0;
}
