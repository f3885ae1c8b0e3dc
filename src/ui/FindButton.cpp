#include "ui/FindButton.h"

#include "ui/TextFinderSupport.h"

#include <QShortcut>

namespace velmora {

FindButton::FindButton(QWidget* parent)
    : IconButton(QStringLiteral("magnifyingglass"), tr("Find"), QKeySequence::Find, parent) {
    connect(this, &QToolButton::clicked, this, &FindButton::find);
    // Not the button's own shortcut, which clicks only after a moment, when the next keys have gone elsewhere.
    connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, this, &FindButton::find);
}

void FindButton::find() const {
    TextFinderSupport::showFindInterface(*window());
}

}  // namespace velmora
