#include "ui/ContentView.h"

#include "ui/HostDetailView.h"
#include "ui/NoSelectionView.h"
#include "ui/WindowServices.h"

#include <QAction>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSplitter>
#include <QStackedWidget>

#include <utility>

namespace velmora {

namespace {

constexpr int narrowestSidebar = 260;
constexpr int idealSidebar = 320;
constexpr int widestSidebar = 480;
constexpr QSize firstSize(960, 640);
constexpr auto splitKey = "split";

}  // namespace

ContentView::ContentView(WindowServices& services)
    : ManagedWindow(windows::main, tr("Velmora"), services.defaults),
      services_(services),
      split_(new QSplitter),
      sidebar_(new SidebarView(services, selected_)),
      detail_(new QStackedWidget),
      noSelection_(new NoSelectionView) {
    addFileMenu();
    addTunnelMenu();
    addToolsMenu();
    addHelpMenu();
    layOut();

    connect(sidebar_, &SidebarView::showNew, this, &ContentView::showNewHostSheet);
    connect(sidebar_, &SidebarView::changed, this, &ContentView::followActions);
    connect(noSelection_, &NoSelectionView::addTunnel, this, &ContentView::showNewHostSheet);
    connect(&services_.commands, &AppCommands::addTunnel, this, &ContentView::showNewHostSheet);
    hostsChanged_.setSingleShot(true);
    connect(&hostsChanged_, &QTimer::timeout, this, &ContentView::followHosts);
    subscriptions_.push_back(services_.manager.hosts().observe([this] { hostsChanged_.start(0); }));
    subscriptions_.push_back(selected_.observe([this] { followSelection(); }));
    followHosts();
    followActions();
    sidebar_->focusList();
}

void ContentView::layOut() {
    split_->setObjectName(QStringLiteral("split"));
    split_->setChildrenCollapsible(false);
    split_->addWidget(sidebar_);
    split_->addWidget(detail_);
    split_->setStretchFactor(1, 1);
    sidebar_->setMinimumWidth(narrowestSidebar);
    sidebar_->setMaximumWidth(widestSidebar);
    detail_->addWidget(noSelection_);
    setCentralWidget(split_);
    restorePlace(firstSize);
    const int last = remembered(splitKey).toInt();
    const int sidebar = last > 0 ? qBound(narrowestSidebar, last, widestSidebar) : idealSidebar;
    split_->setSizes({sidebar, width() - sidebar});
}

void ContentView::hideEvent(QHideEvent* event) {
    remember(splitKey, QByteArray::number(sidebar_->width()));
    ManagedWindow::hideEvent(event);
}

void ContentView::addFileMenu() {
    AppCommands& commands = services_.commands;
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("&New Tunnel"), QKeySequence::New, &commands, &AppCommands::newTunnel);
    file->addAction(tr("Import from Velmora &Backup…"), &commands, &AppCommands::importVelmoraFile);
    file->addAction(tr("&Import from Core Tunnel…"), QKeySequence(Qt::CTRL | Qt::Key_I), &commands,
                    &AppCommands::importCoreTunnelFile);
    file->addAction(tr("&Export Tunnels…"), QKeySequence(Qt::CTRL | Qt::Key_E), &commands, &AppCommands::exportTunnels);
    file->addSeparator();
    file->addAction(tr("&Close Window"), QKeySequence::Close, this, &QWidget::close);
    file->addSeparator();
    QAction* quit = file->addAction(tr("&Quit Velmora"), QKeySequence::Quit, &commands, &AppCommands::quit);
    quit->setObjectName(QStringLiteral("quit"));
    quit->setMenuRole(QAction::QuitRole);
}

void ContentView::addTunnelMenu() {
    QMenu* tunnel = menuBar()->addMenu(tr("&Tunnel"));
    toggle_ = tunnel->addAction(tr("&Connect"), sidebar_, &SidebarView::toggleSelected);
    toggle_->setObjectName(QStringLiteral("toggle"));
    tunnel->addSeparator();
    moveUp_ = tunnel->addAction(tr("Move &Up"), QKeySequence(Qt::ALT | Qt::Key_Up), sidebar_,
                                [this] { sidebar_->moveSelected(-1); });
    moveDown_ = tunnel->addAction(tr("Move &Down"), QKeySequence(Qt::ALT | Qt::Key_Down), sidebar_,
                                  [this] { sidebar_->moveSelected(1); });
    for (QAction* move : {moveUp_, moveDown_}) {
        // In the editor the same keys open a list of choices, or move the cursor.
        move->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        sidebar_->addAction(move);
    }
    tunnel->addSeparator();
    tunnel->addAction(tr("&Search"), QKeySequence::Find, sidebar_, [this] {
        sidebar_->search().setFocus(Qt::ShortcutFocusReason);
        sidebar_->search().selectAll();
    });
    tunnel->addSeparator();
    delete_ = tunnel->addAction(tr("D&elete…"), sidebar_, [this] {
        if (const auto id = selected_.get()) {
            sidebar_->askToDelete(*id);
        }
    });
}

void ContentView::addToolsMenu() {
    QMenu* tools = menuBar()->addMenu(tr("T&ools"));
    addWindowAction(*tools, tr("&PAC Editor…"), windows::pacEditor);
    addWindowAction(*tools, tr("Proxy &Exceptions…"), windows::exceptionsEditor);
    addWindowAction(*tools, tr("&Add Proxy Exception…"), windows::quickException);
    tools->addSeparator();
    QAction* settings = addWindowAction(*tools, tr("&Settings…"), windows::settings);
    settings->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Comma));
    settings->setMenuRole(QAction::PreferencesRole);
}

void ContentView::addHelpMenu() {
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    addWindowAction(*help, tr("&About Velmora"), windows::about)->setMenuRole(QAction::AboutRole);
}

QAction* ContentView::addWindowAction(QMenu& menu, const QString& text, std::string_view window) {
    return menu.addAction(text, this, [this, window] { services_.openManagedWindow(window); });
}

void ContentView::showNewHostSheet() {
    if (sheet_) {
        sheet_->activateWindow();
        return;
    }
    sheet_ = new NewHostSheet(
        services_, [this](const SSHHost& host) { create(host); }, this);
    sheet_->setAttribute(Qt::WA_DeleteOnClose);
    sheet_->open();
}

void ContentView::create(const SSHHost& host) {
    const Uuid id = host.id;
    services_.manager.hosts().edit([&host](std::vector<SSHHost>& hosts) { hosts.push_back(host); });
    services_.manager.save();
    selected_.set(id);
}

/// A host that is gone, here or on another computer, is not selected any more.
void ContentView::followHosts() {
    noSelection_->setShowsFirstStep(services_.manager.hosts().get().empty());
    if (selected_.get() && services_.manager.findHost(*selected_.get()) == nullptr) {
        selected_.set(std::nullopt);
    }
}

void ContentView::followSelection() {
    const auto& id = selected_.get();
    if (editor_ != nullptr && id != editor_->hostId()) {
        detail_->removeWidget(editor_);
        editor_->hide();
        std::exchange(editor_, nullptr)->deleteLater();  // it may be the one that brought the change about
    }
    if (id && editor_ == nullptr) {
        editor_ = new HostDetailView(services_, *id, detail_);
        detail_->addWidget(editor_);
    }
    detail_->setCurrentWidget(editor_ != nullptr ? static_cast<QWidget*>(editor_) : noSelection_);
    followActions();
}

void ContentView::followActions() {
    const SSHHost* host = selected_.get() ? services_.manager.findHost(*selected_.get()) : nullptr;
    toggle_->setText(host != nullptr && services_.manager.isActive(*host) ? tr("Dis&connect") : tr("&Connect"));
    toggle_->setEnabled(host != nullptr);
    delete_->setEnabled(host != nullptr);
    moveUp_->setEnabled(sidebar_->canMoveSelected(-1));
    moveDown_->setEnabled(sidebar_->canMoveSelected(1));
}

}  // namespace velmora
