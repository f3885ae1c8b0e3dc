#include "ui/ManagedWindows.h"

#include "ui/AboutView.h"
#include "ui/ContentView.h"
#include "ui/ExceptionsEditorView.h"
#include "ui/PacEditorView.h"
#include "ui/QuickExceptionView.h"
#include "ui/SettingsView.h"

#include <algorithm>
#include <array>

namespace velmora {

namespace {

template <typename View>
ManagedWindow* make(WindowServices& services) {
    return new View(services);
}

struct Entry {
    std::string_view id;
    ManagedWindow* (*make)(WindowServices& services);
};

constexpr std::array<Entry, 6> entries{{
    {windows::main, make<ContentView>},
    {windows::settings, make<SettingsView>},
    {windows::about, make<AboutView>},
    {windows::pacEditor, make<PacEditorView>},
    {windows::exceptionsEditor, make<ExceptionsEditorView>},
    {windows::quickException, make<QuickExceptionView>},
}};

const Entry* entry(std::string_view id) {
    const auto* const found =
        std::find_if(entries.begin(), entries.end(), [id](const Entry& candidate) { return candidate.id == id; });
    return found != entries.end() ? found : nullptr;
}

}  // namespace

ManagedWindows::~ManagedWindows() {
    for (const auto& [id, window] : open_) {
        if (window) {
            window->close();
            delete window;
        }
    }
}

bool ManagedWindows::contains(std::string_view id) {
    return entry(id) != nullptr;
}

ManagedWindow& ManagedWindows::open(std::string_view id) {
    QPointer<ManagedWindow>& window = open_[std::string(id)];
    // A window that is closed is there for one more turn of the event loop.
    if (!window || !window->isVisible()) {
        window = entry(id)->make(services_);
    }
    if (window->isMinimized()) {
        window->showNormal();
    }
    window->show();
    window->raise();
    window->activateWindow();
    return *window;
}

ManagedWindow* ManagedWindows::find(std::string_view id) const {
    const auto found = open_.find(id);
    return found != open_.end() && found->second && found->second->isVisible() ? found->second.data() : nullptr;
}

}  // namespace velmora
