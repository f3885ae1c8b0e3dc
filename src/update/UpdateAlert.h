#pragma once

#include <functional>
#include <string>

namespace velmora {

/// Tells the user, in front of everything else, that something went wrong.
class UpdateAlert {
public:
    UpdateAlert() = default;
    UpdateAlert(const UpdateAlert&) = delete;
    UpdateAlert& operator=(const UpdateAlert&) = delete;
    virtual ~UpdateAlert() = default;

    /// Brings the application to the front and shows a modal alert. Calls back once, when the user has dismissed it,
    /// during the call or later. Main thread.
    virtual void show(const std::string& message, const std::string& information, std::function<void()> dismissed) = 0;
};

}  // namespace velmora
