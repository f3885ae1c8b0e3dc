#include "ui/NewHostSheet.h"

#include "ui/HostTabsView.h"
#include "ui/Metrics.h"
#include "ui/WindowServices.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

namespace velmora {

namespace {

constexpr QSize firstSize(640, 600);

}  // namespace

NewHostSheet::NewHostSheet(WindowServices& services, OnCreate onCreate, QWidget* parent)
    : QDialog(parent),
      services_(services),
      onCreate_(std::move(onCreate)),
      tabs_(new HostTabsView(services_, host_, password_)),
      create_(new QPushButton(tr("Create"))) {
    setObjectName(QStringLiteral("newHost"));
    setWindowTitle(tr("New Tunnel"));
    setWindowModality(Qt::WindowModal);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, metrics::margin, 0, metrics::margin);
    column->setSpacing(metrics::group);
    column->addWidget(tabs_, 1);
    column->addWidget(buttons());
    connect(&host_, &HostBinding::changed, this, &NewHostSheet::showState);
    showState();
    tabs_->firstField()->setFocus(Qt::OtherFocusReason);
    resize(firstSize.expandedTo(sizeHint()));
}

QWidget* NewHostSheet::buttons() {
    auto* box = new QDialogButtonBox;
    box->setContentsMargins(metrics::margin, 0, metrics::margin, 0);
    auto* cancel = new QPushButton(tr("Cancel"));
    cancel->setObjectName(QStringLiteral("cancel"));
    create_->setObjectName(QStringLiteral("create"));
    box->addButton(create_, QDialogButtonBox::AcceptRole);
    box->addButton(cancel, QDialogButtonBox::RejectRole);
    create_->setDefault(true);
    connect(box, &QDialogButtonBox::accepted, this, &NewHostSheet::create);
    connect(box, &QDialogButtonBox::rejected, this, &NewHostSheet::reject);
    return box;
}

void NewHostSheet::create() {
    if (!password_.get().empty()) {
        services_.manager.keychain().save(password_.get(), host_.host().id);
    }
    onCreate_(host_.host());
    accept();
}

void NewHostSheet::showState() {
    create_->setEnabled(!host_.host().hostname.empty());
}

}  // namespace velmora
