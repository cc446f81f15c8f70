#include "host/gimp/layers.h"

#include <memory>

#include "host/gimp/layer_pixels.h"

namespace imgbasic::host {
namespace {

struct GlibFree {
    void operator()(void* memory) const { g_free(memory); }
};

std::vector<gint32> TakeList(gint* list, gint count) {
    const std::unique_ptr<gint, GlibFree> owned(list);
    return {list, list + count};
}

void AddPixelLayers(const std::vector<gint32>& items, std::vector<gint32>& layers) {
    for (const gint32 item : items) {
        if (gimp_item_is_group(item)) {
            AddPixelLayers(Children(item), layers);
        } else {
            layers.push_back(item);
        }
    }
}

void CopyMask(gint32 from, gint32 to) {
    const gint32 mask = gimp_layer_get_mask(from);
    if (mask == -1) {
        return;
    }
    const gint32 copy = gimp_layer_create_mask(to, GIMP_ADD_MASK_WHITE);
    gimp_layer_add_mask(to, copy);
    const BufferHandle source(gimp_drawable_get_buffer(mask));
    const BufferHandle target(gimp_drawable_get_buffer(copy));
    CopyPixels(source.get(), target.get());
    gimp_layer_set_apply_mask(to, gimp_layer_get_apply_mask(from));
    gimp_layer_set_show_mask(to, gimp_layer_get_show_mask(from));
    gimp_layer_set_edit_mask(to, FALSE);
}

}  // namespace

std::string NameOf(gint32 item) {
    const std::unique_ptr<gchar, GlibFree> name(gimp_item_get_name(item));
    return name != nullptr ? name.get() : "";
}

std::vector<gint32> TopItems(gint32 image) {
    gint count = 0;
    gint* const list = gimp_image_get_layers(image, &count);
    return TakeList(list, count);
}

std::vector<gint32> Children(gint32 group) {
    gint count = 0;
    gint* const list = gimp_item_get_children(group, &count);
    return TakeList(list, count);
}

std::vector<gint32> Siblings(gint32 item) {
    const gint32 parent = ParentOf(item);
    return parent != 0 ? Children(parent) : TopItems(gimp_item_get_image(item));
}

std::vector<gint32> PixelLayers(gint32 image) {
    std::vector<gint32> layers;
    AddPixelLayers(TopItems(image), layers);
    return layers;
}

gint32 WholePictureLayer(gint32 image) {
    const std::vector<gint32> items = TopItems(image);
    if (items.size() != 1 || gimp_item_is_group(items[0])) {
        return -1;
    }
    const gint32 layer = items[0];
    const GimpLayerMode mode = gimp_layer_get_mode(layer);
    const PixelRect canvas{0, 0, gimp_image_width(image), gimp_image_height(image)};
    const bool isWhole =
        (mode == GIMP_LAYER_MODE_NORMAL || mode == GIMP_LAYER_MODE_NORMAL_LEGACY) &&
        gimp_item_get_visible(layer) && gimp_layer_get_opacity(layer) == 100 &&
        gimp_layer_get_mask(layer) == -1 && ExtentOf(layer) == canvas;
    return isWhole ? layer : -1;
}

gint32 ParentOf(gint32 item) {
    const gint32 parent = gimp_item_get_parent(item);
    return parent == -1 ? 0 : parent;
}

void TakeOverAttributes(gint32 from, gint32 to) {
    gimp_layer_set_mode(to, gimp_layer_get_mode(from));
    gimp_layer_set_blend_space(to, gimp_layer_get_blend_space(from));
    gimp_layer_set_composite_space(to, gimp_layer_get_composite_space(from));
    gimp_layer_set_composite_mode(to, gimp_layer_get_composite_mode(from));
    gimp_layer_set_opacity(to, gimp_layer_get_opacity(from));
    gimp_item_set_visible(to, gimp_item_get_visible(from));
    gimp_item_set_linked(to, gimp_item_get_linked(from));
    gimp_item_set_color_tag(to, gimp_item_get_color_tag(from));
    CopyMask(from, to);
}

}  // namespace imgbasic::host
