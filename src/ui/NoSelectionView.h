#pragma once

#include <QWidget>

class QLabel;

namespace velmora {

class CaptionLabel;

/// What the main window shows while no host is selected, and the first thing that a new user sees. Main thread.
class NoSelectionView final : public QWidget {
    Q_OBJECT

public:
    explicit NoSelectionView(QWidget* parent = nullptr);

    /// One sentence about the first step, for those who have no host yet.
    void setShowsFirstStep(bool shows);

Q_SIGNALS:
    void addTunnel();

private:
    void changeEvent(QEvent* event) override;
    void adoptColors();

    QLabel* symbol_;
    QLabel* text_;
    CaptionLabel* firstStep_;
};

}  // namespace velmora
