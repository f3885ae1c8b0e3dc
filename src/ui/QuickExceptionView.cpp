#include "ui/QuickExceptionView.h"

#include "base/Text.h"
#include "ui/CaptionLabel.h"
#include "ui/Metrics.h"
#include "ui/WindowServices.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace velmora {

namespace {

bool isBlank(const QString& text) {
    return trimWhitespaceAndNewlines(text.toStdString()).empty();
}

QPushButton* button(const QString& name, const QString& text) {
    auto* made = new QPushButton(text);
    made->setObjectName(name);
    made->setAutoDefault(true);  // Return presses the one that has the focus
    return made;
}

}  // namespace

QuickExceptionView::QuickExceptionView(WindowServices& services)
    : ManagedWindow(windows::quickException, tr("Add Proxy Exception"), services.defaults),
      services_(services),
      text_(new QLineEdit),
      add_(button(QStringLiteral("add"), tr("Add"))) {
    setWindowFlags(Qt::Dialog);
    fill();
    updateAdd();
    restorePlace({420, 160});
}

void QuickExceptionView::fill() {
    auto* title = new QLabel(tr("Add Proxy Exception"));
    title->setObjectName(QStringLiteral("title"));
    QFont headline = metrics::scaled(title->font(), metrics::titleScale);
    headline.setWeight(QFont::Medium);
    title->setFont(headline);
    text_->setObjectName(QStringLiteral("text"));
    text_->setPlaceholderText(tr("e.g. %1").arg(QStringLiteral("*.corp.example")));
    text_->setAccessibleName(tr("Host"));
    auto* caption = new CaptionLabel(tr("The matching host will bypass the proxy and connect DIRECT."));
    text_->setAccessibleDescription(caption->text());
    QPushButton* fullList = button(QStringLiteral("fullList"), tr("Edit Full List…"));
    QPushButton* cancel = button(QStringLiteral("cancel"), tr("Cancel"));
    add_->setDefault(true);
    connect(text_, &QLineEdit::textChanged, this, &QuickExceptionView::updateAdd);
    connect(text_, &QLineEdit::returnPressed, this, &QuickExceptionView::add);
    connect(fullList, &QPushButton::clicked, this, [this] { services_.openManagedWindow(windows::exceptionsEditor); });
    connect(cancel, &QPushButton::clicked, this, &QuickExceptionView::close);
    connect(add_, &QPushButton::clicked, this, &QuickExceptionView::add);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(metrics::related);
    buttons->addWidget(fullList);
    buttons->addStretch();
    buttons->addWidget(cancel);
    buttons->addWidget(add_);

    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(metrics::margin, metrics::margin, metrics::margin, metrics::margin);
    column->setSpacing(0);
    column->addWidget(title);
    column->addSpacing(metrics::group);
    column->addWidget(text_);
    column->addSpacing(metrics::caption);
    column->addWidget(caption);
    column->addStretch();
    column->addSpacing(metrics::group);
    column->addLayout(buttons);
    setCentralWidget(page);
}

void QuickExceptionView::showEvent(QShowEvent* event) {
    ManagedWindow::showEvent(event);
    text_->setFocus();
}

void QuickExceptionView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
    } else {
        ManagedWindow::keyPressEvent(event);
    }
}

void QuickExceptionView::resizeEvent(QResizeEvent* event) {
    ManagedWindow::resizeEvent(event);
    // A window does not ask its content how high it gets when its text wraps.
    centralWidget()->setMinimumHeight(centralWidget()->layout()->totalHeightForWidth(centralWidget()->width()));
}

void QuickExceptionView::add() {
    if (isBlank(text_->text())) {
        return;
    }
    services_.manager.addProxyException(text_->text().toStdString());
    close();
}

void QuickExceptionView::updateAdd() {
    add_->setEnabled(!isBlank(text_->text()));
}

}  // namespace velmora
