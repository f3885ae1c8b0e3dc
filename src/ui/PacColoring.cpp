#include "ui/PacColoring.h"

#include "ui/PlainText.h"

#include <QTextBlock>
#include <QTextLayout>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace velmora {

namespace {

constexpr std::chrono::milliseconds pauseInTyping{200};
constexpr int longestTyping = 1000;  ///< what is more was pasted or loaded
constexpr int uncolored = -1;        ///< also the state of a block that is new

}  // namespace

PacColoring::PacColoring(QTextDocument& document, const PacColors& colors) : document_(document), colors_(colors) {
    recolorSoon_.setSingleShot(true);
    recolorSoon_.setInterval(pauseInTyping);
    connect(&recolorSoon_, &QTimer::timeout, this, &PacColoring::recolor);
    // This signal comes before the layout learns of the change, so that each line is laid out once.
    connect(&document_, &QTextDocument::contentsChange, this, &PacColoring::followChange);
    setColors(colors);
}

PacColoring::~PacColoring() {
    show({});
}

void PacColoring::setColors(const PacColors& colors) {
    colors_ = colors;
    for (const auto kind : {PacHighlighter::Kind::keyword, PacHighlighter::Kind::builtIn, PacHighlighter::Kind::string,
                            PacHighlighter::Kind::comment}) {
        formats_.at(static_cast<std::size_t>(kind)).setForeground(colors_[kind]);
    }
    recolor();
}

void PacColoring::followChange(int /*position*/, int removed, int added) {
    const bool isTyping = removed + added < longestTyping;
    if (document_.characterCount() > (isTyping ? longToType : longToLoad)) {
        recolorSoon_.start();
    } else {
        recolor();
    }
}

void PacColoring::recolor() {
    recolorSoon_.stop();
    if (document_.characterCount() > longestScript) {
        show({});
        return;
    }
    const QString script = plainText(document_);
    show(PacHighlighter::highlight({QStringView(script).utf16(), static_cast<std::size_t>(script.size())}));
}

void PacColoring::show(Ranges ranges) {
    int dirtyBegin = -1;
    int dirtyEnd = 0;
    for (QTextBlock block = document_.begin(); block.isValid(); block = block.next()) {
        const auto begin = static_cast<std::size_t>(block.position());
        const auto end = begin + static_cast<std::size_t>(block.length()) - 1;
        const auto first = std::find_if(ranges.begin(), ranges.end(),
                                        [begin](const auto& range) { return range.start + range.length > begin; });
        ranges = {first, ranges.end()};
        const auto last =
            std::find_if(ranges.begin(), ranges.end(), [end](const auto& range) { return range.start >= end; });
        const Ranges own = block.length() <= longestLine ? Ranges(first, last) : Ranges();
        const int state = signature(own, begin, end);
        if (block.userState() == state) {
            continue;
        }
        block.setUserState(state);
        color(block, own);
        dirtyBegin = dirtyBegin < 0 ? block.position() : dirtyBegin;
        dirtyEnd = block.position() + block.length();
    }
    if (dirtyBegin >= 0) {
        document_.markContentsDirty(dirtyBegin, dirtyEnd - dirtyBegin);
    }
}

/// A number for how the block looks in these colours; what a block has goes with it when it is moved.
int PacColoring::signature(Ranges ranges, std::size_t blockStart, std::size_t blockEnd) const {
    if (ranges.empty()) {
        return uncolored;
    }
    std::uint64_t hash = colors_[PacHighlighter::Kind::keyword].rgba();
    const auto mix = [&hash](std::uint64_t value) {
        hash = (hash ^ value) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32;
    };
    for (const auto& range : ranges) {
        mix(std::max(range.start, blockStart) - blockStart);
        mix(std::min(range.start + range.length, blockEnd) - blockStart);
        mix(static_cast<std::uint64_t>(range.kind));
    }
    return static_cast<int>(hash & 0x7FFFFFFFU);
}

void PacColoring::color(const QTextBlock& block, Ranges ranges) const {
    const auto blockStart = static_cast<std::size_t>(block.position());
    const auto blockEnd = blockStart + static_cast<std::size_t>(block.length()) - 1;
    QList<QTextLayout::FormatRange> formats;
    formats.reserve(static_cast<qsizetype>(ranges.size()));
    for (const auto& range : ranges) {
        const std::size_t begin = std::max(range.start, blockStart) - blockStart;
        const std::size_t end = std::min(range.start + range.length, blockEnd) - blockStart;
        formats.append({static_cast<int>(begin), static_cast<int>(end - begin),
                        formats_.at(static_cast<std::size_t>(range.kind))});
    }
    block.layout()->setFormats(formats);
}

}  // namespace velmora
