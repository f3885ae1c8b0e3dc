#pragma once

#include "base/Observable.h"
#include "base/Uuid.h"

#include <QWidget>

#include <optional>
#include <vector>

class QLabel;
class QVBoxLayout;

namespace velmora {

class ForwardingRuleRow;
class HostBinding;
class LinesField;
class TunnelManager;
struct ForwardingRule;

/// The forwarding rules of a host, a row each, and below each Dynamic one the patterns of the proxy script. Rows come
/// and go in place, so that focus, cursor and scrolling stay. Main thread.
class ForwardingTable final : public QWidget {
    Q_OBJECT

public:
    using SelectedId = Observable<std::optional<Uuid>>;

    /// Host and selection outlive the table.
    ForwardingTable(TunnelManager& manager, HostBinding& host, SelectedId& selectedId, QWidget* parent = nullptr);

    /// The row of the first rule with this id, or null.
    [[nodiscard]] ForwardingRuleRow* row(const Uuid& id) const;

    /// Every control, in reading order.
    [[nodiscard]] QWidgetList controls() const;

Q_SIGNALS:
    /// Controls came or went: whoever knows what stands around the table puts them in the tab order.
    void controlsChanged();

private:
    struct Entry {
        Uuid id;
        QWidget* box = nullptr;
        ForwardingRuleRow* row = nullptr;
        LinesField* patterns = nullptr;  ///< null until the rule is Dynamic
    };

    void refresh();
    [[nodiscard]] bool replaceEntries(const std::vector<ForwardingRule>& rules);
    void placeAt(int position, QWidget& box);
    [[nodiscard]] Entry makeEntry(const ForwardingRule& rule);
    [[nodiscard]] bool showPatterns(Entry& entry, const ForwardingRule& rule);
    void addPatterns(Entry& entry);
    void editRule(const QWidget* box, const std::function<void(ForwardingRule&)>& change);
    void showSelection();
    bool eventFilter(QObject* watched, QEvent* event) override;

    TunnelManager& manager_;
    HostBinding& host_;
    SelectedId& selectedId_;
    QLabel* noRules_;
    QVBoxLayout* column_;
    std::vector<Entry> entries_;
    Subscription selectionChanges_;
};

}  // namespace velmora
