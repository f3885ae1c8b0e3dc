#pragma once

#include <glib.h>

namespace velmora {

/// Takes the error that a GLib call leaves behind and frees it.
class GLibError final {
public:
    GLibError() = default;
    GLibError(const GLibError&) = delete;
    GLibError& operator=(const GLibError&) = delete;
    ~GLibError() { clear(); }

    /// The place to hand to a call. Forgets what an earlier call left there.
    [[nodiscard]] GError** out() {
        clear();
        return &error_;
    }
    explicit operator bool() const { return error_ != nullptr; }
    [[nodiscard]] bool matches(GQuark domain, int code) const { return g_error_matches(error_, domain, code) != FALSE; }

private:
    void clear() { g_clear_error(&error_); }

    GError* error_ = nullptr;
};

}  // namespace velmora
