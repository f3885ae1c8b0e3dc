#include "ui/ForwardingRuleRow.h"

#include "manager/TunnelManager.h"
#include "ui/IntegerField.h"
#include "ui/LegendDot.h"
#include "ui/Metrics.h"
#include "ui/SymbolLabel.h"
#include "ui/TextField.h"

#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFocusEvent>
#include <QHBoxLayout>
#include <QPainter>

#include <utility>

namespace velmora {

namespace {

constexpr int padding = 4;
constexpr int narrowestAddress = 88;

QString nameOf(ForwardingType type) {
    switch (type) {
        case ForwardingType::local:
            return ForwardingRuleRow::tr("Local");
        case ForwardingType::remote:
            return ForwardingRuleRow::tr("Remote");
        case ForwardingType::dynamic:
            break;
    }
    return ForwardingRuleRow::tr("Dynamic");
}

/// Whether the focus came by the user, and not with a window or from a menu.
bool isOfTheUser(Qt::FocusReason reason) {
    return reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason;
}

}  // namespace

ForwardingRuleRow::ForwardingRuleRow(TunnelManager& manager, const ForwardingRule& rule, EditRule edit, QWidget* parent)
    : QWidget(parent),
      manager_(manager),
      edit_(std::move(edit)),
      enabled_(new QCheckBox(this)),
      type_(new QComboBox(this)),
      bindAddress_(new TextField(this)),
      bindPort_(new IntegerField(IntegerField::rulePort, this)),
      arrow_(new SymbolLabel(QStringLiteral("arrow-right"), this)),
      targetAddress_(new TextField(this)),
      targetPort_(new IntegerField(IntegerField::rulePort, this)) {
    for (const ForwardingType type : allForwardingTypes) {
        type_->addItem(nameOf(type));
    }
    targetAddress_->setPlaceholderText(tr("hostname"));
    addControls();
    nameControls();
    connectControls();
    showRule(rule);
}

void ForwardingRuleRow::addControls() {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(padding, padding, padding, padding);
    row->setSpacing(metrics::related);
    row->addWidget(enabled_);
    row->addWidget(type_);
    row->addWidget(bindAddress_, 2);
    row->addWidget(bindPort_);
    row->addWidget(arrow_);
    row->addWidget(targetAddress_, 3);
    row->addWidget(targetPort_);
    type_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    type_->setFocusPolicy(Qt::StrongFocus);
    for (TextField* address : {bindAddress_, targetAddress_}) {
        address->setMinimumWidth(narrowestAddress);
        address->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }
    for (QWidget* target : QWidgetList{arrow_, targetAddress_, targetPort_}) {
        QSizePolicy keepsItsPlace = target->sizePolicy();
        keepsItsPlace.setRetainSizeWhenHidden(true);
        target->setSizePolicy(keepsItsPlace);
    }
    for (QWidget* control : controls()) {
        control->installEventFilter(this);
    }
}

void ForwardingRuleRow::nameControls() {
    const std::array<std::pair<QWidget*, std::pair<QString, QString>>, 6> names{{
        {enabled_, {QStringLiteral("enabled"), tr("Rule is on")}},
        {type_, {QStringLiteral("type"), tr("Type of forwarding")}},
        {bindAddress_, {QStringLiteral("bindAddress"), tr("Bind address")}},
        {bindPort_, {QStringLiteral("bindPort"), tr("Bind port")}},
        {targetAddress_, {QStringLiteral("targetAddress"), tr("Target address")}},
        {targetPort_, {QStringLiteral("targetPort"), tr("Target port")}},
    }};
    for (const auto& [control, name] : names) {
        control->setObjectName(name.first);
        control->setAccessibleName(name.second);
        control->setToolTip(name.second);
    }
}

void ForwardingRuleRow::connectControls() {
    connect(enabled_, &QCheckBox::clicked, this,
            [this](bool on) { edit_([on](ForwardingRule& rule) { rule.enabled = on; }); });
    connect(type_, &QComboBox::activated, this,
            [this](int index) { changeType(allForwardingTypes.at(static_cast<std::size_t>(index))); });
    connect(bindAddress_, &QLineEdit::textEdited, this, [this](const QString& text) {
        edit_([&text](ForwardingRule& rule) { rule.bindAddress = text.toStdString(); });
    });
    connect(bindPort_, &IntegerField::valueEdited, this,
            [this](qint64 port) { edit_([port](ForwardingRule& rule) { rule.bindPort = port; }); });
    connect(targetAddress_, &QLineEdit::textEdited, this, [this](const QString& text) {
        edit_([&text](ForwardingRule& rule) { rule.targetAddress = text.toStdString(); });
    });
    connect(targetPort_, &IntegerField::valueEdited, this,
            [this](qint64 port) { edit_([port](ForwardingRule& rule) { rule.targetPort = port; }); });
}

void ForwardingRuleRow::changeType(ForwardingType type) {
    edit_([this, type](ForwardingRule& rule) {
        const bool becomesDynamic = type == ForwardingType::dynamic && rule.type != type;
        rule.type = type;
        if (becomesDynamic && rule.bindPort == 0) {
            rule.bindAddress = "localhost";
            rule.bindPort = manager_.suggestedDynamicPort();
        }
    });
}

void ForwardingRuleRow::showRule(const ForwardingRule& rule) {
    enabled_->setChecked(rule.enabled);
    type_->setCurrentIndex(static_cast<int>(rule.type));
    bindAddress_->showValue(QString::fromStdString(rule.bindAddress));
    bindPort_->showValue(rule.bindPort);
    targetAddress_->showValue(QString::fromStdString(rule.targetAddress));
    targetPort_->showValue(rule.targetPort);
    showType(rule.type);
}

void ForwardingRuleRow::showType(ForwardingType type) {
    const QColor bindSide = type == ForwardingType::remote ? legend::remoteSide : legend::bindGreen;
    bindAddress_->setUnderline(bindSide);
    bindPort_->setUnderline(bindSide);
    targetAddress_->setUnderline(legend::targetBlue);
    targetPort_->setUnderline(legend::targetBlue);
    for (QWidget* target : QWidgetList{arrow_, targetAddress_, targetPort_}) {
        target->setVisible(type != ForwardingType::dynamic);
    }
}

void ForwardingRuleRow::setSelected(bool selected) {
    if (selected != isSelected_) {
        isSelected_ = selected;
        update();
    }
}

QWidgetList ForwardingRuleRow::controls() const {
    return {enabled_, type_, bindAddress_, bindPort_, targetAddress_, targetPort_};
}

int ForwardingRuleRow::indent() const {
    return padding + enabled_->sizeHint().width() + metrics::related;
}

bool ForwardingRuleRow::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
        case QEvent::MouseButtonPress:
            Q_EMIT entered();
            break;
        case QEvent::FocusIn:
            if (isOfTheUser(static_cast<QFocusEvent*>(event)->reason())) {
                Q_EMIT entered();
            }
            break;
        case QEvent::Wheel:
            if (watched == type_) {
                event->ignore();  // it scrolls the form, and must not change the rule on the way
                return true;
            }
            break;
        default:
            break;
    }
    return QWidget::eventFilter(watched, event);
}

void ForwardingRuleRow::mousePressEvent(QMouseEvent* /*event*/) {
    Q_EMIT entered();
}

void ForwardingRuleRow::paintEvent(QPaintEvent* /*event*/) {
    if (!isSelected_) {
        return;
    }
    constexpr qreal radius = 4;
    constexpr float opacity = 0.12F;
    QColor accent = palette().color(QPalette::Active, QPalette::Highlight);
    accent.setAlphaF(opacity);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawRoundedRect(rect(), radius, radius);
}

}  // namespace velmora
