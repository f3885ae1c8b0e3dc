#include "ui/FormScrollArea.h"

#include "ui/FormLayout.h"
#include "ui/Metrics.h"

#include <QEvent>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace velmora {

namespace {

constexpr int lowest = 120;

}  // namespace

FormScrollArea::FormScrollArea(QWidget* form, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* const whole = new QWidget;
    auto* const rows = new QVBoxLayout(whole);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->addWidget(form, 0, Qt::AlignTop);  // room that is left over stays below it
    QWidget* const column = forms::column(whole);
    column->layout()->setContentsMargins(metrics::margin, metrics::related, metrics::margin, metrics::margin);
    setWidget(column);
}

QSize FormScrollArea::sizeHint() const {
    return widget()->sizeHint().expandedTo(minimumSizeHint());
}

QSize FormScrollArea::minimumSizeHint() const {
    return {widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width(), lowest};
}

void FormScrollArea::resizeEvent(QResizeEvent* event) {
    QScrollArea::resizeEvent(event);
    QMargins margins = widget()->layout()->contentsMargins();
    margins.setRight(std::max(0, metrics::margin - (width() - viewport()->width())));
    widget()->layout()->setContentsMargins(margins);
}

/// What the form needs at least may grow with it.
bool FormScrollArea::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return QScrollArea::eventFilter(watched, event);
}

}  // namespace velmora
