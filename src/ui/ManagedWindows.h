#pragma once

#include "ui/ManagedWindow.h"
#include "ui/WindowServices.h"

#include <QPointer>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace velmora {

/// The windows of the program by their names. Each is made when it is opened, there once at most, and gone when it is
/// closed. Main thread.
class ManagedWindows final {
public:
    explicit ManagedWindows(WindowServices& services) : services_(services) {}
    ManagedWindows(const ManagedWindows&) = delete;
    ManagedWindows& operator=(const ManagedWindows&) = delete;
    /// Closes those that are open.
    ~ManagedWindows();

    [[nodiscard]] static bool contains(std::string_view id);

    /// Makes the window unless it is there, and brings it forward. The name is one that `contains` knows.
    ManagedWindow& open(std::string_view id);

    /// Null while it is closed.
    [[nodiscard]] ManagedWindow* find(std::string_view id) const;

private:
    WindowServices& services_;
    std::map<std::string, QPointer<ManagedWindow>, std::less<>> open_;
};

}  // namespace velmora
