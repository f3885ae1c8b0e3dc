#pragma once

#include "ui/ManagedWindow.h"

namespace velmora {

struct WindowServices;

/// The list of hosts that bypass every proxy. Main thread.
class ExceptionsEditorView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit ExceptionsEditorView(WindowServices& services);

private:
    WindowServices& services_;
};

}  // namespace velmora
