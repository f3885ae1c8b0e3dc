#include "ui/TextFinderSupport.h"

#include "ui/FindBar.h"

#include <QPlainTextEdit>
#include <QWidget>

namespace velmora::TextFinderSupport {

QPlainTextEdit* findTextView(const QWidget& view) {
    for (QObject* child : view.children()) {
        if (auto* text = qobject_cast<QPlainTextEdit*>(child)) {
            return text;
        }
        if (const auto* widget = qobject_cast<QWidget*>(child)) {
            if (auto* text = findTextView(*widget)) {
                return text;
            }
        }
    }
    return nullptr;
}

void showFindInterface(const QWidget& contentView) {
    QPlainTextEdit* text = findTextView(contentView);
    auto* bar = contentView.findChild<FindBar*>();
    if (text != nullptr && bar != nullptr) {
        text->setFocus(Qt::ShortcutFocusReason);
        bar->open();
    }
}

}  // namespace velmora::TextFinderSupport
