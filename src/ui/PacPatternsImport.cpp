#include "ui/PacPatternsImport.h"

#include "ui/WindowServices.h"

#include <QPromise>
#include <QThreadPool>

#include <memory>

namespace velmora {

PacPatternsImport::PacPatternsImport(WindowServices& services, const std::filesystem::path& file)
    : QObject(&services.commands), services_(services) {
    connect(&entries_, &QFutureWatcher<Entries>::finished, this, &PacPatternsImport::finish);
    const auto promise = std::make_shared<QPromise<Entries>>();
    promise->start();
    entries_.setFuture(promise->future());
    QThreadPool::globalInstance()->start([promise, file] {
        promise->addResult(PacImporter::parse(PacImporter::readScript(file)));
        promise->finish();
    });
}

void PacPatternsImport::finish() {
    const Entries entries = entries_.future().takeResult();
    const std::size_t additions = services_.manager.importPacPatterns(entries);
    const auto [message, informativeText] = PacImporter::outcome(entries, additions);
    Q_EMIT finished();
    services_.dialogs.alert(
        {.message = QString::fromStdString(message), .informativeText = QString::fromStdString(informativeText)});
    deleteLater();
}

}  // namespace velmora
