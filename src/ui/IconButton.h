#pragma once

#include <QKeySequence>
#include <QToolButton>

namespace velmora {

/// A button that shows a symbol and says what it does in its tooltip. The symbol grows with the font, the button with
/// the row that it stands in. Main thread.
class IconButton : public QToolButton {
    Q_OBJECT

public:
    /// Its object name is the symbol's. The shortcut is only named in the tooltip.
    IconButton(const QString& symbol, const QString& name, const QKeySequence& shortcut = {},
               QWidget* parent = nullptr);

protected:
    void changeEvent(QEvent* event) override;

private:
    void adoptFont();
};

}  // namespace velmora
