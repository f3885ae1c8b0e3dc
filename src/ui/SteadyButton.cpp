#include "ui/SteadyButton.h"

#include <QStyle>
#include <QStyleOptionButton>

#include <utility>

namespace velmora {

SteadyButton::SteadyButton(QStringList texts, QWidget* parent)
    : QPushButton(texts.constFirst(), parent), texts_(std::move(texts)) {}

QSize SteadyButton::sizeHint() const {
    QSize size = QPushButton::sizeHint();
    QStyleOptionButton option;
    initStyleOption(&option);
    for (const QString& text : texts_) {
        option.text = text;
        const QSize words = fontMetrics().size(Qt::TextShowMnemonic, text);
        size = size.expandedTo(style()->sizeFromContents(QStyle::CT_PushButton, &option, words, this));
    }
    return size;
}

}  // namespace velmora
