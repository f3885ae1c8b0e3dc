#pragma once

#include "manager/TunnelManager.h"
#include "model/ConnectionStatus.h"
#include "model/SSHHost.h"

#include <QAbstractListModel>

#include <vector>

namespace velmora {

/// The hosts and how they are doing, a row each. It follows the manager when it is told to `refresh`. Main thread.
class HostListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { StatusTextRole = Qt::UserRole, StatusColorRole };

    explicit HostListModel(TunnelManager& manager);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

    /// Takes over what the manager knows now; rows that stay keep their selection.
    void refresh();

    [[nodiscard]] const SSHHost& host(int row) const { return rows_[static_cast<std::size_t>(row)].host; }

private:
    struct Row {
        SSHHost host;
        ConnectionStatus status;
    };

    void replaceRows(int first, int removed, int inserted);

    TunnelManager& manager_;
    std::vector<Row> rows_;
};

}  // namespace velmora
