#include "ui/LegendDot.h"

#include "ui/CaptionLabel.h"
#include "ui/ColorDot.h"
#include "ui/Metrics.h"

#include <QHBoxLayout>

namespace velmora {

LegendDot::LegendDot(const QColor& color, const QString& label, QWidget* parent) : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(metrics::caption);
    auto* words = new CaptionLabel(label);
    words->setWordWrap(false);
    row->addWidget(new ColorDot(color), 0, Qt::AlignVCenter);
    row->addWidget(words);
}

}  // namespace velmora
