#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velmora {

/// A binary property list whose outermost object is a dictionary, read in place. Only what is asked for is looked at:
/// its objects may contain one another in ways that would take more memory than there is to lay out.
class BinaryDictionary final {
public:
    /// Whether the bytes claim to be a binary property list.
    [[nodiscard]] static bool isBinary(std::string_view bytes);

    /// None when there is no dictionary that is there whole. The bytes outlive the result.
    [[nodiscard]] static std::optional<BinaryDictionary> open(std::string_view bytes);

    /// The text under a key of ASCII characters; none without the key or when the value is no text. Of a repeated key
    /// the last counts.
    [[nodiscard]] std::optional<std::string> text(std::string_view key) const;

private:
    /// Where the content of an object is, and how many elements it has.
    struct Object {
        std::uint8_t type = 0;
        std::uint64_t count = 0;
        std::size_t content = 0;
    };

    explicit BinaryDictionary(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] bool readTrailer();
    [[nodiscard]] bool readDictionary();
    /// Of so many bytes at a place that is known to hold them.
    [[nodiscard]] std::uint64_t number(std::size_t at, std::size_t width) const;
    [[nodiscard]] std::optional<Object> object(std::uint64_t index) const;
    [[nodiscard]] bool readCount(Object& object) const;
    [[nodiscard]] bool holds(const Object& object, std::size_t elementWidth) const;
    [[nodiscard]] std::optional<std::string> textOf(const Object& object) const;

    std::string_view bytes_;
    std::size_t offsetWidth_ = 0;     ///< bytes of a place in the table of places
    std::size_t referenceWidth_ = 0;  ///< bytes of an object's number
    std::uint64_t objectCount_ = 0;
    std::uint64_t top_ = 0;
    std::size_t table_ = 0;  ///< where the table begins; objects end there
    Object dictionary_;
};

}  // namespace velmora
