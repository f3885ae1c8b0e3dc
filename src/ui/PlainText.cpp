#include "ui/PlainText.h"

namespace velmora {

QString plainText(const QTextDocument& document) {
    QString text = document.toRawText();
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text;
}

}  // namespace velmora
