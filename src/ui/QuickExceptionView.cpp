#include "ui/QuickExceptionView.h"

#include "ui/WindowServices.h"

namespace velmora {

QuickExceptionView::QuickExceptionView(WindowServices& services)
    : ManagedWindow(windows::quickException, tr("Add Proxy Exception"), services.defaults), services_(services) {
    restorePlace({420, 160});
}

}  // namespace velmora
