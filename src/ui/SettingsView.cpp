#include "ui/SettingsView.h"

#include "ui/ConnectionsSection.h"
#include "ui/GeneralSection.h"
#include "ui/Metrics.h"
#include "ui/PacProxySection.h"
#include "ui/SyncSection.h"
#include "ui/UpdatesSection.h"
#include "ui/WindowServices.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace velmora {

SettingsView::SettingsView(WindowServices& services)
    : ManagedWindow(windows::settings, tr("Settings"), services.defaults),
      sections_{new GeneralSection(services), new ConnectionsSection(services), new SyncSection(services),
                new PacProxySection(services)} {
    auto* updates = new UpdatesSection(services);
    sections_.back() = updates;
    auto* column = new QWidget;
    column->setMaximumWidth(metrics::widestColumn);
    auto* groups = new QVBoxLayout(column);
    groups->setContentsMargins(0, 0, 0, 0);
    groups->setSpacing(metrics::section);
    for (SettingsSection* section : sections_) {
        groups->addWidget(section);
    }
    groups->addStretch();

    auto* content = new QWidget;
    auto* margins = new QHBoxLayout(content);
    margins->setContentsMargins(metrics::margin, metrics::margin, metrics::margin, metrics::margin);
    margins->addWidget(column);

    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(content);
    setCentralWidget(scroll);
    connect(updates, &UpdatesSection::answered, this, [scroll, updates] {
        QTimer::singleShot(0, updates,
                           [scroll, updates] { scroll->ensureWidgetVisible(updates); });  // once it has room
    });
    restorePlace({680, 760});
}

void SettingsView::changeEvent(QEvent* event) {
    ManagedWindow::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        alignLabels();
    }
}

void SettingsView::showEvent(QShowEvent* event) {
    alignLabels();
    ManagedWindow::showEvent(event);
}

void SettingsView::alignLabels() {
    int widest = 0;
    for (const SettingsSection* section : sections_) {
        widest = std::max(widest, section->labelWidth());
    }
    for (SettingsSection* section : sections_) {
        section->setLabelWidth(widest);
    }
}

}  // namespace velmora
