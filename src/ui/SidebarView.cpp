#include "ui/SidebarView.h"

#include "ui/HostListView.h"
#include "ui/MenuLabel.h"
#include "ui/Metrics.h"
#include "ui/SymbolIcon.h"
#include "ui/WindowServices.h"

#include <QAction>
#include <QHBoxLayout>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QScopedValueRollback>
#include <QToolButton>
#include <QVBoxLayout>

#include <chrono>
#include <utility>

namespace velmora {

namespace {

constexpr std::chrono::seconds uptimeInterval{30};

}  // namespace

SidebarView::SidebarView(WindowServices& services, SelectedHost& selected, QWidget* parent)
    : QWidget(parent),
      services_(services),
      selected_(selected),
      model_(services.manager),
      search_(new QLineEdit(this)),
      clear_(search_->addAction(symbolIcon(QStringLiteral("xmark")), QLineEdit::TrailingPosition)),
      list_(new HostListView(model_, this)),
      plus_(addButton(QStringLiteral("plus"), tr("New Tunnel"))),
      gear_(addButton(QStringLiteral("gear"), tr("Settings"))) {
    layOut();
    connect(search_, &QLineEdit::textChanged, this, &SidebarView::applySearch);
    connect(plus_, &QToolButton::clicked, this, &SidebarView::showNew);
    connect(gear_, &QToolButton::clicked, this, [this] { services_.openManagedWindow(windows::settings); });
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this, &SidebarView::takeSelection);
    connect(list_, &HostListView::toggleRequested, this, &SidebarView::toggleSelected);
    connect(list_, &HostListView::deleteRequested, this,
            [this](const QModelIndex& index) { askToDelete(model_.id(index.row())); });
    connect(list_, &HostListView::menuRequested, this, &SidebarView::showMenu);

    uptime_.setObjectName(QStringLiteral("uptime"));
    uptime_.setParent(this);
    uptime_.setInterval(uptimeInterval);
    connect(&uptime_, &QTimer::timeout, this, &SidebarView::refresh);
    refreshSoon_.setSingleShot(true);
    connect(&refreshSoon_, &QTimer::timeout, this, &SidebarView::refresh);
    const auto soon = [this] { refreshSoon_.start(0); };
    subscriptions_.push_back(services_.manager.hosts().observe(soon));
    subscriptions_.push_back(services_.manager.statuses().observe(soon));
    subscriptions_.push_back(services_.manager.connectedAt().observe(soon));
    subscriptions_.push_back(selected_.observe([this] { showSelection(); }));
    showSelection();
}

SidebarView::~SidebarView() {
    // The list outlives the model, and must not take what it sees then for a choice.
    disconnect(list_->selectionModel(), nullptr, this, nullptr);
}

void SidebarView::layOut() {
    search_->setObjectName(QStringLiteral("search"));
    search_->setPlaceholderText(tr("Search"));
    search_->setAccessibleName(tr("Search"));
    search_->addAction(symbolIcon(QStringLiteral("magnifyingglass")), QLineEdit::LeadingPosition);
    // Qt's own button would look through the icon theme, which takes longer than all else in the window.
    clear_->setObjectName(QStringLiteral("clearSearch"));
    clear_->setText(tr("Clear Search"));
    clear_->setVisible(false);
    connect(clear_, &QAction::triggered, search_, &QLineEdit::clear);
    search_->installEventFilter(this);
    list_->setObjectName(QStringLiteral("hosts"));
    list_->setAccessibleName(tr("Tunnels"));

    auto* top = new QHBoxLayout;
    top->setContentsMargins(metrics::related, metrics::related, metrics::related, metrics::related);
    top->setSpacing(metrics::caption);
    top->addWidget(search_);
    top->addWidget(plus_);
    top->addWidget(gear_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addLayout(top);
    column->addWidget(list_);
    setTabOrder(search_, plus_);
    setTabOrder(plus_, gear_);
    setTabOrder(gear_, list_);
}

QToolButton* SidebarView::addButton(const QString& symbol, const QString& name) {
    auto* button = new QToolButton(this);
    button->setObjectName(symbol);
    button->setIcon(symbolIcon(symbol));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setToolTip(name);
    button->setAccessibleName(name);
    return button;
}

void SidebarView::focusList() {
    list_->setFocus();
}

void SidebarView::toggleSelected() {
    if (const auto id = selected_.get()) {
        toggle(*id);
    }
}

void SidebarView::toggle(const Uuid& id) {
    if (const SSHHost* host = services_.manager.findHost(id)) {
        services_.manager.toggle(SSHHost(*host));
    }
}

void SidebarView::askToDelete(const Uuid& id) {
    const SSHHost* host = services_.manager.findHost(id);
    if (host == nullptr || pendingDelete_) {
        return;
    }
    pendingDelete_ = id;
    const QString name = QString::fromStdString(host->name);
    services_.dialogs.ask(
        {.message = tr("Delete Tunnel"),
         .informativeText = tr("Are you sure you want to delete \"%1\"? This cannot be undone.").arg(name),
         .acceptButton = tr("Delete")},
        [self = QPointer(this)](bool accepted) {
            if (self) {
                self->answered(accepted);
            }
        });
}

void SidebarView::answered(bool accepted) {
    const auto id = std::exchange(pendingDelete_, std::nullopt);
    if (!accepted || !id) {
        return;
    }
    if (selected_.get() == id) {
        selected_.set(std::nullopt);
    }
    services_.manager.deleteHost(*id);
}

bool SidebarView::canMoveSelected(int rows) const {
    if (!selected_.get() || model_.isSearching()) {
        return false;
    }
    const int row = model_.row(*selected_.get());
    return row >= 0 && row + rows >= 0 && row + rows < model_.rowCount();
}

void SidebarView::moveSelected(int rows) {
    if (canMoveSelected(rows)) {
        const int row = model_.row(*selected_.get());
        model_.moveRows({}, row, 1, {}, rows > 0 ? row + rows + 1 : row + rows);
        showSelection();
    }
}

void SidebarView::applySearch() {
    {
        const QScopedValueRollback adopting(isAdopting_, true);
        model_.setSearch(search_->text());
    }
    list_->setEmptyText(model_.isSearching() ? tr("No tunnel has this in its name or host name.") : QString());
    clear_->setVisible(!search_->text().isEmpty());
    list_->scrollToTop();
    showSelection();
    followUptime();
    Q_EMIT changed();
}

void SidebarView::refresh() {
    bool moved = false;
    {
        const QScopedValueRollback adopting(isAdopting_, true);
        moved = list_->refresh();
        if (moved) {
            list_->select(selected_.get() ? model_.row(*selected_.get()) : -1, HostListView::Scroll::never);
        }
    }
    followUptime();
    Q_EMIT changed();
}

void SidebarView::followUptime() {
    const bool wanted = isOnScreen_ && model_.showsUptime();
    if (wanted && !uptime_.isActive()) {
        uptime_.start();
    } else if (!wanted) {
        uptime_.stop();
    }
}

void SidebarView::takeSelection() {
    if (isAdopting_) {
        return;
    }
    const QModelIndexList rows = list_->selectionModel()->selectedIndexes();
    const auto id = rows.isEmpty() ? std::nullopt : std::optional(model_.id(rows.constFirst().row()));
    if (selected_.get() != id) {
        selected_.set(id);
    }
}

void SidebarView::showSelection() {
    const QScopedValueRollback adopting(isAdopting_, true);
    const auto& id = selected_.get();
    if (id && model_.row(*id) < 0) {
        list_->refresh();  // a new host may not be in the list yet
    }
    list_->select(id ? model_.row(*id) : -1, HostListView::Scroll::toSelected);
}

void SidebarView::showMenu(const QModelIndex& index, const QPoint& globalPosition) {
    const Uuid id = model_.id(index.row());
    const SSHHost* host = services_.manager.findHost(id);
    if (host == nullptr) {
        return;
    }
    auto* menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("hostMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(services_.manager.isActive(*host) ? tr("Disconnect") : tr("Connect"), this,
                    [this, id] { toggle(id); });
    menu->addSeparator();
    menu->addAction(tr("Delete"), this, [this, id] { askToDelete(id); });
    menu->popup(globalPosition);
}

bool SidebarView::eventFilter(QObject* object, QEvent* event) {
    if (object == search_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape && !search_->text().isEmpty()) {
            search_->clear();
            return true;
        }
        if (key == Qt::Key_Down || key == Qt::Key_Return || key == Qt::Key_Enter) {
            focusList();
            if (model_.rowCount() > 0 && !list_->selectionModel()->hasSelection()) {
                list_->select(0, HostListView::Scroll::toSelected);
            }
            return true;
        }
    }
    return QWidget::eventFilter(object, event);
}

void SidebarView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    isOnScreen_ = true;
    refresh();
}

void SidebarView::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    isOnScreen_ = false;
    followUptime();
}

}  // namespace velmora
