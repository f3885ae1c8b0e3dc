#include "platform/qt/QtWorkspace.h"

#include <QDesktopServices>
#include <QString>
#include <QUrl>

namespace velmora {

void QtWorkspace::open(const std::filesystem::path& file) {
    QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(file.string())));
}

}  // namespace velmora
