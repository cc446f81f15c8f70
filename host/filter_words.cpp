#include "host/filter_words.h"

#include <algorithm>

#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

constexpr ChoiceWord kTargets[] = {
    {"merged", "what the layers show together; one layer remains"},
    {"all", "every layer by itself"},
    {"current", "the layer that --layer and --sub-layer name"},
};

constexpr OptionWords kTarget{"TargetType", "target", "What the filter works on", kTargets};

constexpr ChoiceWord kGrayMethods[] = {
    {"average", "middle of the largest and the smallest channel"},
    {"rgb", "mean of red, green and blue"},
    {"ntsc", "luma Y: channels weighted as the eye does, green most"},
    {"value", "V of HSV: the largest channel"},
    {"red", "the red channel"},
    {"green", "the green channel"},
    {"blue", "the blue channel"},
    {"saturation", "S of HSV: vivid colours become light, greys black"},
    {"cb", "colour difference Cb: blue becomes light, yellow dark"},
    {"cr", "colour difference Cr; what it takes off is red and green"},
};

constexpr ChoiceWord kGrayTints[] = {
    {"white", "plain grey"},
    {"red", "black to red"},
    {"green", "black to green"},
    {"blue", "black to blue"},
    {"magenta", "black to magenta"},
    {"cyan", "black to cyan"},
    {"yellow", "black to yellow"},
    {"draw", "black to the colour of --draw-color"},
    {"back", "black to the colour of --back-color"},
};

constexpr OptionWords kGray[] = {
    {"CalcMode", "method", "How the grey is made of a colour", kGrayMethods},
    {"ColorMode", "tint", "What the grey is coloured with", kGrayTints},
    kTarget,
};

constexpr OptionWords kMono[] = {
    {"Threshold", "threshold", "Red level from which a pixel is white"},
    kTarget,
};

constexpr OptionWords kNega[] = {kTarget};

constexpr ChoiceWord kDithers[] = {
    {"none", "the nearest palette colour, flat areas"},
    {"pattern", "a regular pattern of dots"},
    {"small", "error diffusion, fine grain"},
    {"large", "error diffusion that gathers up the errors"},
};

constexpr OptionWords kReduceColor[] = {
    {"ReduceColor", "colors", "At most so many colours"},
    {"DitherType", "dither", "How colours between those of the palette are shown", kDithers},
    kTarget,
    {"SharePalette", "share-palette", "The palette of the topmost layer serves all layers"},
    {"GraduateReduce", "graduate", "Halve the colours step by step from 256"},
};

constexpr ChoiceWord kInterpolations[] = {
    {"nearest", "repeats or drops pixels, keeps hard edges"},
    {"average", "mean of all covered pixels, best for reducing"},
    {"bilinear", "blends neighbouring pixels, smooth enlarging"},
};

constexpr ChoiceWord kBoundaries[] = {
    {"clip", "there is nothing"},
    {"clamp", "the border pixels go on"},
    {"repeat", "the picture begins again at the other side"},
};

constexpr OptionWords kScaling[] = {
    {"RatioSize"},
    {"newWidth", "width", "New width; alone it keeps the shape"},
    {"newHeight", "height", "New height; alone it keeps the shape"},
    {"RatioWidth", "ratio", "New size in percent of the old one"},
    {"RatioHeight", "ratio-height", "Another percentage for the height"},
    {"FixRatio"},
    {"InterType", "interp", "How pixels between those of the picture are made", kInterpolations},
    {"BoundaryType", "boundary", "What bilinear sees beyond the border", kBoundaries},
    {"BoundAlpha", "bound-alpha", "Bilinear with clamp or repeat: do not fade out at the border"},
    {"ChangeBrush", "change-brush",
     "Report no factor for the sizes of brushes (to hosts that have some)"},
};

/// In the order of kFilterRows.
constexpr FilterWords kFilters[] = {
    {"gray", "Make shades of grey, or of one colour",
     "gray photo.jpg -o grey.png --method ntsc --tint draw --draw-color 336699", kGray},
    {"mono", "Make every pixel black or white", "mono scan.png -o lines.png --threshold 100",
     kMono},
    {"nega", "Invert the tones", "nega *.png -o negatives/ --jobs 4", kNega},
    {"chan_decomp", "Split a layer into one layer per channel",
     "chan_decomp paint.ora -o channels.ora --layer 2"},
    {"chan_merge", "Join the layers of the four channels into one again",
     "chan_merge channels.ora -o paint.ora --layer 5"},
    {"col_reduce", "Reduce the number of colours",
     "col_reduce photo.jpg -o few.png --colors 64 --dither small --indexed", kReduceColor},
    {"scaling", "Enlarge or reduce the picture",
     "scaling photo.jpg -o small.jpg --fit 1024x768 --interp average", kScaling},
};

/// Words for every filter, option and choice, in the order of the module's.
consteval bool FitTheRows() {
    return std::ranges::equal(kFilters, kFilterRows, [](const auto& words, const auto& row) {
        return words.filter == row.name &&
               std::ranges::equal(words.options, row.options, [](const auto& a, const auto& b) {
                   return a.option == b.name && a.choices.size() == b.choices.size();
               });
    });
}
static_assert(FitTheRows());

}  // namespace

std::string FlagOf(const FilterOption& option, const OptionWords& words) {
    if (words.flag.empty()) {
        return {};
    }
    const bool turnsOff = option.kind == OptionKind::Switch && option.initial != 0;
    return (turnsOff ? "--no-" : "--") + std::string(words.flag);
}

const FilterWords& WordsOf(std::string_view filter) {
    return *std::ranges::find(kFilters, filter, &FilterWords::filter);
}

}  // namespace imgbasic::host
