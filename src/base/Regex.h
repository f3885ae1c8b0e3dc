#pragma once

#include "base/Result.h"

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct URegularExpression;

namespace velmora {

/// A regular expression in ICU's syntax, compiled without options. Text is UTF-8; bytes that are not count as U+FFFD.
///
/// A search ends early, with what it has found so far, when it has used up its time or a match needs more than 8 MB
/// of stack: whatever a file holds, reading it comes to an end. Not for two threads at once.
class Regex final {
public:
    /// The text of each group, the whole match first. A group that took no part is empty.
    using Match = std::vector<std::string>;

    static constexpr std::chrono::milliseconds defaultTimeLimit{3000};

    /// The time limit holds for each search. The error names the expression and what is wrong with it.
    static Result<Regex> compile(std::string_view pattern, std::chrono::milliseconds timeLimit = defaultTimeLimit);

    /// All matches in order; none overlaps another.
    [[nodiscard]] std::vector<Match> findAll(std::string_view text);

private:
    struct Closer {
        void operator()(URegularExpression* expression) const;
    };
    using Expression = std::unique_ptr<URegularExpression, Closer>;

    Regex(Expression expression, std::chrono::milliseconds timeLimit)
        : expression_(std::move(expression)), timeLimit_(timeLimit) {}
    [[nodiscard]] Match currentMatch(std::u16string_view text) const;

    Expression expression_;
    std::chrono::milliseconds timeLimit_;
};

}  // namespace velmora
