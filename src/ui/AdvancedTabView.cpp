#include "ui/AdvancedTabView.h"

#include "ui/FieldBinding.h"
#include "ui/FormLayout.h"
#include "ui/HostBinding.h"
#include "ui/IntegerField.h"
#include "ui/LinesField.h"
#include "ui/Metrics.h"

#include <QCheckBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>

namespace velmora {

namespace {

constexpr int optionLines = 5;

IntegerField* integerField(HostBinding& host, const QString& name, std::int64_t SSHHost::*field) {
    auto* control = new IntegerField(IntegerField::count);
    control->setObjectName(name);
    bindField(*control, host, field);
    return control;
}

QCheckBox* checkBox(HostBinding& host, const QString& name, const QString& text, bool SSHHost::*field) {
    auto* control = new QCheckBox(text);
    control->setObjectName(name);
    control->setAccessibleName(text);
    bindField(*control, host, field);
    return control;
}

QWidget* withUnit(QWidget* control, const QString& unit) {
    auto* both = new QWidget;
    auto* row = new QHBoxLayout(both);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(metrics::related);
    row->addWidget(control);
    row->addWidget(new QLabel(unit));
    row->addStretch();
    return both;
}

}  // namespace

AdvancedTabView::AdvancedTabView(HostBinding& host, QWidget* parent) : QWidget(parent) {
    QFormLayout& form = *forms::fill(*this);
    forms::addRow(form, tr("ServerAliveInterval"),
                  integerField(host, QStringLiteral("serverAliveInterval"), &SSHHost::serverAliveInterval));
    forms::addRow(form, tr("ServerAliveCountMax"),
                  integerField(host, QStringLiteral("serverAliveCountMax"), &SSHHost::serverAliveCountMax));
    auto* timeout = integerField(host, QStringLiteral("connectTimeout"), &SSHHost::connectTimeout);
    forms::addRow(form, tr("Connect Timeout"), timeout, withUnit(timeout, tr("seconds")));
    forms::addRow(form, tr("Compression"),
                  checkBox(host, QStringLiteral("compression"), tr("Enable (-C flag)"), &SSHHost::compression));
    forms::addRow(form, tr("Host Key Checking"),
                  checkBox(host, QStringLiteral("strictHostKeyChecking"), tr("Strict host key checking"),
                           &SSHHost::strictHostKeyChecking));

    auto* options = new LinesField(optionLines);
    options->setObjectName(QStringLiteral("customOptions"));
    options->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    bindField(*options, host, &SSHHost::customOptions);
    forms::addRow(form, tr("Extra Options"), options,
                  forms::captioned(options, tr("One SSH -o option per line, e.g.") +
                                                QStringLiteral(" \"Ciphers=aes256-gcm@openssh.com\"")));
}

}  // namespace velmora
