#include "ui/SyncSection.h"

#include "ui/ElidedLabel.h"
#include "ui/WindowServices.h"

#include <QApplication>
#include <QEvent>
#include <QPushButton>

namespace velmora {

SyncSection::SyncSection(WindowServices& services)
    : SettingsSection(tr("Sync")),
      services_(services),
      folder_(new ElidedLabel),
      disable_(new QPushButton(tr("Disable"))) {
    folder_->setObjectName(QStringLiteral("syncFolder"));
    auto* choose = new QPushButton(tr("Choose Folder…"));
    choose->setObjectName(QStringLiteral("chooseFolder"));
    disable_->setObjectName(QStringLiteral("disableSync"));
    connect(choose, &QPushButton::clicked, this, &SyncSection::chooseFolder);
    connect(disable_, &QPushButton::clicked, this, &SyncSection::disable);
    addRow(tr("Sync Folder"), choose, growingFirst({folder_, choose, disable_}),
           tr("Point to a Google Drive, Dropbox, or any shared folder to keep tunnels in sync across Macs."));
    refresh();
}

void SyncSection::changeEvent(QEvent* event) {
    SettingsSection::changeEvent(event);
    if (event->type() == QEvent::PaletteChange && folder_ != nullptr) {
        refresh();
    }
}

void SyncSection::chooseFolder() {
    const auto folder = services_.dialogs.chooseFolder(
        tr("Choose Sync Folder"),
        tr("Pick your Google Drive, Dropbox, or any shared folder. Velmora will keep velmora-sync.json there."));
    if (!folder) {
        return;
    }
    FolderSync& sync = services_.manager.folderSync();
    sync.setFolder(*folder);
    sync.push(services_.manager.hosts().get());
    refresh();
}

void SyncSection::disable() {
    services_.manager.folderSync().disable();
    refresh();
}

void SyncSection::refresh() {
    const auto& folder = services_.manager.folderSync().folder();
    folder_->setFullText(folder ? QString::fromStdString(folder->string()) : tr("Not configured"));
    QPalette colors = palette();
    if (!folder) {
        colors.setColor(QPalette::WindowText, colors.color(QPalette::PlaceholderText));
    }
    folder_->setPalette(colors);
    disable_->setVisible(folder.has_value());
}

}  // namespace velmora
