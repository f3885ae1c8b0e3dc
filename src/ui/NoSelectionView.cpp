#include "ui/NoSelectionView.h"

#include "ui/CaptionLabel.h"
#include "ui/Metrics.h"
#include "ui/SymbolIcon.h"

#include <QEvent>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

namespace {

constexpr int symbolSide = 48;
constexpr float secondary = 0.68F;
constexpr float tertiary = 0.4F;

QColor faded(QColor color, float strength) {
    color.setAlphaF(strength);
    return color;
}

}  // namespace

NoSelectionView::NoSelectionView(QWidget* parent)
    : QWidget(parent),
      symbol_(new QLabel(this)),
      text_(new QLabel(tr("No tunnel selected"), this)),
      firstStep_(
          new CaptionLabel(tr("Add your first tunnel: name the server to reach and the ports to forward."), this)) {
    auto* add = new QPushButton(tr("Add Tunnel"), this);
    add->setObjectName(QStringLiteral("addTunnel"));
    connect(add, &QPushButton::clicked, this, &NoSelectionView::addTunnel);
    text_->setObjectName(QStringLiteral("placeholder"));
    firstStep_->setObjectName(QStringLiteral("firstStep"));
    firstStep_->setAlignment(Qt::AlignCenter);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(metrics::margin, metrics::margin, metrics::margin, metrics::margin);
    column->setSpacing(metrics::group);
    column->addStretch();
    column->addWidget(symbol_, 0, Qt::AlignHCenter);
    column->addWidget(text_, 0, Qt::AlignHCenter);
    column->addWidget(add, 0, Qt::AlignHCenter);
    column->addWidget(firstStep_);
    column->addStretch();
    adoptColors();
}

void NoSelectionView::setShowsFirstStep(bool shows) {
    firstStep_->setVisible(shows);
}

void NoSelectionView::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        adoptColors();
    }
    QWidget::changeEvent(event);
}

void NoSelectionView::adoptColors() {
    const QColor words = palette().color(QPalette::WindowText);
    symbol_->setPixmap(symbolIcon(QStringLiteral("network"), faded(words, tertiary))
                           .pixmap(QSize(symbolSide, symbolSide), devicePixelRatioF()));
    QPalette secondaryWords = palette();
    secondaryWords.setColor(QPalette::WindowText, faded(words, secondary));
    text_->setPalette(secondaryWords);
    text_->setFont(metrics::scaled(font(), metrics::titleScale));
}

}  // namespace velmora
