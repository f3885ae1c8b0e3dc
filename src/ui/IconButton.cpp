#include "ui/IconButton.h"

#include "ui/SymbolIcon.h"

#include <QEvent>

namespace velmora {

IconButton::IconButton(const QString& symbol, const QString& name, const QKeySequence& shortcut, QWidget* parent)
    : QToolButton(parent) {
    setObjectName(symbol);
    setIcon(symbolIcon(symbol));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::MinimumExpanding);
    setAccessibleName(name);
    setToolTip(shortcut.isEmpty() ? name
                                  : QStringLiteral("%1 (%2)").arg(name, shortcut.toString(QKeySequence::NativeText)));
    adoptFont();
}

void IconButton::changeEvent(QEvent* event) {
    QToolButton::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        adoptFont();
    }
}

void IconButton::adoptFont() {
    const int side = fontMetrics().height();
    setIconSize({side, side});
}

}  // namespace velmora
