#include "ui/HostDetailView.h"

#include "ui/WindowServices.h"

namespace velmora {

HostDetailView::HostDetailView(WindowServices& services, const Uuid& host, QWidget* parent)
    : QWidget(parent), services_(services), id_(host) {
    (void)services_;
}

}  // namespace velmora
