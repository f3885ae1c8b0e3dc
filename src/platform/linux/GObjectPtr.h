#pragma once

#include <glib-object.h>

#include <memory>

namespace velmora {

struct GObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// Owns one reference of a GObject.
template <typename T>
using GObjectPtr = std::unique_ptr<T, GObjectUnref>;

}  // namespace velmora
