#include "ui/SpacedTextLayout.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace velmora {

SpacedTextLayout::SpacedTextLayout(QTextDocument* document, qreal lineHeight)
    : QPlainTextDocumentLayout(document), lineHeight_(lineHeight) {}

QRectF SpacedTextLayout::blockBoundingRect(const QTextBlock& block) const {
    QRectF rect = QPlainTextDocumentLayout::blockBoundingRect(block);
    if (!block.isValid() || !block.isVisible()) {
        return rect;
    }
    const QTextLayout& layout = *block.layout();
    qreal top = 0;
    for (int i = 0; i < layout.lineCount(); ++i) {
        QTextLine line = layout.lineAt(i);
        const qreal height = std::max(lineHeight_, std::ceil(line.height()));
        line.setPosition({line.x(), top + std::floor((height - line.height()) / 2)});
        top += height;
    }
    rect.setHeight(top + (block.next().isValid() ? 0 : document()->documentMargin()));
    return rect;
}

SpacedTextLayout::Extent SpacedTextLayout::extent(const QTextLine& line) const {
    const qreal height = std::max(lineHeight_, std::ceil(line.height()));
    const qreal top = line.y() - std::floor((height - line.height()) / 2);
    return {top, top + height};
}

}  // namespace velmora
