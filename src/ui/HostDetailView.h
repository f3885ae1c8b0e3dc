#pragma once

#include "base/Observable.h"
#include "base/Uuid.h"
#include "model/SSHHost.h"
#include "ui/ListedHost.h"

#include <QWidget>

#include <optional>
#include <string>

class QShortcut;

namespace velmora {

class HostFooter;
class HostTabsView;
struct WindowServices;

/// The editor of one host. What is typed is in the manager's list at once; Save writes the list, and the password into
/// the keychain. Main thread.
class HostDetailView final : public QWidget {
    Q_OBJECT

public:
    /// The host is one of the manager's. When it leaves the list the editor does nothing more.
    HostDetailView(WindowServices& services, const Uuid& host, QWidget* parent = nullptr);

    [[nodiscard]] const Uuid& hostId() const { return host_.host().id; }

    /// Whether the host or its password is not what was last loaded or saved.
    [[nodiscard]] bool isDirty() const;

private:
    bool event(QEvent* event) override;
    [[nodiscard]] QWidget* header();
    void loadPassword();
    void loadPasswordAgain();
    void saveAll();
    void showState();

    WindowServices& services_;
    ListedHost host_;
    Observable<std::string> password_;
    std::optional<SSHHost> savedHost_;
    std::string savedPassword_;
    bool isPasswordKnown_ = false;
    HostTabsView* tabs_ = nullptr;
    HostFooter* footer_ = nullptr;
    QShortcut* saveKey_;
    Subscription passwordChanges_;
};

}  // namespace velmora
