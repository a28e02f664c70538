#pragma once
// Starting libvips, and owning handles for its objects, so every error path lets go of them.

#include <memory>
#include <vips/vips.h>

namespace lumivale {

struct VipsUnref {
    void operator()(void* object) const {
        if (object) g_object_unref(object);
    }
};

inline void ignoreVipsMessage(const gchar*, GLogLevelFlags, const gchar*, gpointer) {}

// Starts libvips once per process, whichever thread needs it first; false when it cannot start.
inline bool vipsStarted() {
    static const bool started = [] {
        if (VIPS_INIT("lumivale")) return false;
        // Operations are not cached: every picture is opened once, and memory stays bounded.
        vips_cache_set_max(0);
        // A damaged file is reported as a failure of our own, not as warnings on the terminal.
        g_log_set_handler("VIPS", GLogLevelFlags(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_MESSAGE),
                          ignoreVipsMessage, nullptr);
        return true;
    }();
    return started;
}

// An owned libvips object (image, source).
template <typename T> using VipsRef = std::unique_ptr<T, VipsUnref>;

} // namespace lumivale
