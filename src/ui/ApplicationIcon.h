#pragma once

#include <QIcon>

namespace velmora {

/// The program's own icon, crisp at every size. Nothing is drawn before somebody shows it. Main thread.
[[nodiscard]] QIcon applicationIcon();

}  // namespace velmora
