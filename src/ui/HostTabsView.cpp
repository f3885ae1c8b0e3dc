#include "ui/HostTabsView.h"

#include "ui/AdvancedTabView.h"
#include "ui/ConnectionTabView.h"
#include "ui/FormLayout.h"
#include "ui/GeneralTabView.h"
#include "ui/Metrics.h"
#include "ui/SegmentedControl.h"
#include "ui/WindowServices.h"

#include <QScrollArea>
#include <QScrollBar>
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
    column->addWidget(forms::centredColumn(pickerRow));
    column->addWidget(pages_, 1);

    auto* general = new GeneralTabView(services.manager, host);
    firstField_ = general->firstField();
    QScrollArea* const generalPage = addPage(general);
    addPage(new ConnectionTabView(services.dialogs, host, password));
    addPage(new AdvancedTabView(host));
    connect(picker_, &SegmentedControl::chosen, pages_, &QStackedWidget::setCurrentIndex);
    connect(general, &GeneralTabView::rowAdded, generalPage, [generalPage](QWidget* row) {
        QTimer::singleShot(0, row,
                           [generalPage, row] { generalPage->ensureWidgetVisible(row); });  // once it has a place
    });
}

int HostTabsView::tab() const {
    return pages_->currentIndex();
}

void HostTabsView::setTab(int tab) {
    picker_->setCurrentIndex(tab);
    pages_->setCurrentIndex(tab);
}

QScrollArea* HostTabsView::addPage(QWidget* form) {
    auto* area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidgetResizable(true);
    area->setFocusPolicy(Qt::NoFocus);
    QWidget* const column = forms::centredColumn(form);
    auto margins = column->layout()->contentsMargins();
    margins.setTop(metrics::related);
    margins.setBottom(metrics::margin);
    column->layout()->setContentsMargins(margins);
    area->setWidget(column);
    pages_->addWidget(area);
    return area;
}

}  // namespace velmora
