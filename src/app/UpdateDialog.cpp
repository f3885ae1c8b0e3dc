#include "app/UpdateDialog.h"

#include <utility>

namespace velmora {

void UpdateDialog::show(const std::string& message, const std::string& information, std::function<void()> dismissed) {
    dialogs_.alert({.message = QString::fromStdString(message), .informativeText = QString::fromStdString(information)},
                   std::move(dismissed));
}

}  // namespace velmora
