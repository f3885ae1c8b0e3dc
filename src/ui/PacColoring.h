#pragma once

#include "pac/PacHighlighter.h"
#include "ui/PacColors.h"

#include <QObject>
#include <QTextCharFormat>
#include <QTextDocument>
#include <QTimer>

#include <array>
#include <span>

namespace velmora {

/// Shows the proxy script of a document in colours, from now on and after every change of it. Nothing but the look is
/// touched: neither text nor cursors nor the undo stack, and the document tells nobody of a change. Main thread.
///
/// The colours come from one reading of the whole script, and only lines whose colours differ are laid out anew. Large
/// scripts get theirs when the typing pauses: above `longToType` while somebody types, above `longToLoad` always. A
/// script above `longestScript` gets none, nor does a line above `longestLine`.
class PacColoring final : public QObject {
    Q_OBJECT

public:
    // In UTF-16 code units.
    static constexpr int longestLine = 10'000;
    static constexpr int longToType = 500'000;
    static constexpr int longToLoad = 2'500'000;
    static constexpr int longestScript = 8'000'000;

    /// The document outlives this, and its layout is a QPlainTextDocumentLayout.
    PacColoring(QTextDocument& document, const PacColors& colors);
    PacColoring(const PacColoring&) = delete;
    PacColoring& operator=(const PacColoring&) = delete;
    /// Takes the colours away.
    ~PacColoring() override;

    void setColors(const PacColors& colors);

private:
    using Ranges = std::span<const PacHighlighter::Range>;

    void followChange(int position, int removed, int added);
    void recolor();
    void show(Ranges ranges);
    [[nodiscard]] int signature(Ranges ranges, std::size_t blockStart, std::size_t blockEnd) const;
    void color(const QTextBlock& block, Ranges ranges) const;

    QTextDocument& document_;
    PacColors colors_;
    std::array<QTextCharFormat, 4> formats_;
    QTimer recolorSoon_;
};

}  // namespace velmora
