#pragma once

#include "ui/TextField.h"

#include <cstdint>
#include <optional>

namespace velmora {

/// A field for an integer, without arrows. It takes digits of any script and nothing else; what surrounds pasted digits
/// as white space is dropped. What is typed stays as it was typed until the user leaves the field. Main thread.
class IntegerField final : public TextField {
    Q_OBJECT

public:
    enum class Grouping : std::uint8_t { none, locale };
    enum class Zero : std::uint8_t { shown, none };  ///< with `none`, 0 is an empty field and the other way round

    struct Kind {
        std::int64_t maximum;  ///< what can be typed; a larger value that is there already is shown and can be typed
        int digits;            ///< how wide
        Grouping grouping;
        Zero zero;
    };
    static constexpr Kind serverPort{.maximum = 65535, .digits = 6, .grouping = Grouping::none, .zero = Zero::shown};
    static constexpr Kind rulePort{.maximum = 65535, .digits = 6, .grouping = Grouping::none, .zero = Zero::none};
    static constexpr Kind count{
        .maximum = 2147483647, .digits = 10, .grouping = Grouping::locale, .zero = Zero::shown};  ///< as far as ssh's

    explicit IntegerField(const Kind& kind, QWidget* parent = nullptr);

    /// As of a text field, in the integer format of the locale.
    void showValue(std::int64_t value);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    /// The user typed this.
    void valueEdited(qint64 value);

private:
    class Validator;

    [[nodiscard]] QString format(std::int64_t value) const;
    void readTyped(const QString& text);

    Kind kind_;
    std::int64_t limit_;
    bool mayBeNegative_ = false;
};

}  // namespace velmora
