#include "ui/FormLayout.h"

#include "ui/CaptionLabel.h"
#include "ui/Metrics.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace velmora::forms {

QFormLayout* fill(QWidget& widget) {
    auto* form = new QFormLayout(&widget);
    form->setContentsMargins(0, 0, 0, 0);
    form->setHorizontalSpacing(metrics::group);
    form->setVerticalSpacing(metrics::group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);  // also where the platform would keep them short
    form->setFormAlignment(Qt::AlignLeft | Qt::AlignTop);
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    return form;
}

QWidget* beside(QWidget* first, QWidget* second) {
    auto* both = new QWidget;
    auto* row = new QHBoxLayout(both);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(metrics::related);
    row->addWidget(first, 1);
    row->addWidget(second);
    return both;
}

QWidget* captioned(QWidget* control, const QString& caption) {
    auto* both = new QWidget;
    auto* column = new QVBoxLayout(both);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(metrics::caption);
    column->addWidget(control);
    column->addWidget(new CaptionLabel(caption));
    return both;
}

void addRow(QFormLayout& form, const QString& label, QWidget* control, QWidget* field) {
    auto* words = new QLabel(label);
    words->setBuddy(control);
    if (control->accessibleName().isEmpty()) {
        control->setAccessibleName(label);
    }
    form.addRow(words, field != nullptr ? field : control);
}

QWidget* centredColumn(QWidget* content) {
    auto* whole = new QWidget;
    auto* row = new QHBoxLayout(whole);
    row->setContentsMargins(metrics::margin, 0, metrics::margin, 0);
    row->setSpacing(0);
    content->setMaximumWidth(metrics::widestColumn);
    row->addStretch();
    row->addWidget(content, 1);
    row->addStretch();
    return whole;
}

}  // namespace velmora::forms
