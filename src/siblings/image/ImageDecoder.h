#pragma once

#include "foundation/OQGeometry.h"
#include "siblings/image/Pixels.h"

#include <gdk-pixbuf/gdk-pixbuf.h>
#include <memory>
#include <string_view>

namespace pxvis::image {

constexpr size_t kMaxFileBytes = size_t { 64 } << 20;

struct ReleasePixbuf
{
    void operator()(GdkPixbuf* pixbuf) const { g_object_unref(pixbuf); }
};

using Pixbuf = std::unique_ptr<GdkPixbuf, ReleasePixbuf>;

// Decodes a picture file, its first frame: 8 bits a channel, three or four channels, not yet
// turned. Null if it is damaged, of an unknown kind, not of an allowed size, or would take too
// long. A JPEG may come out at half, a quarter or an eighth of its size where both sides are still
// at least `enough`; 0 asks for all of it. The pixels that the decoder goes over are added to
// `pixels`. Any thread. May throw std::bad_alloc.
Pixbuf Decode(std::string_view bytes, int32_t enough, int64_t& pixels);

// Some pictures lie on their side or are mirrored, and say so.
OQSize SizeOfUpright(GdkPixbuf* pixbuf);

// Into a picture of that size.
void CopyUpright(const Pixels& target, GdkPixbuf* pixbuf);

}
