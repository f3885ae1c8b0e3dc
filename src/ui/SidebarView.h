#pragma once

#include "base/Observable.h"
#include "base/Uuid.h"
#include "ui/HostListModel.h"

#include <QTimer>
#include <QWidget>

#include <cstdint>
#include <optional>
#include <vector>

class QAction;
class QLineEdit;
class QToolButton;

namespace velmora {

class HostListView;
struct WindowServices;

/// The host that the main window shows. It may be one that a search hides.
using SelectedHost = Observable<std::optional<Uuid>>;

/// The left column of the main window: search, list of hosts, and the buttons for a new one and for the settings. Main
/// thread.
class SidebarView final : public QWidget {
    Q_OBJECT

public:
    /// Selecting a row sets `selected`, and what is set there is selected in the list. Outlives the view, both of them.
    SidebarView(WindowServices& services, SelectedHost& selected, QWidget* parent = nullptr);
    ~SidebarView() override;

    [[nodiscard]] QLineEdit& search() { return *search_; }
    void focusList();

    /// Connects the selected host or disconnects it.
    void toggleSelected();
    /// Asks, and deletes the host when the user agrees. One question at a time.
    void askToDelete(const Uuid& id);
    /// Whether the selected host can be moved by so many rows: not while a search hides what is between.
    [[nodiscard]] bool canMoveSelected(int rows) const;
    void moveSelected(int rows);

Q_SIGNALS:
    void showNew();
    /// The search or the hosts.
    void changed();

private:
    bool eventFilter(QObject* object, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

    void layOut();
    [[nodiscard]] QToolButton* addButton(const QString& symbol, const QString& name);
    void applySearch();
    void refresh();
    void followUptime();
    void takeSelection();
    void showSelection();
    void showMenu(const QModelIndex& index, const QPoint& globalPosition);
    void toggle(const Uuid& id);
    void answered(bool accepted);

    WindowServices& services_;
    SelectedHost& selected_;
    HostListModel model_;
    QLineEdit* search_;
    QAction* clear_;
    HostListView* list_;
    QToolButton* plus_;
    QToolButton* gear_;
    std::optional<Uuid> pendingDelete_;  ///< the host whose deletion the user is asked about
    bool isAdopting_ = false;            ///< what the list selects by itself meanwhile is not the user's choice
    bool isOnScreen_ = false;
    QTimer refreshSoon_;  ///< one run for however many changes a turn of the event loop brings
    QTimer uptime_;       ///< runs while there is an uptime to be seen
    std::vector<Subscription> subscriptions_;
};

}  // namespace velmora
