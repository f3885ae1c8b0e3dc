#include "ui/HostListWindow.h"

#include "ui/HostRowDelegate.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStackedWidget>

#include <utility>

namespace velmora {

namespace {

QString emptyListText(const std::filesystem::path& hostsFile) {
    return QStringLiteral(
               "<p style='font-size: large'>No tunnels yet</p><p>Describe them in<br>%1<br>and start Velmora "
               "again.</p>")
        .arg(QString::fromStdString(hostsFile.string()).toHtmlEscaped());
}

}  // namespace

HostListWindow::HostListWindow(TunnelManager& manager, const std::filesystem::path& hostsFile,
                               std::function<void()> quit)
    : manager_(manager),
      model_(manager),
      pages_(new QStackedWidget),
      list_(new QListView),
      placeholder_(new QLabel(emptyListText(hostsFile))) {
    setObjectName(QStringLiteral("main"));
    setWindowTitle(QStringLiteral("Velmora"));
    resize(480, 400);

    list_->setObjectName(QStringLiteral("hosts"));
    list_->setAccessibleName(QStringLiteral("Hosts"));
    list_->setUniformItemSizes(true);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setItemDelegate(new HostRowDelegate(list_));
    list_->setModel(&model_);
    connect(list_, &QListView::activated, this, &HostListWindow::toggle);

    placeholder_->setObjectName(QStringLiteral("placeholder"));
    placeholder_->setAlignment(Qt::AlignCenter);
    placeholder_->setWordWrap(true);
    placeholder_->setMargin(16);
    placeholder_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    pages_->addWidget(list_);
    pages_->addWidget(placeholder_);
    setCentralWidget(pages_);

    QAction* quitAction = menuBar()->addMenu(QStringLiteral("&File"))->addAction(QStringLiteral("&Quit Velmora"));
    quitAction->setObjectName(QStringLiteral("quit"));
    quitAction->setShortcut(QKeySequence::Quit);
    quitAction->setMenuRole(QAction::QuitRole);
    connect(quitAction, &QAction::triggered, this, std::move(quit));
    refresh();
}

void HostListWindow::refresh() {
    model_.refresh();
    pages_->setCurrentWidget(model_.rowCount() == 0 ? static_cast<QWidget*>(placeholder_) : list_);
}

void HostListWindow::toggle(const QModelIndex& index) {
    manager_.toggle(SSHHost(model_.host(index.row())));
}

}  // namespace velmora
