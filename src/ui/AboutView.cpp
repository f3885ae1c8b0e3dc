#include "ui/AboutView.h"

#include "ui/ApplicationIcon.h"
#include "ui/Changelog.h"
#include "ui/Metrics.h"
#include "ui/Tints.h"
#include "ui/WindowServices.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QPainter>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QVBoxLayout>

#include <string_view>

namespace velmora {

namespace {

constexpr int iconSide = 96;

/// The application's icon, drawn for the screen that it is on.
class IconView final : public QWidget {
public:
    IconView() {
        setFixedSize(iconSide, iconSide);
        setObjectName(QStringLiteral("icon"));
    }

private:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        applicationIcon().paint(&painter, rect());
    }
};

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

/// Version and date in one row, and a line with a bullet for each change.
void writeChangelog(QTextDocument& document, const QColor& dateColor) {
    document.clear();
    QTextCursor cursor(&document);
    QTextCharFormat versionFormat;
    versionFormat.setFontWeight(QFont::DemiBold);
    QTextCharFormat dateFormat;
    dateFormat.setForeground(dateColor);
    QTextListFormat bullets;
    bullets.setStyle(QTextListFormat::ListDisc);
    bullets.setIndent(1);
    document.setIndentWidth(metrics::group);

    bool isFirst = true;
    for (const ChangelogEntry& entry : changelog) {
        QTextBlockFormat heading;
        heading.setTopMargin(isFirst ? 0 : metrics::group);
        if (isFirst) {
            cursor.setBlockFormat(heading);
        } else {
            cursor.insertBlock(heading);
        }
        isFirst = false;
        cursor.insertText(text(entry.version), versionFormat);
        cursor.insertText(QStringLiteral("  ") + text(entry.date), dateFormat);

        QTextList* list = nullptr;
        for (const std::string_view change : entry.changes) {
            QTextBlockFormat line;
            line.setTopMargin(metrics::caption);
            cursor.insertBlock(line, {});
            if (list == nullptr) {
                list = cursor.createList(bullets);
            } else {
                list->add(cursor.block());
            }
            cursor.insertText(text(change), {});
        }
    }
}

}  // namespace

AboutView::AboutView(WindowServices& services)
    : ManagedWindow(windows::about, tr("About Velmora"), services.defaults),
      name_(new QLabel(tr("Velmora"))),
      changes_(new QTextBrowser) {
    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(metrics::margin, metrics::section, metrics::margin, metrics::margin);
    column->setSpacing(metrics::caption);

    column->addWidget(new IconView, 0, Qt::AlignHCenter);
    column->addSpacing(metrics::related);
    name_->setObjectName(QStringLiteral("name"));
    column->addWidget(name_, 0, Qt::AlignHCenter);
    auto* version = new QLabel(tr("Version %1").arg(QString::fromStdString(services.updater.currentVersion())));
    version->setObjectName(QStringLiteral("version"));
    version->setTextFormat(Qt::PlainText);
    version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(version, 0, Qt::AlignHCenter);
    column->addSpacing(metrics::group);

    changes_->setObjectName(QStringLiteral("changelog"));
    changes_->setAccessibleName(tr("Changes"));
    changes_->setFrameShape(QFrame::NoFrame);
    changes_->setOpenLinks(false);
    changes_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    column->addWidget(changes_, 1);

    setCentralWidget(content);
    adopt();
    restorePlace({480, 600});
}

void AboutView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange ||
        event->type() == QEvent::StyleChange) {
        adopt();
    }
    ManagedWindow::changeEvent(event);
}

void AboutView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        ManagedWindow::keyPressEvent(event);
    }
}

void AboutView::adopt() {
    if (adopting_) {
        return;  // what follows is a change, too
    }
    adopting_ = true;
    QFont title = metrics::scaled(font(), metrics::titleScale);
    title.setWeight(QFont::Medium);
    name_->setFont(title);

    QPalette colors = palette();
    colors.setColor(QPalette::Base, colors.color(QPalette::Window));
    colors.setColor(QPalette::Text, colors.color(QPalette::WindowText));
    changes_->setPalette(colors);
    writeChangelog(*changes_->document(), tints::caption(colors));
    changes_->moveCursor(QTextCursor::Start);
    adopting_ = false;
}

}  // namespace velmora
