#pragma once

#include <QString>

class QFormLayout;
class QWidget;

// How the forms of the windows are laid out: labels in one column, controls with one left edge in the other.
namespace velmora::forms {

/// A form over the whole widget.
[[nodiscard]] QFormLayout* fill(QWidget& widget);

/// Both side by side; the first one grows.
[[nodiscard]] QWidget* beside(QWidget* first, QWidget* second);

/// The control with a caption below it.
[[nodiscard]] QWidget* captioned(QWidget* control, const QString& caption);

/// A row with the label of this control, which is or stands in `field`.
void addRow(QFormLayout& form, const QString& label, QWidget* control, QWidget* field = nullptr);

/// The content between the margins of a window; it does not grow beyond the widest column.
[[nodiscard]] QWidget* column(QWidget* content);

}  // namespace velmora::forms
