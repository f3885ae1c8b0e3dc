#include "ui/AboutView.h"

#include "ui/WindowServices.h"

namespace velmora {

AboutView::AboutView(WindowServices& services)
    : ManagedWindow(windows::about, tr("About Velmora"), services.defaults), services_(services) {
    restorePlace({480, 560});
}

}  // namespace velmora
