#include "ui/StatusLook.h"

#include "ui/MenuLabel.h"
#include "ui/Tints.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPixmap>

#include <cstddef>
#include <utility>

namespace velmora {

namespace {

using State = ConnectionStatus::State;

struct StatusWords {
    Q_DECLARE_TR_FUNCTIONS(velmora::StatusLook)
};

constexpr QRgb green = 0xff34a853;
constexpr QRgb amber = 0xfff2b01e;
constexpr QRgb grey = 0xff8c8c8c;  // white level 0.55
constexpr QRgb red = 0xffe5484d;
constexpr QRgb white = 0xffffffff;

QRgb menuColor(State state) {
    return state == State::disconnected ? white : statusColor(state).rgb();
}

QPixmap dot(State state, int scale) {
    constexpr int side = 16;
    constexpr qreal radius = 4;
    QPixmap pixmap(side * scale, side * scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.scale(scale, scale);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(QColor(menuColor(state)));
    painter.setPen(state == State::disconnected ? QPen(QColor(grey), 1) : QPen(Qt::NoPen));
    painter.drawEllipse(QPointF(side / 2.0, side / 2.0), radius, radius);
    painter.end();
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

}  // namespace

QString statusText(const ConnectionStatus& status, const std::optional<std::string>& uptime) {
    if (uptime) {
        return StatusWords::tr("Connected · %1").arg(QString::fromStdString(*uptime));
    }
    switch (status.state) {
        case State::disconnected:
            return StatusWords::tr("Not Connected");
        case State::connecting:
            return StatusWords::tr("Connecting...");
        case State::connected:
            return StatusWords::tr("Connected");
        case State::error:
            break;
    }
    return StatusWords::tr("Error: %1").arg(oneLine(status.message));
}

QColor statusColor(State state) {
    switch (state) {
        case State::connected:
            return QColor(green);
        case State::connecting:
            return QColor(amber);
        case State::error:
            return QColor(red);
        case State::disconnected:
            break;
    }
    return QColor(grey);
}

QColor statusColor(State state, const QColor& background) {
    constexpr double leastContrast = 3;
    constexpr float step = 0.02F;
    QColor color = statusColor(state);
    const bool lighter = tints::contrast(background, Qt::white) > tints::contrast(background, Qt::black);
    float lightness = color.lightnessF();
    while (tints::contrast(color, background) < leastContrast && lightness > 0 && lightness < 1) {
        lightness = std::clamp(lightness + (lighter ? step : -step), 0.0F, 1.0F);
        color = QColor::fromHslF(color.hslHueF(), color.hslSaturationF(), lightness).toRgb();
    }
    return color;
}

const QIcon& StatusDots::icon(State state) {
    QIcon& both = icons_[static_cast<std::size_t>(state)];
    if (both.isNull()) {
        both.addPixmap(dot(state, 1));
        both.addPixmap(dot(state, 2));
    }
    return both;
}

}  // namespace velmora
