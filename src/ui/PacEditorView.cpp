#include "ui/PacEditorView.h"

#include "ui/CaptionLabel.h"
#include "ui/FindBar.h"
#include "ui/FindButton.h"
#include "ui/Metrics.h"
#include "ui/PacTextEditor.h"
#include "ui/SymbolIcon.h"
#include "ui/WindowServices.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace velmora {

PacEditorView::PacEditorView(WindowServices& services)
    : ManagedWindow(windows::pacEditor, tr("PAC Editor"), services.defaults),
      services_(services),
      content_(new PacTextEditor),
      mode_(new QLabel),
      apply_(new QPushButton(tr("Apply"))) {
    fill();
    content_->setHighlight(true);
    content_->setText(QString::fromStdString(services_.manager.pacServer().content()));
    connect(content_, &PacTextEditor::edited, this, [this] { setDirty(true); });
    mirrorMode();
    content_->setFocus();
    restorePlace({920, 600});
}

void PacEditorView::fill() {
    mode_->setObjectName(QStringLiteral("mode"));
    mode_->setTextFormat(Qt::PlainText);
    auto* find = new FindButton;
    auto* copy = new QPushButton(symbolIcon(QStringLiteral("doc-on-doc")), tr("Copy PAC URL"));
    copy->setObjectName(QStringLiteral("copyUrl"));
    auto* regenerate = new QPushButton(tr("Regenerate from Hosts"));
    regenerate->setObjectName(QStringLiteral("regenerate"));
    apply_->setObjectName(QStringLiteral("apply"));
    const QKeySequence shortcut(QKeySequence::Save);
    apply_->setToolTip(QStringLiteral("%1 (%2)").arg(tr("Apply"), shortcut.toString(QKeySequence::NativeText)));
    connect(new QShortcut(shortcut, this), &QShortcut::activated, apply_, &QPushButton::click);
    content_->setObjectName(QStringLiteral("content"));
    content_->setAccessibleName(tr("PAC script"));
    content_->setAccessibleDescription(tr("Tab writes a tab; Shift+Tab and Control+Tab leave the text."));
    auto* bar = new FindBar(*content_);
    auto* caption = new CaptionLabel(
        tr("Press ⌘F to find. Manual edits stop auto-regeneration until you click \"Regenerate from Hosts\"."));
    connect(copy, &QPushButton::clicked, this, &PacEditorView::copyUrl);
    connect(regenerate, &QPushButton::clicked, this, &PacEditorView::regenerate);
    connect(apply_, &QPushButton::clicked, this, &PacEditorView::apply);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(metrics::related);
    buttons->addWidget(mode_, 1);
    buttons->addWidget(find);
    buttons->addWidget(copy);
    buttons->addWidget(regenerate);
    buttons->addWidget(apply_);

    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(metrics::margin, metrics::margin, metrics::margin, metrics::margin);
    column->setSpacing(0);
    column->addLayout(buttons);
    column->addSpacing(metrics::related);
    column->addWidget(bar);
    column->addWidget(content_, 1);
    column->addSpacing(metrics::caption);
    column->addWidget(caption);
    setCentralWidget(page);
}

void PacEditorView::copyUrl() {
    QGuiApplication::clipboard()->setText(QString::fromStdString(services_.manager.pacServer().url()));
}

void PacEditorView::regenerate() {
    content_->setText(QString::fromStdString(services_.manager.regeneratePac()));
    mirrorMode();
    setDirty(false);
}

void PacEditorView::apply() {
    services_.manager.applyPac(content_->text().toStdString());
    mirrorMode();
    setDirty(false);
}

void PacEditorView::setDirty(bool dirty) {
    dirty_ = dirty;
    apply_->setDefault(dirty);  // how it looks: there is something to apply
}

void PacEditorView::mirrorMode() {
    isCustom_ = services_.manager.pacServer().isCustom();
    mode_->setText(isCustom_ ? tr("Custom (manual edits)") : tr("Auto-generated from hosts"));
}

}  // namespace velmora
