#pragma once

#include "platform/DefaultsStore.h"

#include <QMainWindow>

#include <string>
#include <string_view>

namespace velmora {

/// One of the program's windows. It is made when it is opened and gone when it is closed; where it stood and how large
/// it was is remembered. Main thread.
class ManagedWindow : public QMainWindow {
    Q_OBJECT

public:
    /// The name is that of the window, as in `windows`.
    ManagedWindow(std::string_view id, const QString& title, DefaultsStore& defaults);

    /// Gives it the place and the size of last time; when there was none, this size, in front of the window that the
    /// user works in, or in the middle of the screen.
    void restorePlace(const QSize& firstSize);

protected:
    /// Remembered under the window's name and this one; empty when there is nothing.
    void remember(std::string_view what, const QByteArray& state);
    [[nodiscard]] QByteArray remembered(std::string_view what) const;

    /// The usual key closes it.
    void keyPressEvent(QKeyEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] std::string key(std::string_view what) const;

    std::string id_;
    DefaultsStore& defaults_;
};

}  // namespace velmora
