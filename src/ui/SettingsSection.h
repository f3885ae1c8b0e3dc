#pragma once

#include <QGroupBox>

#include <initializer_list>
#include <string>
#include <vector>

class QCheckBox;
class QGridLayout;
class QLabel;
class QLayout;
class QLineEdit;

namespace velmora {

/// A titled group of the settings: labels in one column, what they name in the next, each with a caption below it where
/// it needs one. Main thread.
class SettingsSection : public QGroupBox {
    Q_OBJECT

public:
    /// How wide the labels are, and the width that all sections give them, so that their fields share one edge.
    [[nodiscard]] int labelWidth() const;
    void setLabelWidth(int width);

protected:
    explicit SettingsSection(const QString& title);

    /// Puts controls into the group; what has no label of its own gets an empty text. `named` is what the label stands
    /// for, or null.
    void addRow(const QString& label, QWidget* named, QLayout* controls, const QString& caption = {});
    void addRow(const QString& label, QWidget* control, const QString& caption = {});

    /// Controls side by side; the rest of the row stays free.
    [[nodiscard]] static QLayout* sideBySide(std::initializer_list<QWidget*> controls);
    /// The same, and the first one takes the room.
    [[nodiscard]] static QLayout* growingFirst(std::initializer_list<QWidget*> controls);

    /// Show what a setting has become, without telling anybody and without moving the cursor.
    static void show(QCheckBox& toggle, bool on);
    static void show(QLineEdit& field, const std::string& text);

private:
    QGridLayout* grid_;
    std::vector<QLabel*> labels_;
    bool isEmpty_ = true;
};

}  // namespace velmora
