#pragma once

#include "ui/ManagedWindow.h"

namespace velmora {

struct WindowServices;

/// The served proxy script, to be read and edited by hand. Main thread.
class PacEditorView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit PacEditorView(WindowServices& services);

private:
    WindowServices& services_;
};

}  // namespace velmora
