#pragma once

namespace velmora {

/// Whether the program shows among the running applications (Dock, application switcher). Main thread.
class ActivationPolicy {
public:
    ActivationPolicy() = default;
    ActivationPolicy(const ActivationPolicy&) = delete;
    ActivationPolicy& operator=(const ActivationPolicy&) = delete;
    virtual ~ActivationPolicy() = default;

    /// An application like any other: while one of its windows is open.
    virtual void setRegular() = 0;
    /// A status icon only.
    virtual void setAccessory() = 0;
    /// Brings the program before all others.
    virtual void activate() = 0;
};

}  // namespace velmora
