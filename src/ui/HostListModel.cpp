#include "ui/HostListModel.h"

#include "ui/MenuLabel.h"
#include "ui/StatusLook.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace velmora {

HostListModel::HostListModel(TunnelManager& manager) : manager_(manager) {
    refresh();
}

int HostListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant HostListModel::data(const QModelIndex& index, int role) const {
    const Row& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case Qt::DisplayRole:
            return displayName(row.host.name);
        case StatusTextRole:
            return statusText(row.status);
        case StatusColorRole:
            return statusColor(row.status.state);
        case Qt::ToolTipRole:
        case Qt::AccessibleTextRole:
            return QString(displayName(row.host.name) + QStringLiteral("\n") + statusText(row.status));
        default:
            return {};
    }
}

void HostListModel::refresh() {
    const auto& hosts = manager_.hosts().get();
    const auto sameId = [](const Row& row, const SSHHost& host) { return row.host.id == host.id; };
    const auto [rowsHead, hostsHead] = std::mismatch(rows_.begin(), rows_.end(), hosts.begin(), hosts.end(), sameId);
    const auto [rowsTail, hostsTail] = std::mismatch(rows_.rbegin(), std::make_reverse_iterator(rowsHead),
                                                     hosts.rbegin(), std::make_reverse_iterator(hostsHead), sameId);
    replaceRows(static_cast<int>(rowsHead - rows_.begin()), static_cast<int>(rowsTail.base() - rowsHead),
                static_cast<int>(hostsTail.base() - hostsHead));

    for (std::size_t position = 0; position < rows_.size(); ++position) {
        Row& row = rows_[position];
        ConnectionStatus status = manager_.status(row.host.id);
        if (row.host != hosts[position] || row.status != status) {
            row = {hosts[position], std::move(status)};
            const QModelIndex changed = index(static_cast<int>(position));
            Q_EMIT dataChanged(changed, changed);
        }
    }
}

void HostListModel::replaceRows(int first, int removed, int inserted) {
    if (removed > 0) {
        beginRemoveRows({}, first, first + removed - 1);
        rows_.erase(rows_.begin() + first, rows_.begin() + first + removed);
        endRemoveRows();
    }
    if (inserted > 0) {
        beginInsertRows({}, first, first + inserted - 1);
        const auto hosts = manager_.hosts().get().begin() + first;
        std::vector<Row> rows;
        std::transform(hosts, hosts + inserted, std::back_inserter(rows), [this](const SSHHost& host) {
            return Row{host, manager_.status(host.id)};
        });
        rows_.insert(rows_.begin() + first, std::make_move_iterator(rows.begin()), std::make_move_iterator(rows.end()));
        endInsertRows();
    }
}

}  // namespace velmora
