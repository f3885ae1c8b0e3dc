#include "update/Checksum.h"

#include <algorithm>

namespace velmora {

namespace {

char lowerCase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

}  // namespace

bool isSameChecksum(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return lowerCase(a) == lowerCase(b); });
}

}  // namespace velmora
