#pragma once
// Owning handles for libvips objects, so every error path lets go of them.

#include <memory>
#include <vips/vips.h>

namespace lumivale {

struct VipsUnref {
    void operator()(void* object) const {
        if (object) g_object_unref(object);
    }
};

// An owned libvips object (image, source).
template <typename T> using VipsRef = std::unique_ptr<T, VipsUnref>;

} // namespace lumivale
