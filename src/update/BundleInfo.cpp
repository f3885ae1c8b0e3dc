#include "update/BundleInfo.h"

#include "base/AtomicFile.h"
#include "update/BinaryDictionary.h"

#include <plist/plist.h>

#include <cstdint>
#include <memory>

namespace velmora {

namespace {

/// Far more than an application has to say. The time that the XML reader takes grows with the square of the size.
constexpr std::size_t largestPropertyList = std::size_t{128} << 10;

constexpr auto versionKey = "CFBundleShortVersionString";

struct FreePropertyList {
    void operator()(plist_t node) const { plist_free(node); }
};
using PropertyList = std::unique_ptr<void, FreePropertyList>;

Result<BundleInfo, Error> decodeBinary(std::string_view bytes) {
    const auto root = BinaryDictionary::open(bytes);
    if (!root) {
        return Error{"not a property list with a dictionary"};
    }
    return BundleInfo{root->text(versionKey)};
}

Result<BundleInfo, Error> decodeXml(std::string_view text) {
    plist_t node = nullptr;
    plist_from_xml(text.data(), static_cast<std::uint32_t>(text.size()), &node);
    const PropertyList root(node);
    if (!root || plist_get_node_type(root.get()) != PLIST_DICT) {
        return Error{"not a property list with a dictionary"};
    }
    BundleInfo info;
    plist_t version = plist_dict_get_item(root.get(), versionKey);
    if (version != nullptr && plist_get_node_type(version) == PLIST_STRING) {
        std::uint64_t length = 0;
        if (const char* bytes = plist_get_string_ptr(version, &length); bytes != nullptr) {
            info.shortVersion.emplace(bytes, length);
        }
    }
    return info;
}

}  // namespace

Result<BundleInfo, Error> decodeBundleInfo(std::string_view propertyList) {
    if (propertyList.empty() || propertyList.size() > largestPropertyList) {
        return Error{"not a property list"};
    }
    return BinaryDictionary::isBinary(propertyList) ? decodeBinary(propertyList) : decodeXml(propertyList);
}

Result<BundleInfo, Error> readBundleInfo(const std::filesystem::path& bundle) {
    const auto bytes = readFile(bundle / "Contents/Info.plist", largestPropertyList);
    if (!bytes) {
        return bytes.error();
    }
    return decodeBundleInfo(*bytes);
}

}  // namespace velmora
