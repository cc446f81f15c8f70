#include "host/gimp/target_run.h"

#include <utility>

#include "host/gimp/layers.h"
#include "host/layer_run.h"

namespace imgbasic::host {
namespace {

/// A layer that is not in an image's stack and goes in the end.
class LooseLayer {
  public:
    explicit LooseLayer(gint32 layer) : layer_(layer) {}
    ~LooseLayer() { gimp_item_delete(layer_); }
    LooseLayer(const LooseLayer&) = delete;
    LooseLayer& operator=(const LooseLayer&) = delete;

    gint32 Id() const { return layer_; }

  private:
    gint32 layer_;
};

bool SharesPalette(const FilterJob& job) {
    return FindOption(job.filter->name, "SharePalette") != nullptr &&
           ValueOf(job, "SharePalette") != 0;
}

void RequireChangeable(gint32 layer) {
    if (gimp_item_get_lock_content(layer)) {
        throw RunError("the pixels of the layer '" + NameOf(layer) +
                       "' are locked; unlock them in the Layers dialog first");
    }
}

/// Lets GIMP merge new pixels into a layer, which keeps to the selection and its soft edges.
void MergePixels(gint32 layer, GeglBuffer* pixels, bool undoable) {
    gint x = 0;
    gint y = 0;
    gint width = 0;
    gint height = 0;
    if (!gimp_drawable_mask_intersect(layer, &x, &y, &width, &height)) {
        return;
    }
    {
        const BufferHandle shadow(gimp_drawable_get_shadow_buffer(layer));
        CopyPixels(pixels, shadow.get());
    }
    gimp_drawable_merge_shadow(layer, undoable ? TRUE : FALSE);
    gimp_drawable_update(layer, x, y, width, height);
}

void ReplacePixels(gint32 layer, GeglBuffer* pixels) {
    {
        const BufferHandle own(gimp_drawable_get_buffer(layer));
        CopyPixels(pixels, own.get());
    }
    gimp_drawable_update(layer, 0, 0, gimp_drawable_width(layer), gimp_drawable_height(layer));
}

}  // namespace

TargetRun::TargetRun(const Module& module, const FilterJob& job) : job_(job) {
    std::vector<gint32> layers{job.drawable};
    switch (ValueOf(job, "TargetType")) {
        case CurrentLayer:
            if (gimp_item_is_group(job.drawable)) {
                throw RunError("'" + NameOf(job.drawable) +
                               "' is a layer group; choose one of its layers, or another target");
            }
            break;
        case AllLayers:
            layers = PixelLayers(job.image);
            break;
        default:
            layers = {WholePictureLayer(job.image)};
            break;
    }
    for (const gint32 layer : layers) {
        if (layer != -1) {
            RequireChangeable(layer);
        }
    }
    Progress progress(*job.filter, layers.size());
    for (const gint32 layer : layers) {
        if (layer != -1) {
            RunOnLayer(module, layer);
        } else {
            RunOnMerged(module);
        }
        progress.Step();
    }
}

/// Layers are filtered one at a time, so that memory holds one document, whatever the image has.
/// Which part of the image that covers does not matter to these filters, but for the merged
/// picture, which they take whole.
void TargetRun::RunOnLayer(const Module& module, gint32 layer) {
    const bool isWhole = ValueOf(job_, "TargetType") == MergedImage;
    const gint32 top = TopItems(job_.image).front();
    PixelRect room = ExtentOf(layer);
    std::vector<Item> items;
    if (SharesPalette(job_) && layer != top) {
        room = isWhole ? room : Around(room, ExtentOf(top));
        // The palette is made of what lies on top, but nothing else is.
        Layer& above = std::get<Layer>(items.emplace_back(ReadLayer(top, room)));
        above.visible = false;
    }
    items.emplace_back(ReadLayer(layer, room));
    const LayerPosition current{.item = static_cast<int32_t>(items.size()) - 1};
    Document document = DocumentFor(room);
    document.items = std::move(items);
    document = RunFilterOn(
        module, job_, std::move(document), current,
        {Option(job_.filter->name, "TargetType", isWhole ? MergedImage : CurrentLayer)});
    const PixelRect extent = ExtentOf(layer);
    const Layer& result = std::get<Layer>(document.items.back());
    results_.push_back(
        {layer, nullptr,
         ToBuffer(layer, extent, result.pixels, room, ChannelOrigins{layer, layer, layer, layer})});
}

/// The merged picture is GIMP's own, composed with all its modes and masks.
void TargetRun::RunOnMerged(const Module& module) {
    const gint32 top = TopItems(job_.image).front();
    const LooseLayer picture(
        gimp_layer_new_from_visible(job_.image, job_.image, NameOf(top).c_str()));
    RunOnLayer(module, picture.Id());
    LayerResult& result = results_.back();
    result.layer = -1;
    const BufferHandle pixels(gimp_drawable_get_buffer(picture.Id()));
    result.before = CopyOf(pixels.get());
}

void TargetRun::InsertMerged() {
    GeglBuffer* const picture = results_.front().before.get();
    const std::vector<gint32> items = TopItems(job_.image);
    inserted_ =
        gimp_layer_new(job_.image, NameOf(items.front()).c_str(), gimp_image_width(job_.image),
                       gimp_image_height(job_.image), GIMP_RGBA_IMAGE, 100, GIMP_LAYER_MODE_NORMAL);
    ReplacePixels(inserted_, picture);
    gimp_image_insert_layer(job_.image, inserted_, 0, 0);
}

void TargetRun::Show() {
    if (isShown_) {
        return;
    }
    isShown_ = true;
    if (IsMerged()) {
        const WithoutUndo untraced(job_.image);
        for (const gint32 item : TopItems(job_.image)) {
            if (gimp_item_get_visible(item)) {
                hidden_.push_back(item);
                gimp_item_set_visible(item, FALSE);
            }
        }
        InsertMerged();
        MergePixels(inserted_, results_.front().after.get(), false);
    } else {
        for (LayerResult& result : results_) {
            const BufferHandle pixels(gimp_drawable_get_buffer(result.layer));
            result.before = CopyOf(pixels.get());
            MergePixels(result.layer, result.after.get(), false);
        }
    }
    gimp_displays_flush();
}

void TargetRun::Hide() {
    if (!isShown_ || !gimp_image_is_valid(job_.image)) {
        return;
    }
    isShown_ = false;
    if (IsMerged()) {
        const WithoutUndo untraced(job_.image);
        gimp_image_remove_layer(job_.image, inserted_);
        for (const gint32 item : std::exchange(hidden_, {})) {
            gimp_item_set_visible(item, TRUE);
        }
        gimp_image_set_active_layer(job_.image, job_.drawable);
    } else {
        for (LayerResult& result : results_) {
            ReplacePixels(result.layer, result.before.get());
            result.before.reset();
        }
    }
    gimp_displays_flush();
}

gint32 TargetRun::Apply() {
    Hide();
    const UndoStep step(job_.image);
    if (!IsMerged()) {
        for (const LayerResult& result : results_) {
            MergePixels(result.layer, result.after.get(), true);
        }
        return ValueOf(job_, "TargetType") == MergedImage ? results_.front().layer : job_.drawable;
    }
    InsertMerged();
    MergePixels(inserted_, results_.front().after.get(), true);
    for (const gint32 item : TopItems(job_.image)) {
        if (item != inserted_) {
            gimp_image_remove_layer(job_.image, item);
        }
    }
    return inserted_;
}

}  // namespace imgbasic::host
