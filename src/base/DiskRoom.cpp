#include "base/DiskRoom.h"

#include <system_error>

namespace velmora {

Result<void, Error> requireRoom(const std::filesystem::path& folder, std::uint64_t bytes) {
    constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;
    constexpr std::uint64_t reserve = 16 * mebibyte;
    std::error_code error;
    const auto space = std::filesystem::space(folder, error);
    if (error) {
        return Error{folder.string() + ": " + error.message()};
    }
    if (space.available < reserve || space.available - reserve < bytes) {
        return Error{folder.string() + ": not enough room on the disk, " + std::to_string(bytes / mebibyte + 1) +
                     " MB needed"};
    }
    return {};
}

}  // namespace velmora
