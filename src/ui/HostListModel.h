#pragma once

#include "base/Uuid.h"
#include "manager/TunnelManager.h"
#include "model/ConnectionStatus.h"
#include "model/SSHHost.h"
#include "ui/HostFilter.h"

#include <QAbstractListModel>

#include <optional>
#include <string>
#include <vector>

namespace velmora {

/// The hosts that a search shows and how they are doing, a row each. It follows the manager when it is told to
/// `refresh`. Main thread.
class HostListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    /// The status in words, and as a `ConnectionStatus::State`.
    enum Role { StatusTextRole = Qt::UserRole, StatusStateRole };

    explicit HostListModel(TunnelManager& manager);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }

    /// Moves hosts of the manager's list and saves it. The positions are those of the rows that are shown, and are
    /// taken as positions of the whole list, also while a search hides some of it.
    bool moveRows(const QModelIndex& sourceParent, int sourceRow, int count, const QModelIndex& destinationParent,
                  int destinationChild) override;

    /// Shows the hosts whose name or hostname contains this text.
    void setSearch(const QString& search);
    [[nodiscard]] bool isSearching() const { return filter_.isActive(); }

    /// Takes over what the manager knows now; rows that stay keep their selection. Tells whether rows came, went or
    /// moved.
    bool refresh();

    [[nodiscard]] const Uuid& id(int row) const { return rows_[static_cast<std::size_t>(row)].id; }
    /// -1 when it is not shown.
    [[nodiscard]] int row(const Uuid& id) const;
    /// Whether a row shows for how long its host has been connected.
    [[nodiscard]] bool showsUptime() const { return showsUptime_; }

private:
    struct Row {
        Uuid id;
        std::string name;
        ConnectionStatus status;
        std::optional<std::string> uptime;

        bool operator==(const Row&) const = default;
    };
    using Hosts = std::vector<const SSHHost*>;

    [[nodiscard]] Row rowOf(const SSHHost& host) const;
    bool adoptOrder(const Hosts& hosts);
    bool reorderRows(const Hosts& hosts, std::size_t first, std::size_t count);
    void replaceRows(const Hosts& hosts, std::size_t first, std::size_t removed, std::size_t inserted);
    void adoptContent(const Hosts& hosts);

    TunnelManager& manager_;
    HostFilter filter_;
    std::vector<Row> rows_;
    bool showsUptime_ = false;
};

}  // namespace velmora
