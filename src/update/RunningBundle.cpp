#include "update/RunningBundle.h"

#include "update/BundleInfo.h"

namespace velmora {

RunningBundle RunningBundle::ofProgram(const std::filesystem::path& program, std::string_view builtVersion) {
    const auto contents = program.parent_path().parent_path();
    const auto bundle = contents.parent_path();
    if (program.parent_path().filename() != "MacOS" || contents.filename() != "Contents" ||
        bundle.extension() != ".app") {
        return {.path = program, .isBundle = false, .version = std::string(builtVersion)};
    }
    const auto info = readBundleInfo(bundle);
    return {.path = bundle,
            .isBundle = true,
            .version = info && info->shortVersion ? *info->shortVersion : std::string("0")};
}

}  // namespace velmora
