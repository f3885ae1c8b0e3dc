#include "update/ZipContent.h"

#include "update/FileRange.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string_view>

namespace velmora {

namespace {

constexpr std::size_t chunk = 65536;

/// Takes the unpacked bytes and knows what they must come to.
class Measure final {
public:
    Measure(const ZipEntry& entry, std::string& kept) : entry_(entry), kept_(kept), room_(kept.size()) {
        kept_.clear();
    }

    /// False as soon as there are more than promised.
    bool take(std::string_view bytes) {
        size_ += bytes.size();
        checksum_ = ::crc32_z(checksum_, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
        kept_.append(bytes.substr(0, room_ - kept_.size()));
        return size_ <= entry_.size;
    }

    [[nodiscard]] bool isExact() const { return size_ == entry_.size && checksum_ == entry_.checksum; }

private:
    const ZipEntry& entry_;
    std::string& kept_;
    std::size_t room_;
    std::uint64_t size_ = 0;
    uLong checksum_ = 0;
};

/// The packed bytes, chunk by chunk.
class Source final {
public:
    Source(int archive, const ZipEntry& entry) : archive_(archive), at_(entry.dataOffset), left_(entry.packedSize) {}

    [[nodiscard]] bool isEmpty() const { return left_ == 0; }

    /// Empty when the archive cannot be read.
    std::string_view next() {
        const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(left_, chunk));
        if (!readRange(archive_, at_, buffer_.data(), count)) {
            return {};
        }
        at_ += count;
        left_ -= count;
        return {buffer_.data(), count};
    }

private:
    int archive_;
    std::uint64_t at_;
    std::uint64_t left_;
    std::array<char, chunk> buffer_{};
};

class Inflater final {
public:
    Inflater() { ready_ = ::inflateInit2(&stream_, -MAX_WBITS) == Z_OK; }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater() { ::inflateEnd(&stream_); }

    [[nodiscard]] bool isReady() const { return ready_; }
    [[nodiscard]] bool isFinished() const { return finished_; }

    /// Unpacks a chunk. False on broken bytes, on bytes behind the end, and when the measure is full.
    bool feed(std::string_view packed, Measure& measure) {
        stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));  // zlib only reads
        stream_.avail_in = static_cast<uInt>(packed.size());
        do {
            stream_.next_out = reinterpret_cast<Bytef*>(output_.data());
            stream_.avail_out = static_cast<uInt>(output_.size());
            const int result = ::inflate(&stream_, Z_NO_FLUSH);
            finished_ = result == Z_STREAM_END;
            if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
                return false;
            }
            if (!measure.take({output_.data(), output_.size() - stream_.avail_out})) {
                return false;
            }
        } while (!finished_ && stream_.avail_out == 0);
        return stream_.avail_in == 0;
    }

private:
    z_stream stream_{};
    std::array<char, chunk> output_{};
    bool ready_ = false;
    bool finished_ = false;
};

}  // namespace

bool verifyZipContent(int archive, const ZipEntry& entry, std::string& kept, const Cancellation& cancellation) {
    Measure measure(entry, kept);
    const auto source = std::make_unique<Source>(archive, entry);
    const auto inflater = std::make_unique<Inflater>();
    const bool deflated = entry.method == zipDeflated;
    while (!source->isEmpty()) {
        const auto packed = source->next();
        if (packed.empty() || cancellation.isRequested() || inflater->isFinished()) {
            return false;
        }
        if (deflated ? !inflater->feed(packed, measure) : !measure.take(packed)) {
            return false;
        }
    }
    return measure.isExact() && (!deflated || inflater->isFinished());
}

}  // namespace velmora
