#include "ui/SegmentedControl.h"

#include "ui/Tints.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>

#include <algorithm>

namespace velmora {

namespace {

constexpr int inset = 2;
constexpr qreal radius = 6;
constexpr QSize padding(28, 10);

QFont currentFont(QFont font) {
    font.setWeight(QFont::DemiBold);
    return font;
}

/// A radio button in all but its looks: exclusive, and known as one to assistive programs.
class Segment final : public QRadioButton {
public:
    using QRadioButton::QRadioButton;

    [[nodiscard]] QSize sizeHint() const override {
        const QFontMetrics widest(currentFont(font()));
        return widest.size(Qt::TextShowMnemonic, text()) + padding;
    }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    [[nodiscard]] bool hitButton(const QPoint& position) const override { return rect().contains(position); }

    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF shape = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        if (isChecked()) {
            paintPill(painter, shape);
            painter.setFont(currentFont(font()));
        }
        if (hasFocus()) {
            painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(shape.adjusted(0.5, 0.5, -0.5, -0.5), radius - 1, radius - 1);
        }
        QColor ink = palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText);
        if (underMouse() && isEnabled() && !isChecked()) {
            ink = palette().color(QPalette::Highlight);
        }
        painter.setPen(
            tints::contrast(ink, palette().color(QPalette::Window)) < 3 ? palette().color(QPalette::WindowText) : ink);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextShowMnemonic, text());
    }

private:
    void paintPill(QPainter& painter, const QRectF& shape) const {
        const QColor window = palette().color(QPalette::Window);
        const QColor ink = palette().color(QPalette::WindowText);
        const bool dark = tints::isDark(palette());
        painter.setPen(QPen(tints::mix(window, ink, dark ? 0.45F : 0.35F), 1));
        painter.setBrush(dark ? tints::mix(window, ink, 0.25F) : palette().color(QPalette::Base));
        painter.drawRoundedRect(shape, radius - 1, radius - 1);
    }
};

}  // namespace

SegmentedControl::SegmentedControl(const QString& accessibleName, const QStringList& choices, QWidget* parent)
    : QWidget(parent) {
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(inset, inset, inset, inset);
    row->setSpacing(0);
    for (const QString& choice : choices) {
        auto* segment = new Segment(choice, this);
        segment->setAccessibleName(choice);
        segment->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
        segment->setAttribute(Qt::WA_Hover);
        // Qt itself sees to this no sooner than one of them has had the focus.
        segment->setFocusPolicy(Qt::ClickFocus);
        connect(segment, &QRadioButton::toggled, segment,
                [segment](bool checked) { segment->setFocusPolicy(checked ? Qt::StrongFocus : Qt::ClickFocus); });
        row->addWidget(segment, 1);
        const int index = static_cast<int>(segments_.size());
        connect(segment, &QRadioButton::clicked, this, [this, index] { Q_EMIT chosen(index); });
        segments_.push_back(segment);
    }
    segments_.front()->setChecked(true);
}

int SegmentedControl::currentIndex() const {
    const auto checked =
        std::find_if(segments_.begin(), segments_.end(), [](const auto* segment) { return segment->isChecked(); });
    return static_cast<int>(checked - segments_.begin());
}

void SegmentedControl::setCurrentIndex(int index) {
    segment(index)->setChecked(true);
}

void SegmentedControl::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tints::mix(palette().color(QPalette::Window), palette().color(QPalette::WindowText), 0.1F));
    painter.drawRoundedRect(rect(), radius, radius);
}

}  // namespace velmora
