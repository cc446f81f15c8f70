#pragma once

#include <libgimp/gimp.h>

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "host/document.h"

namespace imgbasic::host {

struct BufferRelease {
    void operator()(GeglBuffer* buffer) const { g_object_unref(buffer); }
};
/// A buffer of GEGL's; releasing one of a drawable hands what was written on to GIMP.
using BufferHandle = std::unique_ptr<GeglBuffer, BufferRelease>;

/// Where a layer lies, in the coordinates of its image; parts may be outside the image.
PixelRect ExtentOf(gint32 layer);

/// The smallest rectangle around both; an empty one counts for nothing.
PixelRect Around(PixelRect a, PixelRect b);

/// A document without layers that covers a part of an image.
Document DocumentFor(PixelRect room);

/// The layer, its name and pixels, in a document that covers `room`, in the image's coordinates.
/// The samples become the document's as a file's of 8 or 16 bits do; other precisions are rounded
/// to 16 bits first. The numbers count as they are, whatever the profile. Throws FileError when
/// memory is too small.
Layer ReadLayer(gint32 layer, PixelRect room);

/// For each channel the layer that held it before a filter ran: where the filter left a channel as
/// it was, its samples come back exactly, also those that a document has no number for.
using ChannelOrigins = std::array<gint32, 4>;

/// The part inside `extent` of the pixels of a document that covers `room`, both in the image's
/// coordinates, for a layer of the same image as `layer`.
BufferHandle ToBuffer(gint32 layer, PixelRect extent, const std::vector<RGBA16>& pixels,
                      PixelRect room, const std::optional<ChannelOrigins>& origins);

BufferHandle CopyOf(GeglBuffer* buffer);

void CopyPixels(GeglBuffer* from, GeglBuffer* to);

}  // namespace imgbasic::host
