#include "update/BinaryDictionary.h"

#include "base/Text.h"

#include <QString>

namespace velmora {

namespace {

// The format's own numbers: a head, objects with a type and a count in their first byte, the table of the objects'
// places, and at the end the widths and counts of all these.
constexpr std::string_view head = "bplist00";
constexpr std::size_t trailerLength = 32;
constexpr std::uint8_t typeNumber = 0x1;
constexpr std::uint8_t typeAscii = 0x5;
constexpr std::uint8_t typeUtf16 = 0x6;
constexpr std::uint8_t typeDictionary = 0xD;
constexpr std::uint8_t countFollows = 0xF;
constexpr std::size_t widest = 8;

}  // namespace

bool BinaryDictionary::isBinary(std::string_view bytes) {
    return bytes.starts_with(head);
}

std::optional<BinaryDictionary> BinaryDictionary::open(std::string_view bytes) {
    BinaryDictionary list(bytes);
    return list.readTrailer() && list.readDictionary() ? std::optional(list) : std::nullopt;
}

std::optional<std::string> BinaryDictionary::text(std::string_view key) const {
    std::optional<std::string> found;
    for (std::uint64_t i = 0; i < dictionary_.count; ++i) {
        const auto keyAt = dictionary_.content + i * referenceWidth_;
        const auto name = object(number(keyAt, referenceWidth_));
        // Compared by length first: many keys may share one long text.
        if (!name || name->count != key.size() || textOf(*name) != key) {
            continue;
        }
        const auto value = object(number(keyAt + dictionary_.count * referenceWidth_, referenceWidth_));
        found = value ? textOf(*value) : std::nullopt;
    }
    return found;
}

bool BinaryDictionary::readTrailer() {
    if (!isBinary(bytes_) || bytes_.size() < head.size() + trailerLength) {
        return false;
    }
    const auto trailer = bytes_.size() - trailerLength;
    offsetWidth_ = number(trailer + 6, 1);
    referenceWidth_ = number(trailer + 7, 1);
    objectCount_ = number(trailer + 8, 8);
    top_ = number(trailer + 16, 8);
    table_ = number(trailer + 24, 8);
    const auto isWidth = [](std::size_t width) { return width >= 1 && width <= widest; };
    return isWidth(offsetWidth_) && isWidth(referenceWidth_) && table_ >= head.size() && table_ <= trailer &&
           objectCount_ <= (trailer - table_) / offsetWidth_;
}

bool BinaryDictionary::readDictionary() {
    const auto top = object(top_);
    if (!top || top->type != typeDictionary || !holds(*top, 2 * referenceWidth_)) {
        return false;
    }
    dictionary_ = *top;
    return true;
}

std::uint64_t BinaryDictionary::number(std::size_t at, std::size_t width) const {
    std::uint64_t value = 0;
    for (const char byte : bytes_.substr(at, width)) {
        value = value << 8 | static_cast<std::uint8_t>(byte);
    }
    return value;
}

std::optional<BinaryDictionary::Object> BinaryDictionary::object(std::uint64_t index) const {
    if (index >= objectCount_) {
        return std::nullopt;
    }
    const auto at = number(table_ + index * offsetWidth_, offsetWidth_);
    if (at < head.size() || at >= table_) {
        return std::nullopt;
    }
    const auto first = number(at, 1);
    Object object{.type = static_cast<std::uint8_t>(first >> 4), .count = first & 0xF, .content = at + 1};
    return object.count != countFollows || readCount(object) ? std::optional(object) : std::nullopt;
}

bool BinaryDictionary::readCount(Object& object) const {
    if (object.content >= table_) {
        return false;
    }
    const auto first = number(object.content, 1);
    const auto width = std::size_t{1} << (first & 0xF);
    if (first >> 4 != typeNumber || width > widest || width >= table_ - object.content) {
        return false;
    }
    object.count = number(object.content + 1, width);
    object.content += 1 + width;
    return true;
}

bool BinaryDictionary::holds(const Object& object, std::size_t elementWidth) const {
    return object.content <= table_ && object.count <= (table_ - object.content) / elementWidth;
}

std::optional<std::string> BinaryDictionary::textOf(const Object& object) const {
    constexpr std::size_t unitWidth = 2;
    if (object.type == typeAscii && holds(object, 1)) {
        const auto text = bytes_.substr(object.content, object.count);
        return isAscii(text) ? std::optional(std::string(text)) : std::nullopt;
    }
    if (object.type == typeUtf16 && holds(object, unitWidth)) {
        QString text;
        for (std::size_t at = object.content; at < object.content + object.count * unitWidth; at += unitWidth) {
            text += QChar(static_cast<char16_t>(number(at, unitWidth)));
        }
        return text.toStdString();
    }
    return std::nullopt;
}

}  // namespace velmora
