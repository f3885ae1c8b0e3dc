#include "ui/UpdatesSection.h"

#include "ui/ElidedLabel.h"
#include "ui/ErrorLabel.h"
#include "ui/MenuLabel.h"
#include "ui/Metrics.h"
#include "ui/SteadyButton.h"
#include "ui/WindowServices.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

namespace {

constexpr int wholeDownload = 1000;

/// Gone when there is nothing to say.
void showLine(QLabel& label, const std::optional<std::string>& text) {
    label.setText(QString::fromStdString(text.value_or(std::string())));
    label.setVisible(text.has_value());
}

}  // namespace

UpdatesSection::UpdatesSection(WindowServices& services)
    : SettingsSection(tr("Updates")),
      updater_(services.updater),
      autoUpdate_(new QCheckBox(tr("Check for updates automatically"))),
      feedUrl_(new QLineEdit),
      check_(new SteadyButton({tr("Check Now"), tr("Checking…")})),
      offer_(new QWidget),
      available_(new ElidedLabel),
      install_(new QPushButton(tr("Update && Relaunch"))),
      progress_(new QProgressBar),
      status_(new QLabel),
      error_(new ErrorLabel) {
    autoUpdate_->setObjectName(QStringLiteral("autoUpdate"));
    connect(autoUpdate_, &QCheckBox::toggled, this, [this](bool on) { updater_.setAutoUpdate(on); });
    addRow({}, autoUpdate_);
    addFeed(services);
    addCheck();
    follow();
}

void UpdatesSection::addFeed(WindowServices& services) {
    feedUrl_->setObjectName(QStringLiteral("feedUrl"));
    connect(feedUrl_, &QLineEdit::textEdited, this,
            [this](const QString& text) { updater_.setFeedURL(text.toStdString()); });
    addRow(
        tr("Feed URL"), feedUrl_,
        tr("Current version v%1. Downloads are only installed if their checksum matches the feed and the bundle is "
           "signed by team %2")
            .arg(QString::fromStdString(updater_.currentVersion()), QString::fromStdString(services.teamIdentifier)));
}

void UpdatesSection::addCheck() {
    check_->setObjectName(QStringLiteral("checkNow"));
    connect(check_, &QPushButton::clicked, this, [this] {
        isAsked_ = true;
        updater_.check(CheckTrigger::manual);
    });

    addOffer();
    progress_->setObjectName(QStringLiteral("progress"));
    progress_->setAccessibleName(tr("Download progress"));
    status_->setObjectName(QStringLiteral("status"));
    status_->setWordWrap(true);
    status_->setTextFormat(Qt::PlainText);
    status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    error_->setObjectName(QStringLiteral("errorMessage"));

    auto* rows = new QVBoxLayout;
    rows->setSpacing(metrics::related);
    rows->addLayout(sideBySide({check_}));
    rows->addWidget(offer_);
    rows->addWidget(progress_);
    rows->addWidget(status_);
    rows->addWidget(error_);
    addRow({}, nullptr, rows);
}

void UpdatesSection::addOffer() {
    available_->setObjectName(QStringLiteral("available"));
    install_->setObjectName(QStringLiteral("install"));
    connect(install_, &QPushButton::clicked, this, [this] {
        isAsked_ = true;
        updater_.install();
    });
    QLayout* row = growingFirst({available_, install_});
    row->setContentsMargins(0, 0, 0, 0);
    offer_->setLayout(row);
}

void UpdatesSection::follow() {
    const auto follow = [this](auto& value, void (UpdatesSection::*refresh)()) {
        (this->*refresh)();
        subscriptions_.push_back(value.observe([this, refresh] {
            (this->*refresh)();
            if (isAsked_) {
                Q_EMIT answered();
            }
        }));
    };
    follow(updater_.autoUpdate(), &UpdatesSection::showSettings);
    follow(updater_.feedURL(), &UpdatesSection::showSettings);
    follow(updater_.available(), &UpdatesSection::showOffer);
    follow(updater_.progress(), &UpdatesSection::showProgress);
    follow(updater_.status(), &UpdatesSection::showMessages);
    follow(updater_.errorMessage(), &UpdatesSection::showMessages);
    follow(updater_.isBusy(), &UpdatesSection::showBusy);
}

void UpdatesSection::showSettings() {
    show(*autoUpdate_, *updater_.autoUpdate());
    show(*feedUrl_, *updater_.feedURL());
}

/// A button that is switched off would hand the focus to its neighbour, and the next press of the space bar with it.
void UpdatesSection::showBusy() {
    const bool busy = *updater_.isBusy();
    if (busy && (check_->hasFocus() || install_->hasFocus())) {
        focusAfterwards_ = check_->hasFocus() ? check_ : install_;
        parentWidget()->setFocus();  // a group box would pass it on
    }
    check_->setText(busy ? tr("Checking…") : tr("Check Now"));
    check_->setEnabled(!busy);
    install_->setEnabled(!busy);
    if (!busy && focusAfterwards_ != nullptr && parentWidget()->hasFocus()) {
        focusAfterwards_->setFocus();
        focusAfterwards_ = nullptr;
    }
}

void UpdatesSection::showOffer() {
    const auto& manifest = updater_.available().get();
    if (manifest) {
        available_->setFullText(tr("v%1 available").arg(oneLine(manifest->version)));
    }
    offer_->setVisible(manifest.has_value());
}

void UpdatesSection::showProgress() {
    const auto& progress = updater_.progress().get();
    progress_->setVisible(progress.has_value());
    if (!progress) {
        return;
    }
    if (!progress->total || *progress->total == 0) {
        progress_->setRange(0, 0);  // goes to and fro
        return;
    }
    const double part = static_cast<double>(progress->received) / static_cast<double>(*progress->total);
    progress_->setRange(0, wholeDownload);
    progress_->setValue(static_cast<int>(qBound(0.0, part, 1.0) * wholeDownload));
}

void UpdatesSection::showMessages() {
    showLine(*status_, *updater_.status());
    showLine(*error_, *updater_.errorMessage());
}

}  // namespace velmora
