#pragma once
// Owning handles for libvips objects and buffers, so every error path lets go of them.

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

struct VipsFree {
    void operator()(void* data) const { g_free(data); }
};

// A buffer that libvips allocated, such as the pixels of vips_image_write_to_memory.
using VipsBuffer = std::unique_ptr<void, VipsFree>;

} // namespace lumivale
