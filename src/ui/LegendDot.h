#pragma once

#include <QColor>
#include <QWidget>

namespace velmora {

/// The colours that tell on which machine a port of a forwarding rule is.
namespace legend {

inline const QColor bindGreen = QColor::fromRgbF(0.25F, 0.72F, 0.30F);
inline const QColor remoteSide = QColor::fromRgbF(0.92F, 0.72F, 0.22F);
inline const QColor targetBlue = QColor::fromRgbF(0.28F, 0.55F, 0.88F);

}  // namespace legend

/// A colour and what it stands for.
class LegendDot final : public QWidget {
    Q_OBJECT

public:
    LegendDot(const QColor& color, const QString& label, QWidget* parent = nullptr);
};

}  // namespace velmora
