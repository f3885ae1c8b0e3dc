#include "ui/ApplicationStyle.h"

#include "ui/SymbolIcon.h"
#include "ui/Tints.h"

namespace velmora {

ApplicationStyle::ApplicationStyle(const QApplication& /*application*/) {}

QIcon ApplicationStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
    switch (icon) {
        case SP_ToolBarHorizontalExtensionButton:  // a menu bar asks for it when it is made, however wide it is
            return symbolIcon(QStringLiteral("chevrons-right"));
        case SP_LineEditClearButton:
            return symbolIcon(QStringLiteral("xmark"));
        default:
            return QProxyStyle::standardIcon(icon, option, widget);
    }
}

void ApplicationStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::PlaceholderText, tints::placeholder(palette, group));
    }
}

}  // namespace velmora
