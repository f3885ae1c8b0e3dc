#include "ui/MenuLabel.h"

#include <QTextBoundaryFinder>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace velmora {
namespace {

/// What Qt makes of a label that it exports: the first ampersand, unless it is the last character, becomes "_".
std::string asExported(QString label) {
    const auto ampersand = label.indexOf(QLatin1Char('&'));
    if (ampersand >= 0 && ampersand != label.size() - 1) {
        label[ampersand] = QLatin1Char('_');
    }
    return label.toStdString();
}

TEST(MenuLabel, ReadsAsTheNameDoes) {
    const std::string mark = "_\u2060";  // a mnemonic on a character that is not seen
    struct Case {
        std::string name;
        std::string widget;
        std::string exported;
    };
    const std::vector<Case> cases{
        {"web", "web", "web"},
        {"a_b", "a_b", "a__b"},
        {"_", "_", "__"},
        {"__init__", "__init__", "____init____"},
        {"a & b", "a && b", mark + "a & b"},
        {"&first", "&&first", mark + "&first"},
        {"last&", "last&&", "last&"},
        {"&", "&&", "&"},
        {"&&", "&&&&", mark + "&&"},
        {"R&D & more", "R&&D && more", mark + "R&D & more"},
        {"a_b&c_d", "a_b&&c_d", mark + "a__b&c__d"},
        {"_&", "_&&", "__&"},
        {"&_", "&&_", mark + "&__"},
        {"ünïcødé 東京", "ünïcødé 東京", "ünïcødé 東京"},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(menuLabel(each.name, MenuText::widget).toStdString(), each.widget) << each.name;
        EXPECT_EQ(asExported(menuLabel(each.name, MenuText::exported)), each.exported) << each.name;
    }
}

TEST(MenuLabel, IsOneLineWithoutAShortcutColumn) {
    for (const auto drawnAs : {MenuText::widget, MenuText::exported}) {
        EXPECT_EQ(menuLabel("a\nb\r\nc\td\u2028e", drawnAs).toStdString(), "a b  c d e");
    }
}

TEST(MenuLabel, AnEmptyNameCanStillBeSeen) {
    for (const std::string name : {"", " ", "\n\t", "\u00a0"}) {
        EXPECT_EQ(menuLabel(name, MenuText::widget).toStdString(), "Unnamed");
        EXPECT_EQ(displayName(name).toStdString(), "Unnamed");
    }
}

TEST(MenuLabel, CutsAVeryLongNameInTheMiddle) {
    std::string name = "begin" + std::string(5000, '.') + "end";
    const QString label = menuLabel(name, MenuText::widget);
    EXPECT_LE(label.size(), 64);
    EXPECT_TRUE(label.startsWith(QStringLiteral("begin")));
    EXPECT_TRUE(label.endsWith(QStringLiteral("end")));
    EXPECT_TRUE(label.contains(QChar(0x2026)));

    EXPECT_EQ(menuLabel(std::string(64, 'x'), MenuText::widget).size(), 64);
    EXPECT_EQ(displayName(name).size(), static_cast<qsizetype>(name.size()));
}

TEST(MenuLabel, NeverCutsACharacterInTwo) {
    for (const std::string character : {"🚇", "e\u0301", "👩‍👩‍👧", "各"}) {
        for (std::size_t lead = 0; lead < 4; ++lead) {
            std::string name(lead, 'x');
            for (int count = 0; count < 100; ++count) {
                name += character;
            }
            QString rest = menuLabel(name, MenuText::widget);
            rest.remove(QString::fromStdString(character));
            EXPECT_EQ(rest, QString(static_cast<qsizetype>(lead), QLatin1Char('x')) + QChar(0x2026)) << character;
        }
    }
}

TEST(MenuLabel, CutsBeforeItEscapes) {
    const QString label = menuLabel(std::string(200, '&'), MenuText::widget);
    EXPECT_EQ(label.count(QLatin1Char('&')) % 2, 0);
}

}  // namespace
}  // namespace velmora
