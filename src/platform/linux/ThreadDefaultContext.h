#pragma once

#include <glib.h>

namespace velmora {

/// While it lives, the signals that GLib objects created on this thread subscribe to go to `context`, not to the
/// application's event loop. Only from the thread that created it.
class ThreadDefaultContext final {
public:
    explicit ThreadDefaultContext(GMainContext* context) : context_(context) {
        g_main_context_push_thread_default(context_);
    }
    ThreadDefaultContext(const ThreadDefaultContext&) = delete;
    ThreadDefaultContext& operator=(const ThreadDefaultContext&) = delete;
    ~ThreadDefaultContext() { g_main_context_pop_thread_default(context_); }

private:
    GMainContext* context_;
};

}  // namespace velmora
