#include "ui/HostFooter.h"

#include "ui/ColorDot.h"
#include "ui/ElidedLabel.h"
#include "ui/HostBinding.h"
#include "ui/IconButton.h"
#include "ui/MenuLabel.h"
#include "ui/Metrics.h"
#include "ui/ProminentButton.h"
#include "ui/StatusLook.h"
#include "ui/Tints.h"
#include "ui/WindowServices.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

#include <chrono>
#include <filesystem>

namespace velmora {

namespace {

constexpr std::chrono::seconds uptimeInterval{30};

}  // namespace

HostFooter::HostFooter(WindowServices& services, HostBinding& host, QWidget* parent)
    : QWidget(parent),
      services_(services),
      host_(host),
      dot_(new ColorDot(statusColor(ConnectionStatus::State::disconnected))),
      status_(new ElidedLabel(Qt::ElideRight, ElidedLabel::Look::caption)),
      save_(new QPushButton(tr("Save"))),
      connect_(new ProminentButton({tr("Connect"), tr("Disconnect")})) {
    addButtons();
    refreshSoon_.setSingleShot(true);
    connect(&refreshSoon_, &QTimer::timeout, this, &HostFooter::refresh);
    uptimeTimer_.setObjectName(QStringLiteral("uptimeTimer"));
    uptimeTimer_.setInterval(uptimeInterval);
    uptimeTimer_.setTimerType(Qt::VeryCoarseTimer);
    connect(&uptimeTimer_, &QTimer::timeout, this, &HostFooter::refresh);
    const auto soon = [this] { refreshSoon_.start(0); };
    subscriptions_.push_back(services_.manager.statuses().observe(soon));
    subscriptions_.push_back(services_.manager.connectedAt().observe(soon));
    refresh();
}

void HostFooter::addButtons() {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(metrics::margin, metrics::related, metrics::margin, metrics::related);
    row->setSpacing(metrics::related);
    status_->setObjectName(QStringLiteral("status"));
    status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* log = new IconButton(QStringLiteral("doc-text"), tr("Open log in Console"));
    connect(log, &IconButton::clicked, this, &HostFooter::openLog);
    auto* copy = new IconButton(QStringLiteral("clipboard"), tr("Copy SSH command to clipboard"));
    connect(copy, &IconButton::clicked, this, &HostFooter::copyCommand);
    for (IconButton* plain : {log, copy}) {
        plain->setAutoRaise(true);
    }
    save_->setObjectName(QStringLiteral("save"));
    save_->setAccessibleName(save_->text());
    save_->setAutoDefault(false);
    save_->setEnabled(false);
    save_->setToolTip(QKeySequence(QKeySequence::Save).toString(QKeySequence::NativeText));
    connect(save_, &QPushButton::clicked, this, &HostFooter::saveRequested);
    connect_->setObjectName(QStringLiteral("connect"));
    connect_->setAutoDefault(false);
    connect(connect_, &QPushButton::clicked, this, [this] { services_.manager.toggle(SSHHost(host_.host())); });

    row->addWidget(dot_);
    row->addWidget(status_, 1);
    row->addWidget(log);
    row->addWidget(copy);
    row->addWidget(save_);
    row->addWidget(connect_);
}

void HostFooter::setSaveEnabled(bool enabled) {
    save_->setEnabled(enabled);
}

void HostFooter::refresh() {
    const auto& id = host_.host().id;
    const ConnectionStatus status = services_.manager.status(id);
    const auto uptime = services_.manager.uptimeString(id);
    dot_->setColor(
        statusColor(uptime ? ConnectionStatus::State::connected : status.state, palette().color(QPalette::Window)));
    status_->setFullText(statusText(status, uptime));
    if (status.isActive()) {
        connect_->setLook(tr("Disconnect"), ProminentButton::Tint::red);
    } else {
        connect_->setLook(tr("Connect"), ProminentButton::Tint::accent);
    }
    if (!uptime || !isVisible()) {
        uptimeTimer_.stop();
    } else if (!uptimeTimer_.isActive()) {
        uptimeTimer_.start();
    }
}

void HostFooter::openLog() {
    const SSHHost& host = host_.host();
    const auto file = services_.manager.logURL(host);
    std::error_code error;
    if (std::filesystem::exists(file, error)) {
        services_.workspace.open(file);
        return;
    }
    services_.dialogs.alert(
        {.message = tr("There is no log of \"%1\" yet; it begins when the host is connected for the first time.")
                        .arg(displayName(host.name)),
         .informativeText = {}});
}

void HostFooter::copyCommand() {
    QGuiApplication::clipboard()->setText(QString::fromStdString(services_.manager.sshCommand(host_.host())));
}

void HostFooter::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    refresh();
}

void HostFooter::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    uptimeTimer_.stop();
}

void HostFooter::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        refreshSoon_.start(0);
    }
    QWidget::changeEvent(event);
}

void HostFooter::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(0, 0, width(), 1,
                     tints::mix(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.2F));
}

}  // namespace velmora
