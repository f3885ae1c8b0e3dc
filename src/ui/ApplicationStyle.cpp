#include "ui/ApplicationStyle.h"

#include "ui/SymbolIcon.h"
#include "ui/Tints.h"

#include <QApplication>

namespace velmora {

ApplicationStyle::ApplicationStyle(const QApplication& /*application*/) {}

QIcon ApplicationStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
    switch (icon) {
        case SP_ToolBarHorizontalExtensionButton:  // a menu bar asks for it when it is made, however wide it is
            return symbolIcon(QStringLiteral("chevrons-right"));
        case SP_LineEditClearButton:
            return symbolIcon(QStringLiteral("xmark"));
        case SP_MessageBoxWarning:
            return symbolIcon(QStringLiteral("exclamationmark-triangle-fill"), tints::warning(QApplication::palette()));
        default:
            return QProxyStyle::standardIcon(icon, option, widget);
    }
}

int ApplicationStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                                QStyleHintReturn* returned) const {
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) {
        return 0;  // beside buttons of our own, which have none
    }
    return QProxyStyle::styleHint(hint, option, widget, returned);
}

void ApplicationStyle::polish(QPalette& palette) {
    QProxyStyle::polish(palette);
    for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::PlaceholderText, tints::placeholder(palette, group));
    }
}

}  // namespace velmora
