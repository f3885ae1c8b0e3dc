#include "ui/ExceptionsEditorView.h"

#include "base/Text.h"
#include "pac/ProxyExceptions.h"
#include "ui/CaptionLabel.h"
#include "ui/FindBar.h"
#include "ui/FindButton.h"
#include "ui/IconButton.h"
#include "ui/Metrics.h"
#include "ui/PacTextEditor.h"
#include "ui/WindowServices.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>

namespace velmora {

ExceptionsEditorView::ExceptionsEditorView(WindowServices& services)
    : ManagedWindow(windows::exceptionsEditor, tr("Proxy Exceptions"), services.defaults),
      services_(services),
      quickAdd_(new QLineEdit),
      content_(new PacTextEditor),
      count_(new QLabel),
      save_(new QPushButton(tr("Save"))) {
    fill();
    content_->setText(QString::fromStdString(services_.manager.proxyExceptions().get()));
    connect(content_, &PacTextEditor::edited, this, [this] {
        setDirty(true);
        showCount();
    });
    // What is added elsewhere meanwhile must not be lost with the next Save.
    changedElsewhere_ = services_.manager.proxyExceptions().observe([this] {
        if (!dirty_) {
            content_->setText(QString::fromStdString(services_.manager.proxyExceptions().get()));
            showCount();
        }
    });
    showCount();
    quickAdd_->setFocus();
    restorePlace({560, 560});
}

void ExceptionsEditorView::fill() {
    quickAdd_->setObjectName(QStringLiteral("quickAdd"));
    quickAdd_->setPlaceholderText(tr("Add host to bypass proxy (%1)").arg(QStringLiteral("*.corp.example")));
    quickAdd_->setAccessibleName(tr("Add host to bypass proxy"));
    auto* add = new IconButton(QStringLiteral("plus-circle-fill"), tr("Add to the list"));
    auto* find = new FindButton;
    content_->setObjectName(QStringLiteral("content"));
    content_->setAccessibleName(tr("Hosts that bypass the proxy, one per line"));
    content_->setTabChangesFocus(true);
    auto* bar = new FindBar(*content_);
    auto* caption = new CaptionLabel(
        tr("One host pattern per line. Wildcards allowed (e.g. 10.0.*, *.corp). Saved exceptions are added to the PAC "
           "ahead of all proxy rules."));
    caption->setObjectName(QStringLiteral("caption"));
    content_->setAccessibleDescription(caption->text());
    count_->setObjectName(QStringLiteral("count"));
    count_->setTextFormat(Qt::PlainText);
    save_->setObjectName(QStringLiteral("save"));
    const QKeySequence shortcut(QKeySequence::Save);
    save_->setToolTip(QStringLiteral("%1 (%2)").arg(tr("Save"), shortcut.toString(QKeySequence::NativeText)));
    connect(new QShortcut(shortcut, this), &QShortcut::activated, save_, &QPushButton::click);
    connect(quickAdd_, &QLineEdit::returnPressed, this, &ExceptionsEditorView::appendQuickAdd);
    connect(add, &IconButton::clicked, this, &ExceptionsEditorView::appendQuickAdd);
    connect(save_, &QPushButton::clicked, this, &ExceptionsEditorView::save);

    auto* top = new QHBoxLayout;
    top->setSpacing(metrics::related);
    top->addWidget(quickAdd_, 1);
    top->addWidget(add);
    top->addWidget(find);
    auto* bottom = new QHBoxLayout;
    bottom->setSpacing(metrics::related);
    bottom->addWidget(count_, 1);
    bottom->addWidget(save_);

    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(metrics::margin, metrics::margin, metrics::margin, metrics::margin);
    column->setSpacing(0);
    column->addLayout(top);
    column->addSpacing(metrics::related);
    column->addWidget(bar);
    column->addWidget(content_, 1);
    column->addSpacing(metrics::caption);
    column->addWidget(caption);
    column->addSpacing(metrics::related);
    column->addLayout(bottom);
    setCentralWidget(page);
}

void ExceptionsEditorView::appendQuickAdd() {
    const std::string pattern = normalizeExceptionPattern(quickAdd_->text().toStdString());
    if (pattern.empty()) {
        return;
    }
    auto list = parseExceptions(content_->text().toStdString());
    if (std::find(list.begin(), list.end(), pattern) == list.end()) {
        list.push_back(pattern);
        content_->setText(QString::fromStdString(join(list, "\n")));
        setDirty(true);
        showCount();
    }
    quickAdd_->clear();
    quickAdd_->setFocus();
}

void ExceptionsEditorView::save() {
    const std::string exceptions = normalizeExceptions(content_->text().toStdString());
    services_.manager.setProxyExceptions(exceptions);
    content_->setText(QString::fromStdString(exceptions));
    setDirty(false);
    showCount();
}

void ExceptionsEditorView::setDirty(bool dirty) {
    dirty_ = dirty;
    save_->setDefault(dirty);  // how it looks: there is something to save
}

void ExceptionsEditorView::showCount() {
    const auto count = static_cast<int>(parseExceptions(content_->text().toStdString()).size());
    count_->setText(count == 1 ? tr("1 exception — matching hosts connect DIRECT")
                               : tr("%n exceptions — matching hosts connect DIRECT", nullptr, count));
}

}  // namespace velmora
