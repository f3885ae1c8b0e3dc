#include "ui/GeneralTabView.h"

#include "manager/TunnelManager.h"
#include "ui/FieldBinding.h"
#include "ui/FormLayout.h"
#include "ui/ForwardingRuleRow.h"
#include "ui/HostBinding.h"
#include "ui/IconButton.h"
#include "ui/IntegerField.h"
#include "ui/LegendDot.h"
#include "ui/MenuLabel.h"
#include "ui/Metrics.h"
#include "ui/TextField.h"
#include "ui/WarningLine.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>

namespace velmora {

namespace {

QString conflictText(const PortConflict& conflict, const std::string& hostName) {
    const QString port = QString::number(conflict.port);
    if (conflict.otherHostName == hostName) {
        return GeneralTabView::tr("Port %1 is used by two rules on this host").arg(port);
    }
    return GeneralTabView::tr("Port %1 conflicts with \"%2\"").arg(port, oneLine(conflict.otherHostName));
}

}  // namespace

GeneralTabView::GeneralTabView(TunnelManager& manager, HostBinding& host, QWidget* parent)
    : QWidget(parent), manager_(manager), host_(host), hostname_(new TextField(this)) {
    QFormLayout& form = *forms::fill(*this);
    addServer(form);
    addForwarding(form);
    addSession(form);

    conflictsSoon_.setSingleShot(true);
    connect(&conflictsSoon_, &QTimer::timeout, this, &GeneralTabView::showConflicts);
    connect(&host_, &HostBinding::changed, this, [this] {
        showAlias();
        conflictsSoon_.start(0);
    });
    hostsChanges_ = manager_.hosts().observe([this] { conflictsSoon_.start(0); });
    showAlias();
    showConflicts();
    orderTabs();
}

QWidget* GeneralTabView::firstField() const {
    return hostname_;
}

void GeneralTabView::addServer(QFormLayout& form) {
    hostname_->setObjectName(QStringLiteral("hostname"));
    bindField(*hostname_, host_, &SSHHost::hostname);
    auto* port = new IntegerField(IntegerField::serverPort);
    port->setObjectName(QStringLiteral("port"));
    port->setAccessibleName(tr("Port"));
    port->setToolTip(tr("Port"));
    bindField(*port, host_, &SSHHost::port);
    forms::addRow(form, tr("Host"), hostname_, forms::beside(hostname_, port));

    auto* username = new TextField;
    username->setObjectName(QStringLiteral("username"));
    username->setPlaceholderText(tr("Login name"));
    bindField(*username, host_, &SSHHost::username);
    forms::addRow(form, tr("User"), username);

    auto* proxyJump = new TextField;
    proxyJump->setObjectName(QStringLiteral("proxyJump"));
    proxyJump->setPlaceholderText(QStringLiteral("admin@bastion.example.com:22"));
    bindField(*proxyJump, host_, &SSHHost::proxyJump);
    forms::addRow(form, tr("Jump Host"), proxyJump,
                  forms::captioned(proxyJump, tr("Passed as -J to ssh. Leave empty for direct connection.")));

    auto* alias = new QCheckBox(tr("Use SSH config alias"));
    alias->setObjectName(QStringLiteral("useSSHConfigAlias"));
    bindField(*alias, host_, &SSHHost::useSSHConfigAlias);
    form.addRow(
        QString(),
        forms::captioned(alias,
                         tr("Pass host as-is to SSH — port, user, identity, ProxyJump, etc. come from ~/.ssh/config")));
    beforeTable_ = alias;
}

void GeneralTabView::addForwarding(QFormLayout& form) {
    auto* whole = new QWidget;
    auto* column = new QVBoxLayout(whole);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(metrics::related);
    table_ = new ForwardingTable(manager_, host_, selectedRuleId_, whole);
    table_->setObjectName(QStringLiteral("rules"));
    table_->setAccessibleName(tr("Forwarding rules"));
    column->addWidget(table_);
    column->addWidget(ruleButtons());
    conflicts_ = new QWidget;
    conflicts_->setObjectName(QStringLiteral("conflicts"));
    auto* lines = new QVBoxLayout(conflicts_);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(metrics::caption);
    column->addWidget(conflicts_);
    column->addWidget(legendRow());
    forms::addRow(form, tr("Forwarding"), table_, whole);
    form.labelForField(whole)->setContentsMargins(0, 2 * metrics::caption, 0,
                                                  0);  // level with the first row, which has an edge
    connect(table_, &ForwardingTable::controlsChanged, this, &GeneralTabView::orderTabs);
}

QWidget* GeneralTabView::ruleButtons() {
    plus_ = new IconButton(QStringLiteral("plus"), tr("Add a forwarding rule"));
    connect(plus_, &IconButton::clicked, this, &GeneralTabView::addRule);
    auto* minus = new IconButton(QStringLiteral("minus"), tr("Remove the selected rule"));
    connect(minus, &IconButton::clicked, this, &GeneralTabView::removeRule);
    auto* buttons = new QWidget;
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(metrics::caption);
    row->addWidget(plus_);
    row->addWidget(minus);
    row->addStretch();
    return buttons;
}

QWidget* GeneralTabView::legendRow() {
    auto* legendRow = new QWidget;
    auto* row = new QHBoxLayout(legendRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(metrics::group);
    row->addWidget(new LegendDot(legend::bindGreen, tr("This Mac")));
    row->addWidget(new LegendDot(legend::remoteSide, tr("Remote Side")));
    row->addWidget(new LegendDot(legend::targetBlue, tr("Target Host")));
    row->addStretch();
    return legendRow;
}

void GeneralTabView::addSession(QFormLayout& form) {
    auto* noSession = new QCheckBox(tr("Do not request session on the remote system (recommend)"));
    noSession->setObjectName(QStringLiteral("noSessionRequest"));
    bindField(*noSession, host_, &SSHHost::noSessionRequest);
    auto* onStartup = new QCheckBox(tr("Connect on startup"));
    onStartup->setObjectName(QStringLiteral("connectOnStartup"));
    bindField(*onStartup, host_, &SSHHost::connectOnStartup);

    QWidget* both = forms::captioned(
        noSession, tr("Corresponds to ssh command option -N, this is useful for just forwarding ports."));
    static_cast<QVBoxLayout*>(both->layout())->addSpacing(metrics::related);
    both->layout()->addWidget(onStartup);
    noSession->setAccessibleName(noSession->text());
    forms::addRow(form, tr("Session"), noSession, both);
}

void GeneralTabView::addRule() {
    const ForwardingRule rule;
    host_.edit([&rule](SSHHost& host) { host.forwardingRules.push_back(rule); });
    selectedRuleId_.set(rule.id);
    if (ForwardingRuleRow* row = table_->row(rule.id)) {
        row->typePicker()->setFocus(Qt::OtherFocusReason);
        Q_EMIT rowAdded(row);
    }
}

void GeneralTabView::removeRule() {
    if (!selectedRuleId_.get()) {
        return;
    }
    host_.edit([id = *selectedRuleId_.get()](SSHHost& host) {
        auto& rules = host.forwardingRules;
        const auto rule =
            std::find_if(rules.begin(), rules.end(), [&id](const ForwardingRule& other) { return other.id == id; });
        if (rule != rules.end()) {
            rules.erase(rule);
        }
    });
    selectedRuleId_.set(std::nullopt);
}

/// New controls stand at the end of the tab order; their place is between what is above the table and below it.
void GeneralTabView::orderTabs() {
    QWidget* before = beforeTable_;
    for (QWidget* control : table_->controls()) {
        setTabOrder(before, control);
        before = control;
    }
    setTabOrder(before, plus_);
}

void GeneralTabView::showAlias() {
    hostname_->setPlaceholderText(host_.host().useSSHConfigAlias ? tr("SSH config alias, e.g. f")
                                                                 : tr("IP address or hostname"));
}

void GeneralTabView::showConflicts() {
    const auto conflicts = manager_.portConflicts(host_.host());
    while (conflictLines_.size() > conflicts.size()) {
        delete conflictLines_.back();
        conflictLines_.pop_back();
    }
    for (std::size_t place = 0; place < conflicts.size(); ++place) {
        const QString text = conflictText(conflicts[place], host_.host().name);
        if (place < conflictLines_.size()) {
            conflictLines_[place]->setText(text);
            continue;
        }
        conflictLines_.push_back(new WarningLine(text));
        conflicts_->layout()->addWidget(conflictLines_.back());
    }
    conflicts_->setVisible(!conflicts.empty());
}

}  // namespace velmora
