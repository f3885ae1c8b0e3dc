#pragma once

#include "ui/TextField.h"

namespace velmora {

/// A field above the form of a host: its name in large letters without a border, or something lesser in small ones. It
/// follows the application's font. Main thread.
class HeaderField final : public TextField {
    Q_OBJECT

public:
    enum class Look : std::uint8_t { title, caption };

    HeaderField(Look look, const QString& name, QWidget* parent = nullptr);

private:
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void adoptFont();

    Look look_;
};

}  // namespace velmora
