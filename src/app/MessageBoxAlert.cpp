#include "app/MessageBoxAlert.h"

#include <utility>

namespace velmora {

void MessageBoxAlert::show(const std::string& message, const std::string& information,
                           std::function<void()> dismissed) {
    box_ = std::make_unique<QMessageBox>(QMessageBox::Warning, QStringLiteral("Velmora"),
                                         QString::fromStdString(message), QMessageBox::Ok);
    box_->setTextFormat(Qt::PlainText);  // what a verifier or a server says is no markup
    box_->setInformativeText(QString::fromStdString(information));
    box_->setWindowModality(Qt::ApplicationModal);
    QObject::connect(box_.get(), &QMessageBox::finished, box_.get(),
                     [dismissed = std::move(dismissed)] { dismissed(); });
    policy_.activate();
    box_->show();
    box_->raise();
    box_->activateWindow();
}

}  // namespace velmora
