#pragma once

#include "base/Observable.h"
#include "ui/HostListModel.h"
#include "ui/ManagedWindow.h"

#include <QListView>
#include <QTimer>

#include <vector>

class QLabel;
class QStackedWidget;

namespace velmora {

struct WindowServices;

/// The main window: the hosts in a list. A double click or Return connects a host or disconnects it. Main thread.
class ContentView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit ContentView(WindowServices& services);

private:
    void addFileMenu();
    void refresh();
    void toggle(const QModelIndex& index);

    WindowServices& services_;
    HostListModel model_;
    QStackedWidget* pages_;
    QListView* list_;
    QLabel* placeholder_;
    QTimer refreshSoon_;  ///< one run for however many changes a turn of the event loop brings
    std::vector<Subscription> subscriptions_;
};

}  // namespace velmora
