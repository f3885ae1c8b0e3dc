#include "ui/SettingsView.h"

#include "ui/WindowServices.h"

namespace velmora {

SettingsView::SettingsView(WindowServices& services)
    : ManagedWindow(windows::settings, tr("Settings"), services.defaults), services_(services) {
    restorePlace({640, 720});
}

}  // namespace velmora
