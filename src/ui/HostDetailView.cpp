#include "ui/HostDetailView.h"

#include "ui/FieldBinding.h"
#include "ui/FormLayout.h"
#include "ui/HeaderField.h"
#include "ui/HostFooter.h"
#include "ui/HostTabsView.h"
#include "ui/Metrics.h"
#include "ui/WindowServices.h"

#include <QEvent>
#include <QShortcut>
#include <QVBoxLayout>

namespace velmora {

HostDetailView::HostDetailView(WindowServices& services, const Uuid& host, QWidget* parent)
    : QWidget(parent),
      services_(services),
      host_(services.manager, host),
      saveKey_(new QShortcut(QKeySequence::Save, this)) {
    loadPassword();
    savedHost_ = host_.host();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, metrics::margin, 0, 0);
    column->setSpacing(0);
    column->addWidget(forms::column(header()));
    column->addSpacing(metrics::group);
    tabs_ = new HostTabsView(services_, host_, password_);
    column->addWidget(tabs_, 1);
    footer_ = new HostFooter(services_, host_);
    column->addWidget(footer_);

    connect(footer_, &HostFooter::saveRequested, this, &HostDetailView::saveAll);
    connect(saveKey_, &QShortcut::activated, this, &HostDetailView::saveAll);
    connect(&host_, &HostBinding::changed, this, &HostDetailView::showState);
    passwordChanges_ = password_.observe([this] { showState(); });
    showState();
}

QWidget* HostDetailView::header() {
    auto* both = new QWidget;
    auto* column = new QVBoxLayout(both);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(metrics::related);

    auto* name = new HeaderField(HeaderField::Look::title, tr("Name"));
    name->setObjectName(QStringLiteral("name"));
    bindField(*name, host_, &SSHHost::name);
    column->addWidget(name);
    auto* tags = new HeaderField(HeaderField::Look::caption, tr("Tags"));
    tags->setObjectName(QStringLiteral("tags"));
    bindField(*tags, host_, &SSHHost::tags);
    column->addWidget(tags);
    return both;
}

void HostDetailView::loadPassword() {
    const auto found = services_.manager.keychain().load(host_.host().id);
    isPasswordKnown_ = found.has_value();
    savedPassword_ = found.value_or(std::string());
    password_.set(savedPassword_);
}

/// A locked keychain has had no answer at first. What it holds must not be taken for nothing and written over.
void HostDetailView::loadPasswordAgain() {
    if (!isPasswordKnown_ && password_.get() == savedPassword_) {
        loadPassword();
    }
}

bool HostDetailView::event(QEvent* event) {
    // The user comes back from the question that unlocks the keychain, for example.
    if (event->type() == QEvent::WindowActivate && host_.exists() && host_.host().authMethod == AuthMethod::password) {
        loadPasswordAgain();
    }
    return QWidget::event(event);
}

bool HostDetailView::isDirty() const {
    return savedHost_ != host_.host() || savedPassword_ != password_.get();
}

void HostDetailView::saveAll() {
    if (!host_.exists() || !isDirty()) {
        return;
    }
    services_.manager.save();
    loadPasswordAgain();
    services_.manager.keychain().save(password_.get(), host_.host().id);
    savedHost_ = host_.host();
    savedPassword_ = password_.get();
    isPasswordKnown_ = isPasswordKnown_ || !savedPassword_.empty();
    showState();
}

void HostDetailView::showState() {
    setEnabled(host_.exists());
    const bool canSave = host_.exists() && isDirty();
    footer_->setSaveEnabled(canSave);
    saveKey_->setEnabled(canSave);
}

}  // namespace velmora
