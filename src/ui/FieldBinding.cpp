#include "ui/FieldBinding.h"

#include "ui/HostBinding.h"
#include "ui/IntegerField.h"
#include "ui/LinesField.h"
#include "ui/TextField.h"

#include <QCheckBox>

namespace velmora {

namespace {

template <typename Control, typename Value>
void bindWith(Control& control, HostBinding& host, Value SSHHost::*field, auto edited, auto read, auto show) {
    QObject::connect(&control, edited, &host, [&host, field, read](const auto& shown) {
        host.edit([&](SSHHost& edit) { edit.*field = read(shown); });
    });
    const auto refresh = [&control, &host, field, show] { show(control, host.host().*field); };
    QObject::connect(&host, &HostBinding::changed, &control, refresh);
    refresh();
}

std::string toText(const QString& shown) {
    return shown.toStdString();
}

void showText(auto& control, const std::string& value) {
    control.showValue(QString::fromStdString(value));
}

}  // namespace

void bindField(TextField& control, HostBinding& host, std::string SSHHost::*field) {
    bindWith(control, host, field, &TextField::textEdited, toText, showText<TextField>);
}

void bindField(LinesField& control, HostBinding& host, std::string SSHHost::*field) {
    bindWith(control, host, field, &LinesField::edited, toText, showText<LinesField>);
}

void bindField(IntegerField& control, HostBinding& host, std::int64_t SSHHost::*field) {
    bindWith(
        control, host, field, &IntegerField::valueEdited, [](qint64 value) { return std::int64_t{value}; },
        [](IntegerField& shown, std::int64_t value) { shown.showValue(value); });
}

void bindField(QCheckBox& control, HostBinding& host, bool SSHHost::*field) {
    bindWith(
        control, host, field, &QCheckBox::clicked, [](bool checked) { return checked; },
        [](QCheckBox& shown, bool value) { shown.setChecked(value); });
}

}  // namespace velmora
