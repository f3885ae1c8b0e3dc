#include "ui/ToolTip.h"

#include <QTextDocument>

namespace velmora {

QString toolTipOf(const QString& text) {
    return text.isEmpty() ? QString() : Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal);
}

}  // namespace velmora
