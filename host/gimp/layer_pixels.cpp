#include "host/gimp/layer_pixels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>

#include "host/gimp/layers.h"
#include "host/memory_limit.h"
#include "host/pixel_room.h"
#include "host/sample_depth.h"

namespace imgbasic::host {
namespace {

/// Samples of a layer as the filters' arithmetic is to see them: not linear, alpha apart.
template <typename Sample>
struct Conversion;

template <>
struct Conversion<uint8_t> {
    static constexpr const char* kFormat = "R'G'B'A u8";
    static uint16_t ToDocument(uint8_t sample) { return FromDepth8(sample); }
    static uint8_t FromDocument(uint16_t value) { return ToDepth8(value); }
    static uint8_t Kept(uint8_t sample, uint8_t /*before*/) { return sample; }
};

template <>
struct Conversion<uint16_t> {
    static constexpr const char* kFormat = "R'G'B'A u16";
    static uint16_t ToDocument(uint16_t sample) { return FromDepth16(sample); }
    static uint16_t FromDocument(uint16_t value) { return ToDepth16(value); }
    static uint16_t Kept(uint16_t sample, uint16_t before) {
        const bool wasLowerTwin = HasLowerTwin(static_cast<uint16_t>(before + 1));
        return static_cast<uint16_t>(HasLowerTwin(sample) && wasLowerTwin ? sample - 1 : sample);
    }
};

/// Every other precision: as 16 bits a channel, but that what a filter leaves keeps all its digits.
template <>
struct Conversion<double> {
    static constexpr const char* kFormat = "R'G'B'A double";
    static constexpr double kFull = 65535;

    static uint16_t Rounded(double sample) {
        // The order of the comparisons takes what is no number for 0.
        const double inside = sample > 0 ? std::min(sample, 1.0) : 0.0;
        return static_cast<uint16_t>(std::lround(inside * kFull));
    }
    static uint16_t ToDocument(double sample) { return FromDepth16(Rounded(sample)); }
    static double FromDocument(uint16_t value) { return ToDepth16(value) / kFull; }
    static double Kept(double sample, double before) {
        const uint16_t kept = Conversion<uint16_t>::Kept(Rounded(sample), Rounded(before));
        return kept == Rounded(before) ? before : kept / kFull;
    }
};

template <typename Sample>
using SampleRow = std::vector<std::array<Sample, 4>>;

template <typename Operation>
void WithSampleType(gint32 image, Operation&& operation) {
    switch (gimp_image_get_precision(image)) {
        case GIMP_PRECISION_U8_GAMMA:
            return operation(uint8_t{});
        case GIMP_PRECISION_U16_GAMMA:
            return operation(uint16_t{});
        default:
            return operation(double{});
    }
}

/// The format in the buffer's own colour space, so that no profile is applied.
template <typename Sample>
const Babl* FormatIn(GeglBuffer* buffer) {
    return babl_format_with_space(Conversion<Sample>::kFormat, gegl_buffer_get_format(buffer));
}

/// Reads a row of the image from a buffer that covers `extent`; what lies outside is zero.
template <typename Sample>
void ReadRow(GeglBuffer* buffer, PixelRect extent, int32_t left, int32_t y,
             SampleRow<Sample>& row) {
    const GeglRectangle place{left - extent.left, y - extent.top, static_cast<int>(row.size()), 1};
    gegl_buffer_get(buffer, &place, 1.0, FormatIn<Sample>(buffer), row.data(), GEGL_AUTO_ROWSTRIDE,
                    GEGL_ABYSS_NONE);
}

PixelRect Common(PixelRect a, PixelRect b) {
    const PixelRect common{std::max(a.left, b.left), std::max(a.top, b.top),
                           std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
    return common.IsEmpty() ? PixelRect{} : common;
}

size_t IndexIn(PixelRect room, int32_t x, int32_t y) {
    return static_cast<size_t>((y - room.top) * room.Width() + (x - room.left));
}

/// The layers that pixels had their channels from, read row by row.
template <typename Sample>
class OriginRows {
  public:
    OriginRows(const ChannelOrigins& origins, size_t width) : origins_(origins), row_(width) {
        for (size_t channel = 0; channel < 4; ++channel) {
            if (IsNew(channel)) {
                buffers_[channel].reset(gimp_drawable_get_buffer(origins[channel]));
                extents_[channel] = ExtentOf(origins[channel]);
            }
        }
    }

    /// Puts back what the filter left as it was.
    void KeepIn(SampleRow<Sample>& samples, int32_t left, int32_t y) {
        for (size_t channel = 0; channel < 4; ++channel) {
            if (IsNew(channel)) {
                ReadRow(buffers_[channel].get(), extents_[channel], left, y, row_);
            }
            for (size_t x = 0; x < samples.size(); ++x) {
                samples[x][channel] =
                    Conversion<Sample>::Kept(samples[x][channel], row_[x][channel]);
            }
        }
    }

  private:
    bool IsNew(size_t channel) const {
        return channel == 0 || origins_[channel] != origins_[channel - 1];
    }

    const ChannelOrigins& origins_;
    std::array<BufferHandle, 4> buffers_;
    std::array<PixelRect, 4> extents_;
    SampleRow<Sample> row_;
};

}  // namespace

PixelRect ExtentOf(gint32 layer) {
    gint left = 0;
    gint top = 0;
    gimp_drawable_offsets(layer, &left, &top);
    return {left, top, left + gimp_drawable_width(layer), top + gimp_drawable_height(layer)};
}

PixelRect Around(PixelRect a, PixelRect b) {
    if (a.IsEmpty() || b.IsEmpty()) {
        return a.IsEmpty() ? b : a;
    }
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

Document DocumentFor(PixelRect room) {
    Document document;
    document.width = static_cast<int32_t>(room.Width());
    document.height = static_cast<int32_t>(room.Height());
    document.bitDepth = 16;
    return document;
}

Layer ReadLayer(gint32 layer, PixelRect room) {
    const auto width = static_cast<int32_t>(room.Width());
    const auto height = static_cast<int32_t>(room.Height());
    Layer read;
    read.name = NameOf(layer);
    RequireMemory(read.name, width, height, 2 * PictureBytes(width, height));
    read.pixels = ZeroPixels(PixelCount(width, height));
    const BufferHandle buffer(gimp_drawable_get_buffer(layer));
    const PixelRect extent = ExtentOf(layer);
    const PixelRect part = Common(extent, room);
    WithSampleType(gimp_item_get_image(layer), [&](auto type) {
        using Sample = decltype(type);
        SampleRow<Sample> row(static_cast<size_t>(part.Width()));
        for (int32_t y = part.top; y < part.bottom; ++y) {
            ReadRow(buffer.get(), extent, part.left, y, row);
            RGBA16* out = &read.pixels[IndexIn(room, part.left, y)];
            for (const auto& [r, g, b, a] : row) {
                using To = Conversion<Sample>;
                *out++ = {To::ToDocument(r), To::ToDocument(g), To::ToDocument(b),
                          To::ToDocument(a)};
            }
        }
    });
    read.bounds = BoundsOf(read.pixels, width, height);
    return read;
}

BufferHandle ToBuffer(gint32 layer, PixelRect extent, const std::vector<RGBA16>& pixels,
                      PixelRect room, const std::optional<ChannelOrigins>& origins) {
    const BufferHandle own(gimp_drawable_get_buffer(layer));
    const GeglRectangle size{0, 0, static_cast<int>(extent.Width()),
                             static_cast<int>(extent.Height())};
    BufferHandle buffer;
    WithSampleType(gimp_item_get_image(layer), [&](auto type) {
        using Sample = decltype(type);
        using To = Conversion<Sample>;
        const Babl* const format = FormatIn<Sample>(own.get());
        buffer.reset(gegl_buffer_new(&size, format));
        SampleRow<Sample> row(static_cast<size_t>(extent.Width()));
        std::optional<OriginRows<Sample>> before;
        if (origins) {
            before.emplace(*origins, row.size());
        }
        for (int32_t y = extent.top; y < extent.bottom; ++y) {
            const RGBA16* pixel = &pixels[IndexIn(room, extent.left, y)];
            for (auto& samples : row) {
                samples = {To::FromDocument(pixel->r), To::FromDocument(pixel->g),
                           To::FromDocument(pixel->b), To::FromDocument(pixel->a)};
                ++pixel;
            }
            if (before) {
                before->KeepIn(row, extent.left, y);
            }
            const GeglRectangle place{0, y - extent.top, size.width, 1};
            gegl_buffer_set(buffer.get(), &place, 0, format, row.data(), GEGL_AUTO_ROWSTRIDE);
        }
    });
    return buffer;
}

BufferHandle CopyOf(GeglBuffer* buffer) {
    return BufferHandle(gegl_buffer_dup(buffer));
}

void CopyPixels(GeglBuffer* from, GeglBuffer* to) {
    gegl_buffer_copy(from, nullptr, GEGL_ABYSS_NONE, to, nullptr);
}

}  // namespace imgbasic::host
