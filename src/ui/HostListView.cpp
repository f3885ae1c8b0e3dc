#include "ui/HostListView.h"

#include "ui/HostListModel.h"
#include "ui/HostRowDelegate.h"
#include "ui/Metrics.h"

#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QItemSelectionModel>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyleHints>

#include <algorithm>

namespace velmora {

HostListView::HostListView(HostListModel& model, QWidget* parent) : QListView(parent), hosts_(model) {
    setUniformItemSizes(true);
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);  // long texts are elided
    setEditTriggers(NoEditTriggers);
    setDragDropMode(InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setItemDelegate(new HostRowDelegate(this));
    setModel(&model);
}

void HostListView::setEmptyText(const QString& text) {
    emptyText_ = text;
    viewport()->update();
}

void HostListView::select(int row, Scroll scroll) {
    if (row < 0) {
        selectionModel()->clearSelection();
        return;
    }
    const QModelIndex index = hosts_.index(row);
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
    setAutoScroll(true);
    if (scroll == Scroll::toSelected) {
        scrollTo(index);
    }
}

bool HostListView::refresh() {
    const Place before = place();
    const int rows = hosts_.rowCount();
    const int value = verticalScrollBar()->value();
    setAutoScroll(false);
    const bool moved = hosts_.refresh();
    if (moved) {
        executeDelayedItemsLayout();
        verticalScrollBar()->setValue(value);
        if (hosts_.rowCount() != rows) {
            restorePlace(before);
        }
    }
    setAutoScroll(true);
    return moved;
}

HostListView::Place HostListView::place() const {
    Place place;
    if (verticalScrollBar()->value() == 0) {
        return place;
    }
    for (QModelIndex index = indexAt(QPoint(0, 0)); index.isValid(); index = hosts_.index(index.row() + 1)) {
        const int top = visualRect(index).top();
        if (top >= viewport()->height()) {
            break;
        }
        place.emplace_back(hosts_.id(index.row()), top);
    }
    return place;
}

void HostListView::restorePlace(const Place& place) {
    for (const auto& [id, top] : place) {
        if (const int row = hosts_.row(id); row >= 0) {
            const int moved = visualRect(hosts_.index(row)).top() - top;
            verticalScrollBar()->setValue(verticalScrollBar()->value() + moved);
            return;
        }
    }
}

void HostListView::mousePressEvent(QMouseEvent* event) {
    countClick(*event);
    QListView::mousePressEvent(event);
}

void HostListView::mouseDoubleClickEvent(QMouseEvent* event) {
    countClick(*event);
    clicks_ = std::max(clicks_, 2);
    // Qt calls every second click a double one.
    const bool isDouble =
        clicks_ == 2 && event->button() == Qt::LeftButton && indexAt(event->position().toPoint()).isValid();
    QListView::mouseDoubleClickEvent(event);
    if (isDouble) {
        Q_EMIT toggleRequested();
    }
}

void HostListView::countClick(const QMouseEvent& event) {
    const QStyleHints* hints = QGuiApplication::styleHints();
    const QPoint position = event.position().toPoint();
    const bool follows =
        event.timestamp() - lastClickTime_ < static_cast<std::uint64_t>(hints->mouseDoubleClickInterval()) &&
        (position - lastClickPosition_).manhattanLength() <= 2 * hints->mouseDoubleClickDistance();
    clicks_ = follows && event.button() == Qt::LeftButton ? clicks_ + 1 : 1;
    lastClickTime_ = event.timestamp();
    lastClickPosition_ = position;
}

void HostListView::keyPressEvent(QKeyEvent* event) {
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const QModelIndex current = currentIndex();
    const bool isSelected = current.isValid() && selectionModel()->isSelected(current);
    switch (plain ? event->key() : Qt::Key_unknown) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            Q_EMIT toggleRequested();
            return;
        case Qt::Key_Delete:
        case Qt::Key_Backspace:
            if (isSelected) {
                Q_EMIT deleteRequested(current);
            }
            return;
        case Qt::Key_Up:
        case Qt::Key_Down:
            // From where nothing is selected the first step is onto the row with the focus.
            if (current.isValid() && !isSelected) {
                select(current.row(), Scroll::toSelected);
                return;
            }
            break;
        default:
            break;
    }
    QListView::keyPressEvent(event);
}

void HostListView::contextMenuEvent(QContextMenuEvent* event) {
    const bool fromKeyboard = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = fromKeyboard ? currentIndex() : indexAt(event->pos());
    if (!index.isValid()) {
        return;
    }
    if (fromKeyboard) {
        scrollTo(index);
    }
    Q_EMIT menuRequested(index,
                         fromKeyboard ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

void HostListView::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (hosts_.rowCount() == 0 && !emptyText_.isEmpty()) {
        QPainter painter(viewport());
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(viewport()->rect().adjusted(metrics::margin, metrics::section, -metrics::margin, 0),
                         static_cast<int>(Qt::AlignHCenter | Qt::AlignTop) | Qt::TextWordWrap, emptyText_);
    }
}

}  // namespace velmora
