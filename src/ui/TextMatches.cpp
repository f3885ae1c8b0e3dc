#include "ui/TextMatches.h"

#include <algorithm>
#include <utility>

namespace velmora {

TextMatches::TextMatches(QString text, const QString& pattern)
    : text_(std::move(text)), matcher_(pattern, Qt::CaseInsensitive) {
    if (pattern.isEmpty()) {
        return;
    }
    for (auto start = find(0); start; start = find(*start + length())) {
        if (count() == mostCounted) {
            hasMore_ = true;
            return;
        }
        starts_.push_back(*start);
    }
}

std::optional<int> TextMatches::numberAt(int position) const {
    const auto found = std::lower_bound(starts_.begin(), starts_.end(), position);
    if (found == starts_.end() || *found != position) {
        return std::nullopt;
    }
    return static_cast<int>(found - starts_.begin()) + 1;
}

int TextMatches::atOrAfter(int position) const {
    const auto found = std::lower_bound(starts_.begin(), starts_.end(), position);
    if (found != starts_.end()) {
        return *found;
    }
    return hasMore_ ? find(position).value_or(starts_.front()) : starts_.front();
}

int TextMatches::before(int position) const {
    const auto next = std::lower_bound(starts_.begin(), starts_.end(), position);
    const bool wraps = next == starts_.begin();
    if (hasMore_ && (wraps || next == starts_.end())) {
        // Beyond the counted ones. Qt takes an end before the text for one from behind.
        const auto from = (wraps ? text_.size() : qsizetype{position}) - length();
        return static_cast<int>(text_.lastIndexOf(matcher_.pattern(), from, Qt::CaseInsensitive));
    }
    return wraps ? starts_.back() : *std::prev(next);
}

std::vector<int> TextMatches::between(int begin, int end, int most) const {
    std::vector<int> found;
    const auto first = std::lower_bound(starts_.begin(), starts_.end(), begin);
    for (auto start = first; start != starts_.end() && *start < end && std::ssize(found) < most; ++start) {
        found.push_back(*start);
    }
    if (hasMore_ && end > starts_.back()) {
        for (auto start = find(std::max(begin, starts_.back() + length()));
             start && *start < end && std::ssize(found) < most; start = find(*start + length())) {
            found.push_back(*start);
        }
    }
    return found;
}

std::optional<int> TextMatches::find(int from) const {
    const auto start = matcher_.indexIn(text_, from);
    return start >= 0 ? std::optional(static_cast<int>(start)) : std::nullopt;
}

}  // namespace velmora
