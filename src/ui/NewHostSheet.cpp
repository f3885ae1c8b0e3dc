#include "ui/NewHostSheet.h"

#include "ui/WindowServices.h"

#include <utility>

namespace velmora {

NewHostSheet::NewHostSheet(WindowServices& services, OnCreate onCreate, QWidget* parent)
    : QDialog(parent), services_(services), onCreate_(std::move(onCreate)) {
    (void)services_;
}

}  // namespace velmora
