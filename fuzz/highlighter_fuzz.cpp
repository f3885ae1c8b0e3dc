#include "Fuzz.h"
#include "pac/PacHighlighter.h"

#include <unicode/uregex.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <vector>

// A script while somebody edits it, compared with the rules as expressions. Bytes are taken as UTF-8 without asking
// whether they are, so that halves of surrogate pairs come up as well.

namespace {

using namespace velmora;
using PacHighlighter::Range;

std::u16string unitsOf(std::string_view bytes) {
    const auto byte = [&](std::size_t at) {
        return at < bytes.size() ? static_cast<unsigned>(static_cast<unsigned char>(bytes[at])) : 0U;
    };
    std::u16string units;
    for (std::size_t i = 0; i < bytes.size();) {
        if (byte(i) < 0xC0) {
            units += static_cast<char16_t>(byte(i));
            i += 1;
        } else if (byte(i) < 0xE0) {
            units += static_cast<char16_t>((byte(i) & 0x1FU) << 6 | (byte(i + 1) & 0x3FU));
            i += 2;
        } else {
            units +=
                static_cast<char16_t>((byte(i) & 0x0FU) << 12 | (byte(i + 1) & 0x3FU) << 6 | (byte(i + 2) & 0x3FU));
            i += 3;
        }
    }
    return units;
}

class Expression final {
public:
    explicit Expression(std::u16string_view pattern) {
        UErrorCode status = U_ZERO_ERROR;
        expression_.reset(
            uregex_open(pattern.data(), static_cast<std::int32_t>(pattern.size()), UREGEX_DOTALL, nullptr, &status));
        require(status == U_ZERO_ERROR, "the rules are expressions");
    }

    void paint(const std::u16string& script, std::vector<int>& kinds, int kind) const {
        UErrorCode status = U_ZERO_ERROR;
        uregex_setText(expression_.get(), script.data(), static_cast<std::int32_t>(script.size()), &status);
        while (uregex_findNext(expression_.get(), &status) != 0) {
            std::fill(kinds.begin() + uregex_start(expression_.get(), 0, &status),
                      kinds.begin() + uregex_end(expression_.get(), 0, &status), kind);
        }
        require(status == U_ZERO_ERROR, "the expressions come to an end");
    }

private:
    std::unique_ptr<URegularExpression, decltype(&uregex_close)> expression_{nullptr, &uregex_close};
};

void compareWithExpressions(const std::u16string& script, const std::vector<int>& kinds) {
    static const std::array<Expression, 4> expressions{
        Expression(u"\\b(function|return|if|else|for|while|var|let|const|in|of|true|false|null|undefined)\\b"),
        Expression(u"\\b(FindProxyForURL|shExpMatch|isInNet|dnsDomainIs|localHostOrDomainIs|isResolvable|"
                   u"isPlainHostName|dnsResolve|myIpAddress|alert)\\b"),
        Expression(u"\"(?:[^\"\\\\]|\\\\.)*\"|'(?:[^'\\\\]|\\\\.)*'"), Expression(u"//[^\\n]*|/\\*[\\s\\S]*?\\*/")};
    std::vector<int> expected(script.size(), -1);
    for (std::size_t rule = 0; rule < expressions.size(); ++rule) {
        expressions[rule].paint(script, expected, static_cast<int>(rule));
    }
    require(kinds == expected, "the colours are those of the expressions");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto script = unitsOf(textOf(data, size));
    std::vector<int> kinds(script.size(), -1);
    std::size_t end = 0;
    const Range* previous = nullptr;
    const auto ranges = PacHighlighter::highlight(script);
    for (const auto& range : ranges) {
        require(range.length > 0 && range.start >= end && range.length <= script.size() - range.start,
                "ranges are in order, in bounds and apart");
        require(previous == nullptr || range.start > end || previous->kind != range.kind, "neighbours come as one");
        end = range.start + range.length;
        previous = &range;
        std::fill(kinds.begin() + static_cast<std::ptrdiff_t>(range.start),
                  kinds.begin() + static_cast<std::ptrdiff_t>(end), static_cast<int>(range.kind));
    }
    constexpr std::size_t longestForExpressions = 2000;
    if (script.size() <= longestForExpressions) {
        compareWithExpressions(script, kinds);
    }
    return 0;
}
