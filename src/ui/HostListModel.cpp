#include "ui/HostListModel.h"

#include "ui/MenuLabel.h"
#include "ui/StatusLook.h"
#include "ui/ToolTip.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <unordered_map>
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
            return displayName(row.name);
        case StatusTextRole:
            return statusText(row.status, row.uptime);
        case StatusStateRole:
            return static_cast<int>(row.status.state);
        case Qt::AccessibleTextRole:
            return QString(displayName(row.name) + QStringLiteral(", ") + statusText(row.status, row.uptime));
        case Qt::ToolTipRole:
            return toolTipOf(displayName(row.name) + QLatin1Char('\n') + statusText(row.status, row.uptime));
        default:
            return {};
    }
}

Qt::ItemFlags HostListModel::flags(const QModelIndex& index) const {
    // A row is dropped between others, never on one.
    return index.isValid() ? QAbstractListModel::flags(index) | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren
                           : Qt::ItemIsDropEnabled;
}

bool HostListModel::moveRows(const QModelIndex& sourceParent, int sourceRow, int count,
                             const QModelIndex& destinationParent, int destinationChild) {
    const auto size = static_cast<int>(manager_.hosts().get().size());
    const int end = sourceRow + count;
    if (sourceParent.isValid() || destinationParent.isValid() || sourceRow < 0 || count <= 0 || end > size ||
        destinationChild < 0 || destinationChild > size) {
        return false;
    }
    manager_.hosts().edit([=](std::vector<SSHHost>& hosts) {
        const auto first = hosts.begin();
        if (destinationChild < sourceRow) {
            std::rotate(first + destinationChild, first + sourceRow, first + end);
        } else if (destinationChild > end) {
            std::rotate(first + sourceRow, first + end, first + destinationChild);
        }
    });
    manager_.save();
    refresh();
    return true;
}

void HostListModel::setSearch(const QString& search) {
    filter_.setSearch(search);
    refresh();
}

bool HostListModel::refresh() {
    const Hosts hosts = filter_.found(manager_.hosts().get());
    const bool moved = adoptOrder(hosts);
    adoptContent(hosts);
    showsUptime_ = std::any_of(rows_.begin(), rows_.end(), [](const Row& row) { return row.uptime.has_value(); });
    return moved;
}

int HostListModel::row(const Uuid& id) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(), [&id](const Row& row) { return row.id == id; });
    return found != rows_.end() ? static_cast<int>(found - rows_.begin()) : -1;
}

HostListModel::Row HostListModel::rowOf(const SSHHost& host) const {
    return {host.id, host.name, manager_.status(host.id), manager_.uptimeString(host.id)};
}

bool HostListModel::adoptOrder(const Hosts& hosts) {
    const auto sameId = [](const Row& row, const SSHHost* host) { return row.id == host->id; };
    const auto [rowsHead, hostsHead] = std::mismatch(rows_.begin(), rows_.end(), hosts.begin(), hosts.end(), sameId);
    const auto [rowsTail, hostsTail] = std::mismatch(rows_.rbegin(), std::make_reverse_iterator(rowsHead),
                                                     hosts.rbegin(), std::make_reverse_iterator(hostsHead), sameId);
    const auto first = static_cast<std::size_t>(rowsHead - rows_.begin());
    const auto removed = static_cast<std::size_t>(rowsTail.base() - rowsHead);
    const auto inserted = static_cast<std::size_t>(hostsTail.base() - hostsHead);
    if (removed == 0 && inserted == 0) {
        return false;
    }
    if (removed != inserted || !reorderRows(hosts, first, removed)) {
        replaceRows(hosts, first, removed, inserted);
    }
    return true;
}

/// False, and nothing done, unless they are the same hosts in another order.
bool HostListModel::reorderRows(const Hosts& hosts, std::size_t first, std::size_t count) {
    std::unordered_map<Uuid, std::size_t> oldRows;
    for (std::size_t row = first; row < first + count; ++row) {
        oldRows.emplace(rows_[row].id, row);
    }
    std::vector<Row> reordered;
    std::unordered_map<std::size_t, int> newRows;
    reordered.reserve(count);
    for (std::size_t row = first; row < first + count; ++row) {
        const auto old = oldRows.find(hosts[row]->id);
        if (old == oldRows.end() || !newRows.emplace(old->second, static_cast<int>(row)).second) {
            return false;
        }
        reordered.push_back(rows_[old->second]);
    }
    Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
    std::move(reordered.begin(), reordered.end(), rows_.begin() + static_cast<std::ptrdiff_t>(first));
    const QModelIndexList before = persistentIndexList();
    QModelIndexList after;
    for (const QModelIndex& old : before) {
        const auto moved = newRows.find(static_cast<std::size_t>(old.row()));
        after.append(moved != newRows.end() ? index(moved->second) : old);
    }
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged({}, VerticalSortHint);
    return true;
}

void HostListModel::replaceRows(const Hosts& hosts, std::size_t first, std::size_t removed, std::size_t inserted) {
    const auto position = static_cast<std::ptrdiff_t>(first);
    if (removed > 0) {
        beginRemoveRows({}, static_cast<int>(first), static_cast<int>(first + removed) - 1);
        rows_.erase(rows_.begin() + position, rows_.begin() + position + static_cast<std::ptrdiff_t>(removed));
        endRemoveRows();
    }
    if (inserted > 0) {
        beginInsertRows({}, static_cast<int>(first), static_cast<int>(first + inserted) - 1);
        const auto source = hosts.begin() + position;
        std::vector<Row> rows;
        rows.reserve(inserted);
        std::transform(source, source + static_cast<std::ptrdiff_t>(inserted), std::back_inserter(rows),
                       [this](const SSHHost* host) { return rowOf(*host); });
        rows_.insert(rows_.begin() + position, std::make_move_iterator(rows.begin()),
                     std::make_move_iterator(rows.end()));
        endInsertRows();
    }
}

void HostListModel::adoptContent(const Hosts& hosts) {
    const auto tell = [this](std::size_t first, std::size_t end) {
        Q_EMIT dataChanged(index(static_cast<int>(first)), index(static_cast<int>(end) - 1));
    };
    std::size_t changedFrom = rows_.size();
    for (std::size_t position = 0; position < rows_.size(); ++position) {
        Row row = rowOf(*hosts[position]);
        if (rows_[position] != row) {
            rows_[position] = std::move(row);
            changedFrom = std::min(changedFrom, position);
        } else if (changedFrom < position) {
            tell(changedFrom, position);
            changedFrom = rows_.size();
        }
    }
    if (changedFrom < rows_.size()) {
        tell(changedFrom, rows_.size());
    }
}

}  // namespace velmora
