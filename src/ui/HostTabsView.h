#pragma once

#include "base/Observable.h"

#include <QWidget>

#include <string>

class QStackedWidget;

namespace velmora {

class HostBinding;
class SegmentedControl;
struct WindowServices;

/// The form of a host in three tabs. Each scrolls by itself and keeps its place. Main thread.
class HostTabsView final : public QWidget {
    Q_OBJECT

public:
    /// All of these outlive the form.
    HostTabsView(WindowServices& services, HostBinding& host, Observable<std::string>& password,
                 QWidget* parent = nullptr);

    /// 0 General, 1 Connection, 2 Advanced.
    void setTab(int tab);

    /// Of the General tab.
    [[nodiscard]] QWidget* firstField() const { return firstField_; }

private:
    SegmentedControl* picker_;
    QStackedWidget* pages_;
    QWidget* firstField_ = nullptr;
};

}  // namespace velmora
