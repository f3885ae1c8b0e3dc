#pragma once

#include "platform/ActivationPolicy.h"

namespace velmora {

/// The Dock icon.
class DockPolicy final : public ActivationPolicy {
public:
    void setRegular() override;
    void setAccessory() override;
    void activate() override;
};

}  // namespace velmora
