#include "ui/SettingsSection.h"

#include "ui/CaptionLabel.h"
#include "ui/Metrics.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStyle>

#include <algorithm>

namespace velmora {

SettingsSection::SettingsSection(const QString& title) : QGroupBox(title), grid_(new QGridLayout(this)) {
    grid_->setContentsMargins(metrics::margin, metrics::margin, metrics::margin, metrics::margin);
    grid_->setHorizontalSpacing(metrics::group);
    grid_->setVerticalSpacing(0);  // captions stand closer to their control than to the next one
    grid_->setColumnStretch(1, 1);
}

int SettingsSection::labelWidth() const {
    int widest = 0;
    for (const QLabel* label : labels_) {
        widest = std::max(widest, label->sizeHint().width());
    }
    return widest;
}

void SettingsSection::setLabelWidth(int width) {
    grid_->setColumnMinimumWidth(0, width);
}

void SettingsSection::addRow(const QString& label, QWidget* named, QLayout* controls, const QString& caption) {
    int row = grid_->rowCount();
    if (!isEmpty_) {
        grid_->setRowMinimumHeight(row++, metrics::group);
    }
    isEmpty_ = false;

    auto* name = new QLabel(label);
    name->setBuddy(named);
    labels_.push_back(name);
    // The system's own forms have them on one side or the other.
    const Qt::Alignment side(style()->styleHint(QStyle::SH_FormLayoutLabelAlignment));
    grid_->addWidget(name, row, 0, (side & Qt::AlignHorizontal_Mask) | Qt::AlignVCenter);
    grid_->addLayout(controls, row, 1);
    if (!caption.isEmpty()) {
        if (named != nullptr) {
            named->setAccessibleDescription(caption);
        }
        grid_->setRowMinimumHeight(row + 1, metrics::caption);
        grid_->addWidget(new CaptionLabel(caption), row + 2, 1);
    }
}

void SettingsSection::addRow(const QString& label, QWidget* control, const QString& caption) {
    auto* alone = new QHBoxLayout;
    alone->addWidget(control);
    addRow(label, control, alone, caption);
}

QLayout* SettingsSection::sideBySide(std::initializer_list<QWidget*> controls) {
    auto* row = new QHBoxLayout;
    row->setSpacing(metrics::related);
    for (QWidget* control : controls) {
        row->addWidget(control);
    }
    row->addStretch();
    return row;
}

QLayout* SettingsSection::growingFirst(std::initializer_list<QWidget*> controls) {
    auto* row = new QHBoxLayout;
    row->setSpacing(metrics::related);
    for (QWidget* control : controls) {
        row->addWidget(control, control == *controls.begin() ? 1 : 0);
    }
    return row;
}

void SettingsSection::show(QCheckBox& toggle, bool on) {
    const QSignalBlocker quiet(toggle);
    toggle.setChecked(on);
}

void SettingsSection::show(QLineEdit& field, const std::string& text) {
    const QString shown = QString::fromStdString(text);
    if (field.text() != shown) {
        const int cursor = field.cursorPosition();
        field.setText(shown);
        field.setCursorPosition(cursor);
    }
}

}  // namespace velmora
