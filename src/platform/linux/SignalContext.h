#pragma once

#include <glib.h>

namespace velmora {

/// Where the signals of GLib objects go instead of the application's event loop, which then neither has to run for them
/// nor calls into them. Must outlive the objects that are made while a Scope of it lives.
class SignalContext final {
public:
    SignalContext() = default;
    SignalContext(const SignalContext&) = delete;
    SignalContext& operator=(const SignalContext&) = delete;
    ~SignalContext() {
        dispatchPending();  // GLib frees what belonged to the objects' subscriptions from here
        g_main_context_unref(context_);
    }

    /// Delivers what has arrived. Does not wait.
    void dispatchPending() const {
        while (g_main_context_iteration(context_, FALSE) != FALSE) {
        }
    }

    /// While it lives, objects that this thread makes send their signals to the context.
    class Scope final {
    public:
        explicit Scope(const SignalContext& signals) : context_(signals.context_) {
            g_main_context_push_thread_default(context_);
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        ~Scope() { g_main_context_pop_thread_default(context_); }

    private:
        GMainContext* context_;
    };

private:
    GMainContext* context_ = g_main_context_new();
};

}  // namespace velmora
