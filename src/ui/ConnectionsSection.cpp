#include "ui/ConnectionsSection.h"

#include "ui/WindowServices.h"

#include <QCheckBox>
#include <QLineEdit>

namespace velmora {

ConnectionsSection::ConnectionsSection(WindowServices& services) : SettingsSection(tr("Connections")) {
    TunnelManager& manager = services.manager;

    auto* performanceMode = new QCheckBox(tr("Performance Mode"));
    performanceMode->setObjectName(QStringLiteral("performanceMode"));
    connect(performanceMode, &QCheckBox::toggled, this, [&manager](bool on) { manager.setPerformanceMode(on); });
    addRow({}, performanceMode,
           tr("Applies to all connections: fast cipher (AES-GCM), skip GSSAPI negotiation, QoS lowdelay. Reconnect "
              "active tunnels to take effect."));

    auto* jumpHost = new QLineEdit;
    jumpHost->setObjectName(QStringLiteral("globalProxyJump"));
    jumpHost->setPlaceholderText(tr("anna@bastion.example.com"));
    connect(jumpHost, &QLineEdit::textEdited, this,
            [&manager](const QString& text) { manager.setGlobalProxyJump(text.toStdString()); });

    auto* jumpEnabled = new QCheckBox(tr("Enabled"));
    jumpEnabled->setObjectName(QStringLiteral("globalProxyJumpEnabled"));
    jumpEnabled->setAccessibleName(tr("Global ProxyJump enabled"));
    connect(jumpEnabled, &QCheckBox::toggled, this, [&manager](bool on) { manager.setGlobalProxyJumpEnabled(on); });
    addRow(tr("Global ProxyJump"), jumpHost, growingFirst({jumpHost, jumpEnabled}),
           tr("Applied to all tunnels that don't have a per-host ProxyJump set. Toggling reconnects all active "
              "tunnels."));

    const auto follow = [this](auto& setting, auto* control) {
        const auto refresh = [&setting, control] { show(*control, setting.get()); };
        refresh();
        subscriptions_.push_back(setting.observe(refresh));
    };
    follow(manager.performanceMode(), performanceMode);
    follow(manager.globalProxyJump(), jumpHost);
    follow(manager.globalProxyJumpEnabled(), jumpEnabled);
}

}  // namespace velmora
