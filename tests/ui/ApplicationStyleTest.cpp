#include "ui/ApplicationStyle.h"
#include "ui/Tints.h"

#include <QApplication>
#include <QImage>

#include <gtest/gtest.h>

#include <utility>

namespace velmora {
namespace {

QColor strongest(const QIcon& icon) {
    const QImage picture = icon.pixmap(32).toImage();
    QColor found(Qt::transparent);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor here = picture.pixelColor(x, y);
            found = here.alpha() > found.alpha() ? here : found;
        }
    }
    return found;
}

TEST(ApplicationStyleTest, DrawsItsOwnSymbolsInTheColoursOfThePalette) {
    const ApplicationStyle style(*qApp);
    for (const auto symbol : {QStyle::SP_ToolBarHorizontalExtensionButton, QStyle::SP_LineEditClearButton}) {
        const QColor colour = strongest(style.standardIcon(symbol));
        EXPECT_EQ(colour.alpha(), 255) << symbol;
        EXPECT_EQ(colour.rgb(), QApplication::palette().color(QPalette::ButtonText).rgb()) << symbol;
    }
}

TEST(ApplicationStyleTest, AWarningIsOrangeAndButtonsHaveNoPictures) {
    const ApplicationStyle style(*qApp);
    EXPECT_EQ(strongest(style.standardIcon(QStyle::SP_MessageBoxWarning)).rgb(),
              tints::warning(QApplication::palette()).rgb());
    EXPECT_EQ(style.styleHint(QStyle::SH_DialogButtonBox_ButtonsHaveIcons), 0);
}

TEST(ApplicationStyleTest, LeavesOtherSymbolsToThePlatform) {
    const ApplicationStyle style(*qApp);
    EXPECT_EQ(style.standardIcon(QStyle::SP_DirIcon).pixmap(16).toImage(),
              style.baseStyle()->standardIcon(QStyle::SP_DirIcon).pixmap(16).toImage());
}

TEST(ApplicationStyleTest, PlaceholdersAreReadOnLightAndOnDark) {
    ApplicationStyle style(*qApp);
    for (const auto& [base, text] : {std::pair(Qt::white, Qt::black), std::pair(Qt::black, Qt::white)}) {
        QPalette palette;
        palette.setColor(QPalette::Base, base);
        palette.setColor(QPalette::Text, text);
        palette.setColor(QPalette::Window, tints::mix(base, text, 0.15F));
        palette.setColor(QPalette::PlaceholderText, QColor(0, 0, 0, 128));  // as a dark theme may leave it
        style.polish(palette);
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            const QColor shown = palette.color(group, QPalette::PlaceholderText);
            EXPECT_GE(tints::contrast(shown, base), 4.5) << base;
            EXPECT_GE(tints::contrast(shown, palette.color(QPalette::Window)), 4.5) << base;
            EXPECT_NE(shown, QColor(text)) << base;
        }
    }
}

TEST(ApplicationStyleTest, IsThePlatformsOtherwise) {
    const ApplicationStyle style(*qApp);
    EXPECT_EQ(style.baseStyle()->name(), QApplication::style()->name());
}

}  // namespace
}  // namespace velmora
