#include "ui/SymbolLabel.h"

#include "ui/SymbolIcon.h"

#include <QPainter>

namespace velmora {

SymbolLabel::SymbolLabel(const QString& symbol, QWidget* parent) : QWidget(parent), icon_(symbolIcon(symbol)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize SymbolLabel::sizeHint() const {
    const int side = fontMetrics().height();
    return {side, side};
}

void SymbolLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    icon_.paint(&painter, rect());
}

}  // namespace velmora
