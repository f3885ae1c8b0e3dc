#pragma once

#include "manager/TunnelManager.h"
#include "ui/HostListModel.h"

#include <QListView>
#include <QMainWindow>

#include <filesystem>
#include <functional>

class QLabel;
class QStackedWidget;

namespace velmora {

/// The main window: the hosts in a list. A double click or Return connects a host or disconnects it. Main thread.
class HostListWindow final : public QMainWindow {
    Q_OBJECT

public:
    HostListWindow(TunnelManager& manager, const std::filesystem::path& hostsFile, std::function<void()> quit);

    /// Takes over what the manager knows now.
    void refresh();

private:
    void toggle(const QModelIndex& index);

    TunnelManager& manager_;
    HostListModel model_;
    QStackedWidget* pages_;
    QListView* list_;
    QLabel* placeholder_;
};

}  // namespace velmora
