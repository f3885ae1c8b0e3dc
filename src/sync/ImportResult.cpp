#include "sync/ImportResult.h"

#include "base/Localized.h"

#include <algorithm>
#include <limits>

namespace velmora {

namespace {

/// For the plural forms of a language, which ask for no more.
int atMostInt(std::int64_t count) {
    return static_cast<int>(std::min<std::int64_t>(count, std::numeric_limits<int>::max()));
}

}  // namespace

std::string importAlertMessage(const ImportResult& result) {
    auto message = result.imported == 1 ? localized("velmora::ImportResult", "Imported 1 tunnel.")
                                        : localizedCount("velmora::ImportResult", "Imported %n tunnels.", nullptr,
                                                         atMostInt(result.imported));
    if (result.skipped >= 1) {
        message += " ";
        message += result.skipped == 1 ? localized("velmora::ImportResult", "Skipped 1 duplicate.")
                                       : localizedCount("velmora::ImportResult", "Skipped %n duplicates.", nullptr,
                                                        atMostInt(result.skipped));
    }
    return message;
}

}  // namespace velmora
