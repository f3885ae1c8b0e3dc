#include "ui/PacProxySection.h"

#include "pac/ProxyExceptions.h"
#include "ui/ElidedLabel.h"
#include "ui/PacPatternsImport.h"
#include "ui/SymbolIcon.h"
#include "ui/WindowServices.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

namespace velmora {

PacProxySection::PacProxySection(WindowServices& services)
    : SettingsSection(tr("PAC Proxy")),
      services_(services),
      exceptionCount_(new QLabel),
      import_(new QPushButton(tr("Import Patterns from File…"))) {
    addUrl();
    addExceptions();
    addButtons();
    showExceptionCount();
    exceptions_ = services_.manager.proxyExceptions().observe([this] { showExceptionCount(); });
}

void PacProxySection::addUrl() {
    auto* url = new QLabel(QString::fromStdString(services_.manager.pacServer().url()));
    url->setObjectName(QStringLiteral("pacUrl"));
    url->setTextFormat(Qt::PlainText);
    url->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    auto* copy = new QToolButton;
    copy->setObjectName(QStringLiteral("copyPacUrl"));
    copy->setIcon(symbolIcon(QStringLiteral("doc-on-doc")));
    copy->setAutoRaise(true);
    copy->setToolTip(tr("Copy PAC URL"));
    copy->setAccessibleName(tr("Copy PAC URL"));
    connect(copy, &QToolButton::clicked, this, [this] {
        QGuiApplication::clipboard()->setText(QString::fromStdString(services_.manager.pacServer().url()));
    });
    addRow(tr("PAC URL"), nullptr, sideBySide({url, copy}));
}

void PacProxySection::addExceptions() {
    exceptionCount_->setObjectName(QStringLiteral("exceptionCount"));
    auto* edit = new QPushButton(tr("Edit Exceptions…"));
    edit->setObjectName(QStringLiteral("editExceptions"));
    connect(edit, &QPushButton::clicked, this, [this] { services_.openManagedWindow(windows::exceptionsEditor); });
    addRow(tr("Exceptions"), edit, growingFirst({exceptionCount_, edit}),
           tr("Hosts in the exception list bypass the proxy (DIRECT). Add quickly from the menu bar → “Add Proxy "
              "Exception…”."));
}

void PacProxySection::addButtons() {
    auto* edit = new QPushButton(tr("Edit PAC…"));
    edit->setObjectName(QStringLiteral("editPac"));
    connect(edit, &QPushButton::clicked, this, [this] { services_.openManagedWindow(windows::pacEditor); });
    import_->setObjectName(QStringLiteral("importPatterns"));
    connect(import_, &QPushButton::clicked, this, &PacProxySection::importPatterns);
    addRow({}, nullptr, sideBySide({edit, import_}));
}

void PacProxySection::importPatterns() {
    const std::string title = tr("Select PAC File").toStdString();
    const std::string message = tr("Choose a proxy.pac file to import patterns from").toStdString();
    const auto file = services_.dialogs.chooseFileToOpen(title, message);
    if (!file) {
        return;
    }
    import_->setEnabled(false);
    const auto* running = new PacPatternsImport(services_, *file);
    connect(running, &PacPatternsImport::finished, this, [this] { import_->setEnabled(true); });
}

void PacProxySection::showExceptionCount() {
    const auto count = static_cast<int>(parseExceptions(services_.manager.proxyExceptions().get()).size());
    if (count == 0) {
        exceptionCount_->setText(tr("None"));
    } else {
        exceptionCount_->setText(count == 1 ? tr("1 host") : tr("%n hosts", nullptr, count));
    }
}

}  // namespace velmora
