#pragma once

#include "pac/PacImporter.h"

#include <QFutureWatcher>
#include <QObject>

#include <filesystem>
#include <vector>

namespace velmora {

struct WindowServices;

/// Takes the host patterns of somebody's proxy script over into the Dynamic rules, and says how that went. The script
/// is read and taken apart away from the main thread. Ends by itself, whether its window is there or not. Main thread.
class PacPatternsImport final : public QObject {
    Q_OBJECT

public:
    using Entries = std::vector<PacImporter::Entry>;

    /// Begins. The object deletes itself after `finished`.
    PacPatternsImport(WindowServices& services, const std::filesystem::path& file);

Q_SIGNALS:
    void finished();

private:
    void finish();

    WindowServices& services_;
    QFutureWatcher<Entries> entries_;
};

}  // namespace velmora
