#pragma once

#include <QPlainTextDocumentLayout>

namespace velmora {

/// Lays out plain text with lines of a given height at least, the text in their middle.
class SpacedTextLayout final : public QPlainTextDocumentLayout {
    Q_OBJECT

public:
    SpacedTextLayout(QTextDocument* document, qreal lineHeight);

    [[nodiscard]] QRectF blockBoundingRect(const QTextBlock& block) const override;

    /// Where the line begins and ends below the top of its block, with the space around its text.
    struct Extent {
        qreal top = 0;
        qreal bottom = 0;
    };
    [[nodiscard]] Extent extent(const QTextLine& line) const;

private:
    qreal lineHeight_;
};

}  // namespace velmora
