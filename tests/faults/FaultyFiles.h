#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>

/// Makes operations on files fail, for the whole process: the functions of the C library are taken over. Off until it
/// is armed. One thread works on the files while it is armed.
namespace velmora::faults {

enum class Fault : std::uint8_t {
    none,         ///< only counts
    ioError,      ///< EIO
    noSpace,      ///< ENOSPC
    readOnly,     ///< EROFS
    shortWrite,   ///< half of the bytes are written and reported, then there is no space
    killBefore,   ///< the process is killed before the operation
    killHalfway,  ///< … when half of the bytes are written
    killAfter     ///< … when it is done
};

/// From now on the operation with this number, counted from 1, on a file below the folder has the fault.
void arm(const std::filesystem::path& below, Fault fault, long operation);

/// From now on a new file below the folder has this mode, and every change of a mode is refused, as on some shares.
void armFixedMode(const std::filesystem::path& below, mode_t mode);

/// Every operation works again. Returns how many there were while it was armed.
long disarm();

}  // namespace velmora::faults
