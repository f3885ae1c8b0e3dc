#include "update/BundleInfo.h"

#include "base/AtomicFile.h"

#include <plist/plist.h>

#include <cstdlib>
#include <memory>

namespace velmora {

namespace {

constexpr std::size_t largestPropertyList = std::size_t{1} << 20;

struct FreePropertyList {
    void operator()(plist_t node) const { plist_free(node); }
};
using PropertyList = std::unique_ptr<void, FreePropertyList>;

struct FreeText {
    void operator()(char* text) const { std::free(text); }
};

PropertyList parse(std::string_view bytes) {
    const auto size = static_cast<std::uint32_t>(bytes.size());
    plist_t node = nullptr;
    if (plist_is_binary(bytes.data(), size) != 0) {
        plist_from_bin(bytes.data(), size, &node);
    } else {
        plist_from_xml(bytes.data(), size, &node);
    }
    return PropertyList(node);
}

}  // namespace

Result<BundleInfo, Error> decodeBundleInfo(std::string_view propertyList) {
    if (propertyList.empty() || propertyList.size() > largestPropertyList) {
        return Error{"not a property list"};
    }
    const auto root = parse(propertyList);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT) {
        return Error{"not a property list with a dictionary"};
    }
    BundleInfo info;
    plist_t version = plist_dict_get_item(root.get(), "CFBundleShortVersionString");
    if (version != nullptr && plist_get_node_type(version) == PLIST_STRING) {
        char* text = nullptr;
        plist_get_string_val(version, &text);
        const std::unique_ptr<char, FreeText> owner(text);
        if (text != nullptr) {
            info.shortVersion = text;
        }
    }
    return info;
}

Result<BundleInfo, Error> readBundleInfo(const std::filesystem::path& bundle) {
    const auto bytes = readFile(bundle / "Contents/Info.plist", largestPropertyList);
    if (!bytes) {
        return bytes.error();
    }
    return decodeBundleInfo(*bytes);
}

}  // namespace velmora
