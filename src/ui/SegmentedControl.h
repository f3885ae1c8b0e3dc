#pragma once

#include <QStringList>
#include <QWidget>

#include <vector>

class QRadioButton;

namespace velmora {

/// One of a few choices, side by side in a row. The current one is a stop for the tab
/// key; the arrows move between the choices.
class SegmentedControl final : public QWidget {
    Q_OBJECT

public:
    /// The first choice is the current one.
    SegmentedControl(const QString& accessibleName, const QStringList& choices, QWidget* parent = nullptr);

    [[nodiscard]] int currentIndex() const;
    /// Emits nothing.
    void setCurrentIndex(int index);
    [[nodiscard]] QRadioButton* segment(int index) { return segments_[static_cast<std::size_t>(index)]; }

Q_SIGNALS:
    /// The user chose another one.
    void chosen(int index);

private:
    void paintEvent(QPaintEvent* event) override;

    std::vector<QRadioButton*> segments_;
};

}  // namespace velmora
