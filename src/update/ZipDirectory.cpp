#include "update/ZipDirectory.h"

#include "update/FileRange.h"

#include <sys/stat.h>

#include <array>
#include <string_view>

namespace velmora {

namespace {

// The format's own numbers: signatures, lengths of the fixed parts, bits.
constexpr std::uint32_t localSignature = 0x04034b50;
constexpr std::uint32_t centralSignature = 0x02014b50;
constexpr std::uint32_t endSignature = 0x06054b50;
constexpr std::uint32_t descriptorSignature = 0x08074b50;
constexpr std::size_t localLength = 30;
constexpr std::size_t centralLength = 46;
constexpr std::size_t endLength = 22;
constexpr std::uint16_t flagDescriptor = 0x0008;
constexpr std::uint16_t flagsUnderstood = 0x0002 | 0x0004 | flagDescriptor | 0x0800;  // deflate's hints, UTF-8
constexpr std::uint32_t moreThanFits = 0xffffffff;
constexpr std::uint8_t madeOnUnix = 3;
constexpr std::uint8_t madeOnMac = 19;

constexpr std::uint64_t largestDirectory = std::uint64_t{16} << 20;

/// Little-endian numbers in a block of bytes.
class Fields final {
public:
    explicit Fields(std::string_view bytes) : bytes_(bytes) {}
    [[nodiscard]] std::uint8_t byte(std::size_t at) const { return static_cast<std::uint8_t>(bytes_[at]); }
    [[nodiscard]] std::uint16_t half(std::size_t at) const {
        return static_cast<std::uint16_t>(byte(at) | byte(at + 1) << 8);
    }
    [[nodiscard]] std::uint32_t word(std::size_t at) const {
        return half(at) | static_cast<std::uint32_t>(half(at + 2)) << 16;
    }

private:
    std::string_view bytes_;
};

class DirectoryReader final {
public:
    DirectoryReader(int archive, std::size_t mostEntries) : archive_(archive), mostEntries_(mostEntries) {}

    Result<std::vector<ZipEntry>, Error> read() {
        if (!readEnd()) {
            return Error{"not a complete zip archive"};
        }
        if (count_ > mostEntries_) {
            return Error{"too many entries"};
        }
        std::string directory(directorySize_, '\0');
        if (!readRange(archive_, directoryOffset_, directory.data(), directory.size())) {
            return Error{"not a complete zip archive"};
        }
        return readEntries(directory);
    }

private:
    bool readEnd() {
        struct stat status {};
        if (::fstat(archive_, &status) != 0 || status.st_size < static_cast<off_t>(endLength)) {
            return false;
        }
        const auto endOffset = static_cast<std::uint64_t>(status.st_size) - endLength;
        std::array<char, endLength> bytes{};
        if (!readRange(archive_, endOffset, bytes.data(), bytes.size())) {
            return false;
        }
        const Fields end({bytes.data(), bytes.size()});
        count_ = end.half(10);
        directorySize_ = end.word(12);
        directoryOffset_ = end.word(16);
        return end.word(0) == endSignature && end.half(4) == 0 && end.half(6) == 0 && end.half(8) == count_ &&
               end.half(20) == 0 && directorySize_ <= largestDirectory &&
               directoryOffset_ + directorySize_ == endOffset;
    }

    Result<std::vector<ZipEntry>, Error> readEntries(std::string_view directory) {
        std::vector<ZipEntry> entries;
        entries.reserve(count_);
        while (entries.size() < count_) {
            if (directory.size() < centralLength || Fields(directory).word(0) != centralSignature) {
                return Error{"broken directory"};
            }
            const Fields central(directory);
            const std::size_t nameLength = central.half(28);
            const std::size_t length = centralLength + nameLength + central.half(30) + central.half(32);
            if (directory.size() < length) {
                return Error{"broken directory"};
            }
            ZipEntry entry = readCentral(central);
            entry.name = directory.substr(centralLength, nameLength);
            directory.remove_prefix(length);
            if (!isReadable(entry) || central.word(42) != position_ || !readLocal(entry)) {
                return Error{"“" + entry.name + "” is packed in a way that is not accepted"};
            }
            entries.push_back(std::move(entry));
        }
        if (!directory.empty() || position_ != directoryOffset_) {
            return Error{"bytes that belong to no entry"};
        }
        return entries;
    }

    static ZipEntry readCentral(const Fields& central) {
        const bool fromUnix = central.byte(5) == madeOnUnix || central.byte(5) == madeOnMac;
        return {.flags = central.half(8),
                .method = central.half(10),
                .checksum = central.word(16),
                .packedSize = central.word(20),
                .size = central.word(24),
                .unixMode = fromUnix ? central.word(38) >> 16 : 0};
    }

    static bool isReadable(const ZipEntry& entry) {
        const bool stored = entry.method == zipStored && entry.packedSize == entry.size;
        // Bytes as they are, with their number behind them: where they end is not clear to everybody, unless they are
        // the plain text of a link, which macOS packs in this way.
        const bool isLink = (entry.unixMode & S_IFMT) == S_IFLNK;
        const bool endIsKnown = (entry.flags & flagDescriptor) == 0 || !stored || entry.size == 0 || isLink;
        return (stored || entry.method == zipDeflated) && endIsKnown && (entry.flags & ~flagsUnderstood) == 0 &&
               entry.packedSize != moreThanFits && entry.size != moreThanFits;
    }

    /// Checks the header in front of the entry's bytes and moves behind them.
    bool readLocal(ZipEntry& entry) {
        std::array<char, localLength> bytes{};
        if (!readRange(archive_, position_, bytes.data(), bytes.size())) {
            return false;
        }
        const Fields local({bytes.data(), bytes.size()});
        std::string name(local.half(26), '\0');
        if (local.word(0) != localSignature || local.half(6) != entry.flags || local.half(8) != entry.method ||
            !readRange(archive_, position_ + localLength, name.data(), name.size()) || name != entry.name) {
            return false;
        }
        const bool described = (entry.flags & flagDescriptor) != 0;
        if (!hasSizesAt(local, 14, entry) && !(described && hasNoSizesAt(local, 14))) {
            return false;
        }
        entry.dataOffset = position_ + localLength + name.size() + local.half(28);
        position_ = entry.dataOffset + entry.packedSize;
        return position_ <= directoryOffset_ && (!described || readDescriptor(entry));
    }

    bool readDescriptor(const ZipEntry& entry) {
        constexpr std::size_t bareLength = 12;
        constexpr std::size_t markedLength = 16;
        std::array<char, markedLength> bytes{};
        if (!readRange(archive_, position_, bytes.data(), bytes.size())) {
            return false;
        }
        const Fields descriptor({bytes.data(), bytes.size()});
        const bool marked = descriptor.word(0) == descriptorSignature && hasSizesAt(descriptor, 4, entry);
        position_ += marked ? markedLength : bareLength;
        return (marked || hasSizesAt(descriptor, 0, entry)) && position_ <= directoryOffset_;
    }

    static bool hasSizesAt(const Fields& fields, std::size_t at, const ZipEntry& entry) {
        return fields.word(at) == entry.checksum && fields.word(at + 4) == entry.packedSize &&
               fields.word(at + 8) == entry.size;
    }

    static bool hasNoSizesAt(const Fields& fields, std::size_t at) {
        return fields.word(at) == 0 && fields.word(at + 4) == 0 && fields.word(at + 8) == 0;
    }

    int archive_;
    std::size_t mostEntries_;
    std::size_t count_ = 0;
    std::uint64_t directorySize_ = 0;
    std::uint64_t directoryOffset_ = 0;
    std::uint64_t position_ = 0;  ///< where the next entry must begin
};

}  // namespace

Result<std::vector<ZipEntry>, Error> readZipDirectory(int archive, std::size_t mostEntries) {
    return DirectoryReader(archive, mostEntries).read();
}

}  // namespace velmora
