#include "update/VersionOrder.h"

#include <algorithm>
#include <compare>

namespace velmora {

namespace {

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Takes the digits at the front, without leading zeros.
std::string_view takeNumber(std::string_view& text) {
    const auto* const end = std::find_if_not(text.begin(), text.end(), isDigit);
    auto digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(digits.size());
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

std::strong_ordering compareNumbers(std::string_view left, std::string_view right) {
    return left.size() != right.size() ? left.size() <=> right.size() : left.compare(right) <=> 0;
}

std::strong_ordering compareVersions(std::string_view left, std::string_view right) {
    while (!left.empty() && !right.empty()) {
        std::strong_ordering order = std::strong_ordering::equal;
        if (isDigit(left.front()) && isDigit(right.front())) {
            const auto leftNumber = takeNumber(left);
            order = compareNumbers(leftNumber, takeNumber(right));
        } else {
            order = static_cast<unsigned char>(left.front()) <=> static_cast<unsigned char>(right.front());
            left.remove_prefix(1);
            right.remove_prefix(1);
        }
        if (order != std::strong_ordering::equal) {
            return order;
        }
    }
    return left.size() <=> right.size();
}

}  // namespace

bool isNewerVersion(std::string_view version, std::string_view than) {
    return compareVersions(version, than) == std::strong_ordering::greater;
}

}  // namespace velmora
