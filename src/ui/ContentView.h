#pragma once

#include "base/Observable.h"
#include "ui/ManagedWindow.h"
#include "ui/NewHostSheet.h"
#include "ui/SidebarView.h"

#include <QPointer>
#include <QTimer>

#include <vector>

class QAction;
class QMenu;
class QSplitter;
class QStackedWidget;

namespace velmora {

class HostDetailView;
class NoSelectionView;
struct WindowServices;

/// The main window: the hosts on the left, the editor of the selected one on the right. Main thread.
class ContentView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit ContentView(WindowServices& services);

private:
    void hideEvent(QHideEvent* event) override;

    void addFileMenu();
    void addTunnelMenu();
    void addToolsMenu();
    void addHelpMenu();
    QAction* addWindowAction(QMenu& menu, const QString& text, std::string_view window);
    void layOut();

    void showNewHostSheet();
    void create(const SSHHost& host);
    void followHosts();
    void followSelection();
    void followActions();

    WindowServices& services_;
    SelectedHost selected_;
    QSplitter* split_;
    SidebarView* sidebar_;
    QStackedWidget* detail_;
    NoSelectionView* noSelection_;
    HostDetailView* editor_ = nullptr;
    QPointer<NewHostSheet> sheet_;
    QAction* toggle_ = nullptr;
    QAction* moveUp_ = nullptr;
    QAction* moveDown_ = nullptr;
    QAction* delete_ = nullptr;
    QTimer hostsChanged_;  ///< one run for however many changes a turn of the event loop brings
    std::vector<Subscription> subscriptions_;
};

}  // namespace velmora
