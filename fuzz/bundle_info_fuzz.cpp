#include "Fuzz.h"
#include "base/Text.h"
#include "update/BundleInfo.h"

#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

// The Info.plist of a bundle, XML or binary.

namespace {

using Writer = void (*)(plist_t, char**, std::uint32_t*);

std::string propertyList(const std::string& version, Writer write) {
    const std::unique_ptr<void, decltype(&plist_free)> root(plist_new_dict(), &plist_free);
    plist_dict_set_item(root.get(), "CFBundleShortVersionString", plist_new_string(version.c_str()));
    char* bytes = nullptr;
    std::uint32_t size = 0;
    write(root.get(), &bytes, &size);
    const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
    return {bytes, size};
}

bool isPlainText(const std::string& text) {
    return velmora::isValidUtf8(text) && std::ranges::none_of(text, [](char c) { return c >= '\0' && c < ' '; });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace velmora;

    const auto info = decodeBundleInfo(textOf(data, size));
    if (!info) {
        require(!info.error().message.empty(), "a refusal has a reason");
        return 0;
    }
    const auto again = decodeBundleInfo(textOf(data, size));
    require(again && *again == *info, "the same bytes say the same");
    if (info->shortVersion && isPlainText(*info->shortVersion)) {
        for (const Writer write : {Writer(plist_to_bin), Writer(plist_to_xml)}) {
            const auto written = decodeBundleInfo(propertyList(*info->shortVersion, write));
            require(written && written->shortVersion == info->shortVersion, "a version that is written is read");
        }
    }
    return 0;
}
