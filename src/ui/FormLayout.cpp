#include "ui/FormLayout.h"

#include "ui/CaptionLabel.h"
#include "ui/Metrics.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <algorithm>

namespace velmora::forms {

namespace {

/// A form gives a row at least the height that it asks for at first, and a caption that may wrap asks for too much.
class Captioned final : public QWidget {
public:
    Captioned(QWidget* control, const QString& text) : caption_(new CaptionLabel(text)) {
        auto* column = new QVBoxLayout(this);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(metrics::caption);
        column->addWidget(control);
        column->addWidget(caption_, 0, Qt::AlignTop);
    }

    [[nodiscard]] QSize sizeHint() const override {
        const int tooMuch = caption_->sizeHint().height() - caption_->fontMetrics().height();
        return QWidget::sizeHint() - QSize(0, tooMuch);
    }

private:
    CaptionLabel* caption_;
};

}  // namespace

QFormLayout* fill(QWidget& widget) {
    auto* form = new QFormLayout(&widget);
    form->setContentsMargins(0, 0, 0, 0);
    form->setHorizontalSpacing(metrics::group);
    form->setVerticalSpacing(metrics::group);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);  // also where the platform would keep them short
    form->setLabelAlignment((form->labelAlignment() & Qt::AlignHorizontal_Mask) | Qt::AlignTop);
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
    return new Captioned(control, caption);
}

void addRow(QFormLayout& form, const QString& label, QWidget* control, QWidget* field) {
    auto* words = new QLabel(label);
    words->setBuddy(control);
    // Beside the middle of one line, and beside the first line of a tall control.
    const int line = words->sizeHint().height();
    const int height = control->sizeHint().height();
    words->setMaximumHeight(height <= 2 * line + metrics::caption ? height : line + 2 * metrics::caption);
    if (control->accessibleName().isEmpty()) {
        control->setAccessibleName(label);
    }
    form.addRow(words, field != nullptr ? field : control);
}

QWidget* column(QWidget* content) {
    auto* whole = new QWidget;
    auto* row = new QHBoxLayout(whole);
    row->setContentsMargins(metrics::margin, 0, metrics::margin, 0);
    row->setSpacing(0);
    content->setMaximumWidth(metrics::widestColumn);
    row->addWidget(content, 1);
    row->addStretch();
    return whole;
}

}  // namespace velmora::forms
