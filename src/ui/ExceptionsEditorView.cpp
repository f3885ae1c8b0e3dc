#include "ui/ExceptionsEditorView.h"

#include "ui/WindowServices.h"

namespace velmora {

ExceptionsEditorView::ExceptionsEditorView(WindowServices& services)
    : ManagedWindow(windows::exceptionsEditor, tr("Proxy Exceptions"), services.defaults), services_(services) {
    restorePlace({560, 560});
}

}  // namespace velmora
