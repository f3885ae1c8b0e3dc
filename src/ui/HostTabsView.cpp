#include "ui/HostTabsView.h"

#include "ui/AdvancedTabView.h"
#include "ui/ConnectionTabView.h"
#include "ui/FormLayout.h"
#include "ui/FormScrollArea.h"
#include "ui/GeneralTabView.h"
#include "ui/Metrics.h"
#include "ui/SegmentedControl.h"
#include "ui/WindowServices.h"

#include <QHBoxLayout>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace velmora {

HostTabsView::HostTabsView(WindowServices& services, HostBinding& host, Observable<std::string>& password,
                           QWidget* parent)
    : QWidget(parent),
      picker_(new SegmentedControl(tr("Tabs"), {tr("General"), tr("Connection"), tr("Advanced")})),
      pages_(new QStackedWidget) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(metrics::related);
    picker_->setObjectName(QStringLiteral("tabs"));
    auto* pickerRow = new QWidget;
    auto* pickerPlace = new QHBoxLayout(pickerRow);
    pickerPlace->setContentsMargins(0, 0, 0, 0);
    pickerPlace->addWidget(picker_);
    pickerPlace->addStretch();
    column->addWidget(forms::column(pickerRow));
    column->addWidget(pages_, 1);

    auto* general = new GeneralTabView(services.manager, host);
    firstField_ = general->firstField();
    auto* const generalPage = new FormScrollArea(general);
    pages_->addWidget(generalPage);
    pages_->addWidget(new FormScrollArea(new ConnectionTabView(services.dialogs, host, password)));
    pages_->addWidget(new FormScrollArea(new AdvancedTabView(host)));
    connect(picker_, &SegmentedControl::chosen, pages_, &QStackedWidget::setCurrentIndex);
    connect(general, &GeneralTabView::rowAdded, generalPage, [generalPage](QWidget* row) {
        QTimer::singleShot(0, row,
                           [generalPage, row] { generalPage->ensureWidgetVisible(row); });  // once it has a place
    });
}

void HostTabsView::setTab(int tab) {
    picker_->setCurrentIndex(tab);
    pages_->setCurrentIndex(tab);
}

}  // namespace velmora
