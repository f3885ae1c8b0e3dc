#include "ui/SystemDialogs.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <gtest/gtest.h>

#include <optional>

namespace velmora {
namespace {

class SystemDialogsTest : public testing::Test {
protected:
    ~SystemDialogsTest() override { delete box(); }

    struct NoPolicy final : ActivationPolicy {
        void setRegular() override {}
        void setAccessory() override {}
        void activate() override {}
    };

    static QMessageBox* box() {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<QMessageBox*>(window); found != nullptr && found->isVisible()) {
                return found;
            }
        }
        return nullptr;
    }
    static void expectPlain(const QString& message, const QString& informativeText) {
        QStringList shown;
        for (const auto* label : box()->findChildren<QLabel*>()) {
            if (!label->text().isEmpty()) {
                EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
                shown.append(label->text());
            }
        }
        EXPECT_TRUE(shown.contains(message));
        EXPECT_TRUE(shown.contains(informativeText));
    }

    NoPolicy policy;
    SystemDialogs dialogs{policy};
    const QString marked = QStringLiteral("<h1>Big</h1><s>struck</s>");
};

TEST_F(SystemDialogsTest, AnAlertSaysWhatItIsGivenAsItStands) {
    int dismissed = 0;
    dialogs.alert({.message = marked + QStringLiteral("?"), .informativeText = marked}, [&dismissed] { ++dismissed; });
    expectPlain(marked + QStringLiteral("?"), marked);
    box()->button(QMessageBox::Ok)->click();
    EXPECT_EQ(dismissed, 1);
}

TEST_F(SystemDialogsTest, AQuestionSaysWhatItIsGivenAsItStands) {
    std::optional<bool> answer;
    dialogs.ask(
        {.message = marked + QStringLiteral("?"), .informativeText = marked, .acceptButton = QStringLiteral("Delete")},
        [&answer](bool accepted) { answer = accepted; });
    expectPlain(marked + QStringLiteral("?"), marked);
    box()->button(QMessageBox::Cancel)->click();
    EXPECT_EQ(answer, false);
}

TEST_F(SystemDialogsTest, AShortAlertHasRoomForItsTitle) {
    dialogs.alert({.message = QStringLiteral("No."), .informativeText = {}}, {});
    EXPECT_GE(box()->width(), 380);
}

}  // namespace
}  // namespace velmora
