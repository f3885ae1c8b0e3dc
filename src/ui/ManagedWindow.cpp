#include "ui/ManagedWindow.h"

#include <QApplication>
#include <QByteArray>
#include <QKeyEvent>
#include <QScreen>

#include <algorithm>

namespace velmora {

ManagedWindow::ManagedWindow(std::string_view id, const QString& title, DefaultsStore& defaults)
    : id_(id), defaults_(defaults) {
    setObjectName(QString::fromUtf8(id.data(), static_cast<qsizetype>(id.size())));
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    setUnifiedTitleAndToolBarOnMac(true);
}

void ManagedWindow::restorePlace(const QSize& firstSize) {
    const QByteArray place = remembered("frame");
    if (!place.isEmpty() && restoreGeometry(place)) {
        return;
    }
    const QWidget* active = QApplication::activeWindow();
    const QRect room = (active != nullptr ? active->screen() : screen())->availableGeometry();
    QRect frame({}, firstSize.boundedTo(room.size()));
    frame.moveCenter(active != nullptr ? active->geometry().center() : room.center());
    frame.moveLeft(std::clamp(frame.left(), room.left(), room.right() + 1 - frame.width()));
    frame.moveTop(std::clamp(frame.top(), room.top(), room.bottom() + 1 - frame.height()));
    setGeometry(frame);
}

void ManagedWindow::remember(std::string_view what, const QByteArray& state) {
    const QByteArray text = state.toBase64();
    if (defaults_.string(key(what)) != text.toStdString()) {
        defaults_.setString(key(what), std::string_view(text.constData(), static_cast<std::size_t>(text.size())));
    }
}

QByteArray ManagedWindow::remembered(std::string_view what) const {
    return QByteArray::fromBase64(QByteArray::fromStdString(defaults_.string(key(what))));
}

void ManagedWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Close)) {
        close();
    } else {
        QMainWindow::keyPressEvent(event);
    }
}

void ManagedWindow::hideEvent(QHideEvent* event) {
    // Also when the program ends with the window open.
    remember("frame", saveGeometry());
    QMainWindow::hideEvent(event);
}

std::string ManagedWindow::key(std::string_view what) const {
    return "window." + id_ + "." + std::string(what);
}

}  // namespace velmora
