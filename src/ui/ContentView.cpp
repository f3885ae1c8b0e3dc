#include "ui/ContentView.h"

#include "ui/HostRowDelegate.h"
#include "ui/WindowServices.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QStackedWidget>

namespace velmora {

ContentView::ContentView(WindowServices& services)
    : ManagedWindow(windows::main, tr("Velmora"), services.defaults),
      services_(services),
      model_(services.manager),
      pages_(new QStackedWidget),
      list_(new QListView),
      placeholder_(new QLabel(tr("No tunnel selected"))) {
    list_->setObjectName(QStringLiteral("hosts"));
    list_->setAccessibleName(tr("Hosts"));
    list_->setUniformItemSizes(true);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setItemDelegate(new HostRowDelegate(list_));
    list_->setModel(&model_);
    connect(list_, &QListView::activated, this, &ContentView::toggle);

    placeholder_->setObjectName(QStringLiteral("placeholder"));
    placeholder_->setAlignment(Qt::AlignCenter);

    pages_->addWidget(list_);
    pages_->addWidget(placeholder_);
    setCentralWidget(pages_);
    addFileMenu();

    refreshSoon_.setSingleShot(true);
    connect(&refreshSoon_, &QTimer::timeout, this, &ContentView::refresh);
    subscriptions_.push_back(services_.manager.hosts().observe([this] { refreshSoon_.start(0); }));
    subscriptions_.push_back(services_.manager.statuses().observe([this] { refreshSoon_.start(0); }));
    refresh();
    restorePlace({960, 640});
}

void ContentView::addFileMenu() {
    AppCommands& commands = services_.commands;
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&New Tunnel"), QKeySequence::New, &commands, &AppCommands::newTunnel);
    file->addSeparator();
    file->addAction(tr("Import from Velmora &Backup…"), &commands, &AppCommands::importVelmoraFile);
    file->addAction(tr("&Import from Core Tunnel…"), QKeySequence(Qt::CTRL | Qt::Key_I), &commands,
                    &AppCommands::importCoreTunnelFile);
    file->addAction(tr("&Export Tunnels…"), QKeySequence(Qt::CTRL | Qt::Key_E), &commands, &AppCommands::exportTunnels);
    file->addSeparator();
    QAction* quit = file->addAction(tr("&Quit Velmora"), QKeySequence::Quit, &commands, &AppCommands::quit);
    quit->setObjectName(QStringLiteral("quit"));
    quit->setMenuRole(QAction::QuitRole);
}

void ContentView::refresh() {
    model_.refresh();
    pages_->setCurrentWidget(model_.rowCount() == 0 ? static_cast<QWidget*>(placeholder_) : list_);
}

void ContentView::toggle(const QModelIndex& index) {
    services_.manager.toggle(SSHHost(model_.host(index.row())));
}

}  // namespace velmora
