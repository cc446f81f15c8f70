#include "host/gimp/scaling_run.h"

#include "host/gimp/layer_pixels.h"
#include "host/gimp/layers.h"
#include "host/layer_run.h"

namespace imgbasic::host {
namespace {

/// A step of 65,280 that an interpolation leaves is no translucency.
constexpr uint16_t kLeastOpaque = kFullScale - 1;

struct ScaledLayer {
    gint32 layer;
    BufferHandle pixels;  ///< `bounds` of the new image
    PixelRect bounds;     ///< what holds pixels; may be empty
    bool isOpaque;        ///< inside the bounds
};

void RequireInside(gint32 layer, PixelSize size) {
    const PixelRect extent = ExtentOf(layer);
    if (ClipToImage(extent, size.width, size.height) != extent) {
        throw RunError("the layer '" + NameOf(layer) +
                       "' goes on outside the image, which scaling would cut off; choose Image > "
                       "Fit Canvas to Layers or Layer > Layer to Image Size first");
    }
}

ScaledLayer ScaleLayer(const Module& module, const FilterJob& job, gint32 layer, PixelSize from,
                       PixelSize to) {
    const PixelRect room{0, 0, from.width, from.height};
    Document document = DocumentFor(room);
    document.items.emplace_back(ReadLayer(layer, room));
    document = RunFilterOn(module, job, std::move(document), {},
                           {Option(job.filter->name, "newWidth", to.width),
                            Option(job.filter->name, "newHeight", to.height)});
    const auto& scaled = std::get<Layer>(document.items.front());
    return {layer, ToBuffer(layer, scaled.bounds, scaled.pixels, {0, 0, to.width, to.height}, {}),
            scaled.bounds, IsOpaque(scaled.pixels, kLeastOpaque)};
}

/// Gives a layer that GIMP has scaled the pixels of ours, and room for them.
void ReplaceScaled(const ScaledLayer& scaled) {
    const gint32 layer = scaled.layer;
    // GIMP removes what becomes less than a pixel.
    if (!gimp_item_is_valid(layer)) {
        return;
    }
    const PixelRect own = ExtentOf(layer);
    const PixelRect extent = Around(own, scaled.bounds);
    if (extent != own) {
        gimp_layer_resize(layer, static_cast<gint>(extent.Width()),
                          static_cast<gint>(extent.Height()), own.left - extent.left,
                          own.top - extent.top);
    }
    if (!scaled.isOpaque && !gimp_drawable_has_alpha(layer)) {
        gimp_layer_add_alpha(layer);
    }
    {
        const BufferHandle pixels(gimp_drawable_get_buffer(layer));
        const GeglRectangle place{scaled.bounds.left - extent.left, scaled.bounds.top - extent.top,
                                  static_cast<int>(scaled.bounds.Width()),
                                  static_cast<int>(scaled.bounds.Height())};
        gegl_buffer_clear(pixels.get(), nullptr);
        gegl_buffer_copy(scaled.pixels.get(), nullptr, GEGL_ABYSS_NONE, pixels.get(), &place);
    }
    gimp_drawable_update(layer, 0, 0, gimp_drawable_width(layer), gimp_drawable_height(layer));
}

}  // namespace

PixelSize SizeAskedFor(const FilterJob& job) {
    const auto given = [&](const char* option) {
        const int32_t value = ValueOf(job, option);
        return value != 0 ? std::optional(value) : std::nullopt;
    };
    SizeRequest request;
    if (ValueOf(job, "RatioSize") != 0) {
        request.ratio = Ratio{ValueOf(job, "RatioWidth"), 100};
        request.ratioHeight = Ratio{ValueOf(job, "RatioHeight"), 100};
    } else {
        request.width = given("newWidth");
        request.height = given("newHeight");
    }
    return ScaledSize(request, {gimp_image_width(job.image), gimp_image_height(job.image)});
}

void ScaleImage(const Module& module, const FilterJob& job) {
    const PixelSize from{gimp_image_width(job.image), gimp_image_height(job.image)};
    const PixelSize to = SizeAskedFor(job);
    if (to == from) {
        return;
    }
    const std::vector<gint32> layers = PixelLayers(job.image);
    for (const gint32 layer : layers) {
        RequireInside(layer, from);
    }
    Progress progress(*job.filter, layers.size());
    std::vector<ScaledLayer> scaled;
    for (const gint32 layer : layers) {
        scaled.push_back(ScaleLayer(module, job, layer, from, to));
        progress.Step();
    }

    const UndoStep step(job.image);
    gimp_context_set_interpolation(ValueOf(job, "InterType") == 0 ? GIMP_INTERPOLATION_NONE
                                                                  : GIMP_INTERPOLATION_LINEAR);
    gimp_image_scale(job.image, to.width, to.height);
    // Undo keeps the pixels from before GIMP scaled them, so those after it may be replaced.
    for (const ScaledLayer& layer : scaled) {
        ReplaceScaled(layer);
    }
}

}  // namespace imgbasic::host
