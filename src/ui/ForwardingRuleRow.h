#pragma once

#include "model/ForwardingRule.h"

#include <QWidget>

#include <functional>

class QCheckBox;
class QComboBox;

namespace velmora {

class IntegerField;
class TextField;
class TunnelManager;

/// One forwarding rule in a row: whether it is on, its type, where it listens and where it leads. Its columns stand
/// where those of other rows stand. Main thread.
class ForwardingRuleRow final : public QWidget {
    Q_OBJECT

public:
    using EditRule = std::function<void(const std::function<void(ForwardingRule&)>&)>;

    /// `edit` changes the rule where it is kept.
    ForwardingRuleRow(TunnelManager& manager, const ForwardingRule& rule, EditRule edit, QWidget* parent = nullptr);

    /// The rule as it is now.
    void showRule(const ForwardingRule& rule);

    [[nodiscard]] bool isSelected() const { return isSelected_; }
    void setSelected(bool selected);

    /// In reading order.
    [[nodiscard]] QWidgetList controls() const;
    [[nodiscard]] QComboBox* typePicker() const { return type_; }
    /// Where what belongs to the rule is to begin below the row.
    [[nodiscard]] int indent() const;

Q_SIGNALS:
    /// The user clicked somewhere on the row or came to one of its controls.
    void entered();

private:
    void addControls();
    void nameControls();
    void connectControls();
    void changeType(ForwardingType type);
    void showType(ForwardingType type);

    bool eventFilter(QObject* watched, QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    TunnelManager& manager_;
    EditRule edit_;
    bool isSelected_ = false;
    QCheckBox* enabled_;
    QComboBox* type_;
    TextField* bindAddress_;
    IntegerField* bindPort_;
    QWidget* arrow_;
    TextField* targetAddress_;
    IntegerField* targetPort_;
};

}  // namespace velmora
