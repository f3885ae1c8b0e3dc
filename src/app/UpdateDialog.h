#pragma once

#include "ui/Dialogs.h"
#include "update/UpdateAlert.h"

#include <functional>
#include <string>

namespace velmora {

/// The updater's alert among the other dialogs. Main thread.
class UpdateDialog final : public UpdateAlert {
public:
    explicit UpdateDialog(Dialogs& dialogs) : dialogs_(dialogs) {}

    void show(const std::string& message, const std::string& information, std::function<void()> dismissed) override;

private:
    Dialogs& dialogs_;
};

}  // namespace velmora
