#include "host/gimp/channels.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/gimp/layer_pixels.h"
#include "host/gimp/layers.h"
#include "host/gimp/words.h"
#include "host/layer_run.h"
#include "plugin/imgbasic/channel_layer_name.h"

namespace imgbasic::host {
namespace {

constexpr size_t kChannels = std::size(kChannelTags);

/// A layer of the type of `model`, with the part inside `extent` of a document that covers `room`.
gint32 NewLayer(gint32 model, PixelRect extent, const Layer& layer, PixelRect room,
                const ChannelOrigins& origins) {
    const gint32 made = gimp_layer_new(
        gimp_item_get_image(model), layer.name.c_str(), static_cast<gint>(extent.Width()),
        static_cast<gint>(extent.Height()), gimp_drawable_type(model), 100, GIMP_LAYER_MODE_NORMAL);
    gimp_layer_set_offsets(made, extent.left, extent.top);
    const BufferHandle buffer(gimp_drawable_get_buffer(made));
    CopyPixels(ToBuffer(model, extent, layer.pixels, room, origins).get(), buffer.get());
    return made;
}

/// Addition of the numbers as they are, limited to what is below: the group then shows the
/// channels put together.
void ComposeAsChannel(gint32 layer) {
    gimp_layer_set_mode(layer, GIMP_LAYER_MODE_ADDITION);
    gimp_layer_set_blend_space(layer, GIMP_LAYER_COLOR_SPACE_RGB_PERCEPTUAL);
    gimp_layer_set_composite_space(layer, GIMP_LAYER_COLOR_SPACE_RGB_PERCEPTUAL);
    gimp_layer_set_composite_mode(layer, GIMP_LAYER_COMPOSITE_CLIP_TO_BACKDROP);
}

void RequireNormalLayer(gint32 layer) {
    if (gimp_item_is_group(layer)) {
        throw RunError("'" + NameOf(layer) +
                       "' is a layer group; choose a layer, or merge the group first");
    }
}

/// Whether a name has the tag of a channel before `base`.
bool IsChannelOf(std::string_view base, std::string_view name) {
    return name.size() >= kChannelTagLength && name.substr(kChannelTagLength) == base &&
           std::ranges::find(kChannelTags, name.substr(0, kChannelTagLength)) !=
               std::end(kChannelTags);
}

/// The layers at the level of `layer` that bear the tag of a channel and its name, topmost first.
std::vector<gint32> ChannelLayersOf(gint32 layer) {
    const std::string name = NameOf(layer);
    const std::string base = name.substr(std::min(name.size(), kChannelTagLength));
    std::vector<gint32> channels = Siblings(layer);
    std::erase_if(channels, [&](gint32 sibling) {
        return gimp_item_is_group(sibling) || !IsChannelOf(base, NameOf(sibling));
    });
    return channels;
}

/// The document of the channel layers, which the module decides about.
Document MergedDocument(const Module& module, const FilterJob& job,
                        const std::vector<gint32>& channels, PixelRect room) {
    Document document = DocumentFor(room);
    for (const gint32 channel : channels) {
        document.items.emplace_back(ReadLayer(channel, room));
        // The opacity of a colour's layer counts as part of its channel.
        std::get<Layer>(document.items.back()).opacity = gimp_layer_get_opacity(channel);
    }
    return RunFilterOn(module, job, std::move(document), {});
}

}  // namespace

gint32 DecomposeChannels(const Module& module, const FilterJob& job) {
    const gint32 source = job.drawable;
    RequireNormalLayer(source);
    const PixelRect extent = ExtentOf(source);
    const Progress progress(*job.filter, 1);
    Document document = DocumentFor(extent);
    document.items.emplace_back(ReadLayer(source, extent));
    document = RunFilterOn(module, job, std::move(document), {});
    std::vector<gint32> made;
    for (const Item& item : document.items) {
        made.push_back(NewLayer(source, extent, std::get<Layer>(item), extent,
                                {source, source, source, source}));
    }

    const UndoStep step(job.image);
    const gint32 group = gimp_layer_group_new(job.image);
    gimp_item_set_name(group, NameOf(source).c_str());
    gimp_image_insert_layer(job.image, group, ParentOf(source),
                            gimp_image_get_item_position(job.image, source));
    for (size_t i = 0; i < made.size(); ++i) {
        gimp_image_insert_layer(job.image, made[i], group, static_cast<gint>(i));
        if (std::get<Layer>(document.items[i]).kind == CompositionKind::Additive) {
            ComposeAsChannel(made[i]);
        }
    }
    TakeOverAttributes(source, group);
    gimp_image_remove_layer(job.image, source);
    gimp_image_set_active_layer(job.image, group);
    return group;
}

gint32 MergeChannels(const Module& module, const FilterJob& job) {
    const std::vector<gint32> inside =
        gimp_item_is_group(job.drawable) ? Children(job.drawable) : std::vector{job.drawable};
    const std::vector<gint32> channels = inside.empty() ? inside : ChannelLayersOf(inside.front());
    if (channels.size() != kChannels) {
        throw RunError(ChannelsNeeded());
    }
    PixelRect room;
    ChannelOrigins origins{};
    for (const gint32 channel : channels) {
        room = Around(room, ExtentOf(channel));
        const std::string tag = NameOf(channel).substr(0, kChannelTagLength);
        const auto* const found = std::ranges::find(kChannelTags, tag);
        origins[static_cast<size_t>(found - kChannelTags)] = channel;
    }
    const Progress progress(*job.filter, 1);
    Document merged;
    try {
        merged = MergedDocument(module, job, channels, room);
    } catch (const RunError&) {
        throw RunError(ChannelsNeeded());
    }
    const gint32 alpha = channels.back();
    const gint32 made = NewLayer(alpha, room, std::get<Layer>(merged.items.front()), room, origins);

    const UndoStep step(job.image);
    const gint32 parent = ParentOf(alpha);
    const bool replacesGroup = parent != 0 && Children(parent).size() == kChannels;
    const gint32 replaced = replacesGroup ? parent : alpha;
    gimp_image_insert_layer(job.image, made, ParentOf(replaced),
                            gimp_image_get_item_position(job.image, replaced));
    TakeOverAttributes(replaced, made);
    if (replacesGroup) {
        gimp_image_remove_layer(job.image, parent);
    } else {
        for (const gint32 channel : channels) {
            gimp_image_remove_layer(job.image, channel);
        }
    }
    gimp_image_set_active_layer(job.image, made);
    return made;
}

}  // namespace imgbasic::host
