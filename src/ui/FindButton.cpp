#include "ui/FindButton.h"

#include "ui/SymbolIcon.h"
#include "ui/TextFinderSupport.h"

#include <QKeySequence>
#include <QShortcut>

namespace velmora {

FindButton::FindButton(QWidget* parent) : QToolButton(parent) {
    const QKeySequence shortcut(QKeySequence::Find);
    setObjectName(QStringLiteral("magnifyingglass"));
    setIcon(symbolIcon(QStringLiteral("magnifyingglass")));
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Find"));
    setToolTip(QStringLiteral("%1 (%2)").arg(tr("Find"), shortcut.toString(QKeySequence::NativeText)));
    connect(this, &QToolButton::clicked, this, &FindButton::find);
    // Not the button's own shortcut, which clicks only after a moment, when the next keys have gone elsewhere.
    connect(new QShortcut(shortcut, this), &QShortcut::activated, this, &FindButton::find);
}

void FindButton::find() const {
    TextFinderSupport::showFindInterface(*window());
}

}  // namespace velmora
