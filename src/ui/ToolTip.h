#pragma once

#include <QString>

namespace velmora {

/// A tooltip that shows any text as it stands, its markup, too, and wraps it. Without text there is none.
[[nodiscard]] QString toolTipOf(const QString& text);

}  // namespace velmora
