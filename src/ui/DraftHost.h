#pragma once

#include "ui/HostBinding.h"

namespace velmora {

/// A new host that is in no list yet, with the defaults of every new host.
class DraftHost final : public HostBinding {
    Q_OBJECT

public:
    [[nodiscard]] const SSHHost& host() const override { return host_; }
    [[nodiscard]] bool exists() const override { return true; }
    void edit(const Edit& change) override {
        change(host_);
        Q_EMIT changed();
    }

private:
    SSHHost host_;
};

}  // namespace velmora
