#pragma once

#include <QString>
#include <QStringMatcher>

#include <optional>
#include <vector>

namespace velmora {

/// Where a pattern stands in a text, in any case; matches do not overlap. Takes time in proportion to the text.
/// Positions in UTF-16 code units.
class TextMatches final {
public:
    /// As many are counted; a text with more has its matches found one by one.
    static constexpr int mostCounted = 20'000;

    TextMatches() = default;
    TextMatches(QString text, const QString& pattern);

    [[nodiscard]] int length() const { return static_cast<int>(matcher_.pattern().size()); }
    [[nodiscard]] bool empty() const { return starts_.empty(); }
    /// Of those that were counted.
    [[nodiscard]] int count() const { return static_cast<int>(starts_.size()); }
    /// Whether there are more than were counted.
    [[nodiscard]] bool hasMore() const { return hasMore_; }

    /// The number, from 1, of the match that begins here; nothing if none does or it was not counted.
    [[nodiscard]] std::optional<int> numberAt(int position) const;
    /// The first match that begins here or later, otherwise the first of all. There is one.
    [[nodiscard]] int atOrAfter(int position) const;
    /// The last match that begins before, otherwise the last of all. There is one.
    [[nodiscard]] int before(int position) const;
    /// The starts of the matches that begin in this range, as many as that at most.
    [[nodiscard]] std::vector<int> between(int begin, int end, int most) const;

private:
    [[nodiscard]] std::optional<int> find(int from) const;

    QString text_;
    QStringMatcher matcher_;
    std::vector<int> starts_;
    bool hasMore_ = false;
};

}  // namespace velmora
