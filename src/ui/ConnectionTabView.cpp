#include "ui/ConnectionTabView.h"

#include "ui/Dialogs.h"
#include "ui/FieldBinding.h"
#include "ui/FormLayout.h"
#include "ui/HostBinding.h"
#include "ui/SegmentedControl.h"
#include "ui/TextField.h"

#include <QDir>
#include <QFormLayout>
#include <QPointer>
#include <QPushButton>

namespace velmora {

namespace {

QString nameOf(AuthMethod method) {
    switch (method) {
        case AuthMethod::key:
            return ConnectionTabView::tr("SSH Key");
        case AuthMethod::password:
            break;
    }
    return ConnectionTabView::tr("Password", "way of authentication");
}

QStringList methodNames() {
    QStringList names;
    for (const AuthMethod method : allAuthMethods) {
        names.append(nameOf(method));
    }
    return names;
}

}  // namespace

ConnectionTabView::ConnectionTabView(Dialogs& dialogs, HostBinding& host, Observable<std::string>& password,
                                     QWidget* parent)
    : QWidget(parent),
      dialogs_(dialogs),
      host_(host),
      password_(password),
      form_(forms::fill(*this)),
      method_(new SegmentedControl(tr("Authentication"), methodNames())) {
    method_->setObjectName(QStringLiteral("authMethod"));
    forms::addRow(*form_, tr("Authentication"), method_);
    addIdentityFile();
    addPassword();
    connect(method_, &SegmentedControl::chosen, this, [this](int index) {
        host_.edit([index](SSHHost& edit) { edit.authMethod = allAuthMethods.at(static_cast<std::size_t>(index)); });
    });
    connect(&host_, &HostBinding::changed, this, &ConnectionTabView::showMethod);
    showMethod();
}

void ConnectionTabView::addIdentityFile() {
    auto* file = new TextField;
    file->setObjectName(QStringLiteral("identityFile"));
    file->setPlaceholderText(QStringLiteral("~/.ssh/id_rsa"));
    bindField(*file, host_, &SSHHost::identityFile);
    auto* choose = new QPushButton(tr("Choose…"));
    choose->setObjectName(QStringLiteral("choose"));
    choose->setAccessibleName(tr("Choose the identity file"));
    choose->setAutoDefault(false);
    connect(choose, &QPushButton::clicked, this, &ConnectionTabView::chooseIdentityFile);
    identityRow_ =
        forms::captioned(forms::beside(file, choose), tr("Leave empty to use ssh-agent or the default key."));
    forms::addRow(*form_, tr("Identity File"), file, identityRow_);
}

void ConnectionTabView::addPassword() {
    auto* secret = new TextField;
    secret->setObjectName(QStringLiteral("password"));
    secret->setEchoMode(QLineEdit::Password);
    connect(secret, &QLineEdit::textEdited, this, [this](const QString& text) { password_.set(text.toStdString()); });
    const auto show = [this, secret] { secret->showValue(QString::fromStdString(password_.get())); };
    passwordChanges_ = password_.observe(show);
    show();
    passwordRow_ = forms::captioned(secret, tr("Password is stored in the macOS Keychain."));
    forms::addRow(*form_, tr("Password"), secret, passwordRow_);
}

void ConnectionTabView::chooseIdentityFile() {
    const auto folder = std::filesystem::path(QDir::homePath().toStdString()) / ".ssh";
    const QPointer<ConnectionTabView> here(this);  // the dialog is modal, and the host may go meanwhile
    const auto file = dialogs_.chooseFileIn(tr("Select SSH Identity File"), folder);
    if (here && file) {
        host_.edit([&file](SSHHost& edit) { edit.identityFile = file->string(); });
    }
}

void ConnectionTabView::showMethod() {
    const AuthMethod method = host_.host().authMethod;
    method_->setCurrentIndex(static_cast<int>(method));
    form_->setRowVisible(identityRow_, method == AuthMethod::key);
    form_->setRowVisible(passwordRow_, method == AuthMethod::password);
}

}  // namespace velmora
