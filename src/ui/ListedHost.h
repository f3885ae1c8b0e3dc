#pragma once

#include "base/Observable.h"
#include "manager/TunnelManager.h"
#include "ui/HostBinding.h"

namespace velmora {

/// A host of the manager's list, found by its id.
class ListedHost final : public HostBinding {
    Q_OBJECT

public:
    ListedHost(TunnelManager& manager, const Uuid& id);

    [[nodiscard]] const SSHHost& host() const override { return host_; }
    [[nodiscard]] bool exists() const override { return exists_; }
    void edit(const Edit& change) override;

private:
    void follow();

    TunnelManager& manager_;
    SSHHost host_;
    bool exists_ = false;
    Subscription subscription_;
};

}  // namespace velmora
