#pragma once

#include "ui/ManagedWindow.h"

namespace velmora {

struct WindowServices;

/// A small panel that adds one host to those that bypass every proxy. Main thread.
class QuickExceptionView final : public ManagedWindow {
    Q_OBJECT

public:
    explicit QuickExceptionView(WindowServices& services);

private:
    WindowServices& services_;
};

}  // namespace velmora
