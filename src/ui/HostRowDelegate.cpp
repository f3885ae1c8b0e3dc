#include "ui/HostRowDelegate.h"

#include "ui/HostListModel.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

namespace velmora {

namespace {

constexpr int dotSide = 9;
constexpr int margin = 16;
constexpr int gap = 8;
constexpr int lowestRow = 44;
constexpr int padding = 6;

QFont captionFont(const QFont& body) {
    QFont font = body;
    font.setPointSizeF(body.pointSizeF() * 0.85);
    return font;
}

}  // namespace

void HostRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    row.text.clear();
    const QStyle* style = row.widget != nullptr ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const bool selected = (row.state & QStyle::State_Selected) != 0;
    const auto group = (row.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
    const QColor nameColor = row.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text);
    QColor wordsColor = nameColor;
    wordsColor.setAlphaF(selected ? 1.0F : 0.65F);

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF dot(row.rect.left() + margin, row.rect.center().y() - dotSide / 2.0, dotSide, dotSide);
    painter->setPen(selected ? QPen(nameColor, 1) : QPen(Qt::NoPen));
    painter->setBrush(index.data(HostListModel::StatusColorRole).value<QColor>());
    painter->drawEllipse(dot);

    const QFont caption = captionFont(row.font);
    const QFontMetrics nameMetrics(row.font);
    const QFontMetrics captionMetrics(caption);
    const int left = row.rect.left() + margin + dotSide + gap;
    const int width = row.rect.right() - margin - left;
    const int top = row.rect.top() + (row.rect.height() - nameMetrics.height() - captionMetrics.height()) / 2;

    painter->setFont(row.font);
    painter->setPen(nameColor);
    painter->drawText(left, top + nameMetrics.ascent(),
                      nameMetrics.elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideMiddle, width));
    painter->setFont(caption);
    painter->setPen(wordsColor);
    painter->drawText(
        left, top + nameMetrics.height() + captionMetrics.ascent(),
        captionMetrics.elidedText(index.data(HostListModel::StatusTextRole).toString(), Qt::ElideRight, width));
    painter->restore();
}

QSize HostRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const {
    const int text = QFontMetrics(option.font).height() + QFontMetrics(captionFont(option.font)).height();
    return {0, qMax(lowestRow, text + 2 * padding)};
}

}  // namespace velmora
