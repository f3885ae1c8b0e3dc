#include "ui/HostRowDelegate.h"

#include "ui/HostListModel.h"
#include "ui/Metrics.h"
#include "ui/StatusLook.h"

#include <QApplication>
#include <QPainter>
#include <QStyle>

namespace velmora {

namespace {

constexpr int dotSide = 9;
constexpr qreal halo = 2;
constexpr int lowestRow = 44;
constexpr int padding = 2;
constexpr float secondary = 0.68F;  ///< of the text colour; leaves the words a contrast of 4.5:1 on any usual palette

QFont nameFont(const QFont& body) {
    QFont font = body;
    font.setWeight(QFont::Medium);
    return font;
}

QFont statusFont(const QFont& body) {
    return metrics::scaled(body, metrics::captionScale);
}

void paintDot(QPainter& painter, const QRectF& dot, const QStyleOptionViewItem& row, const QModelIndex& index) {
    const QColor base = row.palette.color(QPalette::Base);
    const auto state = static_cast<ConnectionStatus::State>(index.data(HostListModel::StatusStateRole).toInt());
    painter.setPen(Qt::NoPen);
    if ((row.state & QStyle::State_Selected) != 0) {
        painter.setBrush(base);
        painter.drawEllipse(dot.adjusted(-halo, -halo, halo, halo));
    }
    painter.setBrush(statusColor(state, base));
    painter.drawEllipse(dot);
}

}  // namespace

void HostRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    row.text.clear();
    row.showDecorationSelected = true;  // the whole row, with styles that would mark the text alone as well
    if ((row.state & QStyle::State_KeyboardFocusChange) == 0) {
        row.state &= ~QStyle::State_HasFocus;  // a frame around a row that nobody has chosen would look like a choice
    }
    const QStyle* style = row.widget != nullptr ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const bool selected = (row.state & QStyle::State_Selected) != 0;
    const auto group = (row.state & QStyle::State_Active) != 0 ? QPalette::Active : QPalette::Inactive;
    const QColor nameColor = row.palette.color(group, selected ? QPalette::HighlightedText : QPalette::Text);
    QColor statusColor = nameColor;
    statusColor.setAlphaF(selected ? 1.0F : secondary);

    const QFont name = nameFont(row.font);
    const QFont status = statusFont(row.font);
    const QFontMetrics nameMetrics(name);
    const QFontMetrics statusMetrics(status);
    const int left = metrics::margin + dotSide + metrics::related;
    const int width = row.rect.width() - left - metrics::related;
    const int top = row.rect.top() + (row.rect.height() - nameMetrics.height() - statusMetrics.height()) / 2;
    const auto placed = [&row](const QRect& rect) { return QStyle::visualRect(row.direction, row.rect, rect); };
    const auto alignment =
        static_cast<int>(QStyle::visualAlignment(row.direction, Qt::AlignLeft | Qt::AlignVCenter).toInt());

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    paintDot(*painter,
             placed(QRect(row.rect.left() + metrics::margin, row.rect.top() + (row.rect.height() - dotSide) / 2,
                          dotSide, dotSide)),
             row, index);
    painter->setFont(name);
    painter->setPen(nameColor);
    painter->drawText(placed(QRect(row.rect.left() + left, top, width, nameMetrics.height())), alignment,
                      nameMetrics.elidedText(index.data(Qt::DisplayRole).toString(), Qt::ElideMiddle, width));
    painter->setFont(status);
    painter->setPen(statusColor);
    painter->drawText(
        placed(QRect(row.rect.left() + left, top + nameMetrics.height(), width, statusMetrics.height())), alignment,
        statusMetrics.elidedText(index.data(HostListModel::StatusTextRole).toString(), Qt::ElideRight, width));
    painter->restore();
}

QSize HostRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const {
    const int text = QFontMetrics(nameFont(option.font)).height() + QFontMetrics(statusFont(option.font)).height();
    return {0, qMax(lowestRow, text + 2 * padding)};
}

}  // namespace velmora
