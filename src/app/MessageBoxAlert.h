#pragma once

#include "platform/ActivationPolicy.h"
#include "update/UpdateAlert.h"

#include <QMessageBox>

#include <memory>

namespace velmora {

/// A message box in front of everything; the program goes on behind it. Main thread.
class MessageBoxAlert final : public UpdateAlert {
public:
    explicit MessageBoxAlert(ActivationPolicy& policy) : policy_(policy) {}

    void show(const std::string& message, const std::string& information, std::function<void()> dismissed) override;

private:
    ActivationPolicy& policy_;
    std::unique_ptr<QMessageBox> box_;
};

}  // namespace velmora
