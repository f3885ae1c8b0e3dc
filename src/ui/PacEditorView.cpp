#include "ui/PacEditorView.h"

#include "ui/WindowServices.h"

namespace velmora {

PacEditorView::PacEditorView(WindowServices& services)
    : ManagedWindow(windows::pacEditor, tr("PAC Editor"), services.defaults), services_(services) {
    restorePlace({760, 560});
}

}  // namespace velmora
