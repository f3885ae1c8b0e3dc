#pragma once

#include <zlib.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace velmora::test {

/// Writes zip archives, also such as no honest program writes.
class ZipWriter final {
public:
    static constexpr std::uint32_t file = 0100644;
    static constexpr std::uint32_t program = 0100755;
    static constexpr std::uint32_t folder = 0040755;
    static constexpr std::uint32_t link = 0120777;

    struct Entry {
        std::string name;
        std::string content;
        std::uint32_t mode = file;
        bool deflate = false;
        std::string localName;          ///< another name in the header in front of the bytes
        std::uint32_t claimedSize = 0;  ///< another size in the directory, where not 0
        std::uint16_t flags = 0;
    };

    ZipWriter& add(Entry entry) {
        entries_.push_back(std::move(entry));
        return *this;
    }

    /// Bytes between the entries and the directory.
    ZipWriter& hide(std::string bytes) {
        hidden_ = std::move(bytes);
        return *this;
    }

    [[nodiscard]] std::string bytes() const {
        std::string data;
        std::string directory;
        for (const auto& entry : entries_) {
            const auto packed = entry.deflate ? deflated(entry.content) : entry.content;
            const auto offset = static_cast<std::uint32_t>(data.size());
            const auto& localName = entry.localName.empty() ? entry.name : entry.localName;
            word(data, 0x04034b50);
            common(data, entry, packed, localName);
            data += localName + packed;
            word(directory, 0x02014b50);
            half(directory, 3 << 8 | 20);
            common(directory, entry, packed, entry.name);
            half(directory, 0);
            half(directory, 0);
            half(directory, 0);
            word(directory, entry.mode << 16);
            word(directory, offset);
            directory += entry.name;
        }
        data += hidden_;
        const auto offset = static_cast<std::uint32_t>(data.size());
        const auto count = static_cast<std::uint16_t>(entries_.size());
        data += directory;
        word(data, 0x06054b50);
        word(data, 0);
        half(data, count);
        half(data, count);
        word(data, static_cast<std::uint32_t>(directory.size()));
        word(data, offset);
        half(data, 0);
        return data;
    }

private:
    static void half(std::string& out, std::uint32_t value) {
        out += static_cast<char>(value & 0xff);
        out += static_cast<char>(value >> 8 & 0xff);
    }
    static void word(std::string& out, std::uint32_t value) {
        half(out, value & 0xffff);
        half(out, value >> 16);
    }

    /// What both headers have, from the version needed to the lengths of name and extra field.
    static void common(std::string& out, const Entry& entry, const std::string& packed, const std::string& name) {
        half(out, 20);
        half(out, entry.flags);
        half(out, entry.deflate ? 8 : 0);
        half(out, 0);
        half(out, 0x5c21);
        word(out, static_cast<std::uint32_t>(
                      ::crc32_z(0, reinterpret_cast<const Bytef*>(entry.content.data()), entry.content.size())));
        word(out, static_cast<std::uint32_t>(packed.size()));
        word(out, entry.claimedSize != 0 ? entry.claimedSize : static_cast<std::uint32_t>(entry.content.size()));
        half(out, static_cast<std::uint32_t>(name.size()));
        half(out, 0);
    }

    static std::string deflated(const std::string& content) {
        z_stream stream{};
        ::deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 9, Z_DEFAULT_STRATEGY);
        std::string packed(::deflateBound(&stream, content.size()), '\0');
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
        stream.avail_in = static_cast<uInt>(content.size());
        stream.next_out = reinterpret_cast<Bytef*>(packed.data());
        stream.avail_out = static_cast<uInt>(packed.size());
        ::deflate(&stream, Z_FINISH);
        packed.resize(stream.total_out);
        ::deflateEnd(&stream);
        return packed;
    }

    std::vector<Entry> entries_;
    std::string hidden_;
};

}  // namespace velmora::test
