#include "ui/GeneralSection.h"

#include "ui/WindowServices.h"

#include <QCheckBox>

namespace velmora {

GeneralSection::GeneralSection(WindowServices& services) : SettingsSection(tr("General")) {
    auto* launchAtLogin = new QCheckBox(tr("Launch at Login"));
    launchAtLogin->setObjectName(QStringLiteral("launchAtLogin"));
    launchAtLogin->setChecked(services.launchAtLogin.isEnabled());
    connect(launchAtLogin, &QCheckBox::toggled, this,
            [&services](bool enabled) { services.launchAtLogin.set(enabled); });
    addRow({}, launchAtLogin);
}

}  // namespace velmora
