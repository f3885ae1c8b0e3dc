#pragma once

#include "base/Observable.h"

#include <QTimer>
#include <QWidget>

#include <vector>

class QPushButton;

namespace velmora {

class ColorDot;
class ElidedLabel;
class HostBinding;
class ProminentButton;
struct WindowServices;

/// What stands below the form of a host: how the host is doing, and what can be done with it. Main thread.
class HostFooter final : public QWidget {
    Q_OBJECT

public:
    /// Services and host outlive the footer.
    HostFooter(WindowServices& services, HostBinding& host, QWidget* parent = nullptr);

    void setSaveEnabled(bool enabled);

Q_SIGNALS:
    void saveRequested();

private:
    void addButtons();
    void refresh();
    void openLog();
    void copyCommand();
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

    WindowServices& services_;
    HostBinding& host_;
    ColorDot* dot_;
    ElidedLabel* status_;
    QPushButton* save_;
    ProminentButton* connect_;
    QTimer refreshSoon_;        ///< one run for however many changes a turn of the event loop brings
    QTimer uptimeTimer_{this};  ///< runs while somebody sees the host connected
    std::vector<Subscription> subscriptions_;
};

}  // namespace velmora
