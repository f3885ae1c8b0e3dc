#include "base/Uuid.h"

#include <unistd.h>
#if __has_include(<sys/random.h>)
#include <sys/random.h>
#endif

#include <cstdlib>

namespace velmora {

namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenPosition(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

constexpr int hexValue(char c) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return -1;
}

/// The system's entropy, fetched for sixteen identifiers at a time: the call costs far more than the bytes, and a list
/// of hosts asks for one a host and a rule. A process that forks must not draw from it on both sides.
class Entropy final {
public:
    void take(std::array<std::uint8_t, 16>& out) {
        if (left_ == 0) {
            if (::getentropy(bytes_.data(), bytes_.size()) != 0) {
                std::abort();  // no entropy means no safe file name and no identity: nothing sensible can follow
            }
            left_ = bytes_.size();
        }
        left_ -= out.size();
        std::memcpy(out.data(), bytes_.data() + left_, out.size());
    }

private:
    std::array<std::uint8_t, 256> bytes_{};  // the most that one call gives
    std::size_t left_ = 0;
};

}  // namespace

Uuid Uuid::random() {
    thread_local Entropy entropy;
    Uuid id;
    entropy.take(id.bytes);
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x40);
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);
    return id;
}

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != textLength) {
        return std::nullopt;
    }
    Uuid id;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < textLength; ++i) {
        if (isHyphenPosition(i)) {
            if (text[i] != '-') {
                return std::nullopt;
            }
            continue;
        }
        const int value = hexValue(text[i]);
        if (value < 0) {
            return std::nullopt;
        }
        auto& byte = id.bytes[digits / 2];
        byte = static_cast<std::uint8_t>((byte << 4) | value);
        ++digits;
    }
    return id;
}

std::string Uuid::toString() const {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(textLength);
    for (const auto byte : bytes) {
        if (isHyphenPosition(text.size())) {
            text += '-';
        }
        text += digits[byte >> 4];
        text += digits[byte & 0x0F];
    }
    return text;
}

}  // namespace velmora
