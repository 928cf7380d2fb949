#pragma once

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

// Decodes a picture file, its first frame: 8 bits a channel, three or four channels, not yet turned
// by its orientation. Null if it is damaged, of a kind that isn't a plain bitmap, or not of an
// allowed size. Pictures come from strangers, so no decoder is asked that the first bytes don't
// name, and drawings that may lead to other files are none of them. A JPEG may come out at half, a
// quarter or an eighth of its size where that is still at least `enough` in both sides; 0 asks for
// all of it. Any thread.
Pixbuf Decode(std::string_view bytes, int32_t enough);

// The picture's pixels, upright, top row first to `target`, which has the size that Upright gave.
struct UprightSize
{
    int32_t width;
    int32_t height;
};

UprightSize SizeOfUpright(GdkPixbuf* pixbuf);
void CopyUpright(const Pixels& target, GdkPixbuf* pixbuf);

}
