#include "sync/ImportResult.h"

#include <string_view>

namespace velmora {

namespace {

std::string counted(std::int64_t count, std::string_view noun) {
    return std::to_string(count) + " " + std::string(noun) + (count == 1 ? "" : "s");
}

}  // namespace

std::string importAlertMessage(const ImportResult& result) {
    auto message = "Imported " + counted(result.imported, "tunnel") + ".";
    if (result.skipped >= 1) {
        message += " Skipped " + counted(result.skipped, "duplicate") + ".";
    }
    return message;
}

}  // namespace velmora
