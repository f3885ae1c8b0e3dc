#pragma once

#include <QWidget>

namespace velmora {

class HostBinding;

/// What ssh is told beside where to go. Main thread.
class AdvancedTabView final : public QWidget {
    Q_OBJECT

public:
    /// The host outlives the tab.
    explicit AdvancedTabView(HostBinding& host, QWidget* parent = nullptr);
};

}  // namespace velmora
