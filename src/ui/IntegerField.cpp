#include "ui/IntegerField.h"

#include <QLocale>
#include <QValidator>

#include <algorithm>
#include <limits>

namespace velmora {

namespace {

constexpr QChar minus(u'-');

/// Without its group separators. Nothing when it is no integer of 64 bits.
std::optional<std::int64_t> parse(const QString& text) {
    const bool negative = text.startsWith(minus) || text.startsWith(QLocale().negativeSign());
    bool anyDigit = false;
    std::int64_t value = 0;
    for (const QChar character : text) {
        if (!character.isDigit()) {
            continue;
        }
        const int digit = character.digitValue();
        anyDigit = true;
        // Counted on the negative side, which reaches one further.
        if (value < (std::numeric_limits<std::int64_t>::min() + digit) / 10) {
            return std::nullopt;
        }
        value = value * 10 - digit;
    }
    if (!anyDigit || (!negative && value == std::numeric_limits<std::int64_t>::min())) {
        return std::nullopt;
    }
    return negative ? value : -value;
}

}  // namespace

class IntegerField::Validator final : public QValidator {
public:
    explicit Validator(IntegerField* field) : QValidator(field), field_(*field) {}

    State validate(QString& input, int& position) const override {
        const QLocale locale;
        QString kept;
        int keptPosition = position;
        for (qsizetype at = 0; at < input.size(); ++at) {
            const QChar character = input[at];
            const bool separator =
                field_.kind_.grouping == Grouping::locale && locale.groupSeparator() == QString(character);
            const bool sign =
                at == 0 && field_.mayBeNegative_ && (character == minus || locale.negativeSign() == QString(character));
            if (character.isDigit() || separator || sign) {
                kept += character;
            } else if (character.isSpace()) {
                keptPosition -= at < position ? 1 : 0;
            } else {
                return Invalid;
            }
        }
        const auto value = parse(kept);
        const bool anyDigit = std::any_of(kept.cbegin(), kept.cend(), [](QChar c) { return c.isDigit(); });
        if (anyDigit && (!value || *value > field_.limit_)) {
            return Invalid;
        }
        input = kept;
        position = keptPosition;
        return Acceptable;
    }

private:
    const IntegerField& field_;
};

IntegerField::IntegerField(const Kind& kind, QWidget* parent) : TextField(parent), kind_(kind), limit_(kind.maximum) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setInputMethodHints(Qt::ImhDigitsOnly);
    setValidator(new Validator(this));
    connect(this, &QLineEdit::textEdited, this, &IntegerField::readTyped);
}

void IntegerField::showValue(std::int64_t value) {
    limit_ = std::max(limit_, value);
    mayBeNegative_ = value < 0;
    TextField::showValue(format(value));
}

QString IntegerField::format(std::int64_t value) const {
    if (value == 0 && kind_.zero == Zero::none) {
        return {};
    }
    QLocale locale;
    if (kind_.grouping == Grouping::none) {
        locale.setNumberOptions(locale.numberOptions() | QLocale::OmitGroupSeparator);
    }
    return locale.toString(static_cast<qlonglong>(value));
}

void IntegerField::readTyped(const QString& text) {
    if (const auto value = parse(text)) {
        Q_EMIT valueEdited(*value);
    } else if (text.isEmpty() && kind_.zero == Zero::none) {
        Q_EMIT valueEdited(0);
    }
}

QSize IntegerField::sizeHint() const {
    constexpr int charactersOfTheHint = 17;  // as QLineEdit counts
    const QSize hint = QLineEdit::sizeHint();
    const int around = hint.width() - charactersOfTheHint * fontMetrics().horizontalAdvance(QLatin1Char('x'));
    return {around + kind_.digits * fontMetrics().horizontalAdvance(QLatin1Char('0')) + 4, hint.height()};
}

}  // namespace velmora
