#pragma once

#include "base/Observable.h"
#include "ui/ForwardingTable.h"

#include <QTimer>
#include <QWidget>

class QFormLayout;
class QVBoxLayout;

namespace velmora {

class HostBinding;
class IconButton;
class TextField;
class TunnelManager;
class WarningLine;

/// Where a host is, who logs in, and what is forwarded. Main thread.
class GeneralTabView final : public QWidget {
    Q_OBJECT

public:
    /// Manager and host outlive the tab.
    GeneralTabView(TunnelManager& manager, HostBinding& host, QWidget* parent = nullptr);

    [[nodiscard]] QWidget* firstField() const;

Q_SIGNALS:
    /// A rule was added: the form is to show this row.
    void rowAdded(QWidget* row);

private:
    void addServer(QFormLayout& form);
    void addForwarding(QFormLayout& form);
    void addSession(QFormLayout& form);
    [[nodiscard]] QWidget* ruleButtons();
    [[nodiscard]] QWidget* legendRow();
    void addRule();
    void removeRule();
    void orderTabs();
    void showAlias();
    void showConflicts();

    TunnelManager& manager_;
    HostBinding& host_;
    ForwardingTable::SelectedId selectedRuleId_;
    TextField* hostname_;
    QWidget* beforeTable_ = nullptr;
    ForwardingTable* table_ = nullptr;
    IconButton* plus_ = nullptr;
    QWidget* conflicts_ = nullptr;
    std::vector<WarningLine*> conflictLines_;
    QTimer conflictsSoon_;  ///< one look for however many changes a turn of the event loop brings
    Subscription hostsChanges_;
};

}  // namespace velmora
