#include "ui/TextField.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>

#include <gtest/gtest.h>

namespace velmora {
namespace {

class TextFieldTest : public testing::Test {
protected:
    QString pasted(const QString& text) {
        QGuiApplication::clipboard()->setText(text);
        field_.paste();
        EXPECT_EQ(edits_.back().front().toString(), field_.text()) << "what is seen is what is kept";
        return field_.text();
    }

    TextField field_;
    QSignalSpy edits_{&field_, &TextField::textEdited};
};

TEST_F(TextFieldTest, LeavesOutTheLineBreaksOfWhatIsPasted) {
    EXPECT_EQ(pasted(QStringLiteral("server.example\n")), QStringLiteral("server.example"));
    field_.clear();
    EXPECT_EQ(pasted(QString::fromUtf8("\r\na\u2028b\u2029c \t")), QStringLiteral("abc \t"));
}

TEST_F(TextFieldTest, TheCursorStandsBehindWhatIsPasted) {
    field_.setText(QStringLiteral("ad"));
    field_.setCursorPosition(1);
    EXPECT_EQ(pasted(QStringLiteral("b\nc\n")), QStringLiteral("abcd"));
    EXPECT_EQ(field_.cursorPosition(), 3);
}

}  // namespace
}  // namespace velmora
