#include <climits>
#include <iterator>
#include <utility>

#include "plugin/imgbasic/entry.h"
#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/scaling.h"
#include "tests/image/kernel_test.h"
#include "tests/record/checksum.h"
#include "tests/record/pictures.h"

// Every filter with its options, driven through the module's exports as a host does.

namespace imgbasic {
namespace {

struct Position {
    int32_t layer = 0;
    int32_t subLayer = -1;
};

/// A layer, or the folder of those that follow it.
struct Item {
    Position position;
    const Picture& picture;
    std::optional<RECT> area;
    std::string name = "Sky";
    uint32_t opacity = 100;
};

/// The whole picture, or a rectangle inside, at its edges, across them, beyond them, or none.
std::optional<RECT> AnyArea(SplitMix& random, const Picture& picture) {
    const int32_t w = picture.width;
    const int32_t h = picture.height;
    const int32_t x = random.Below(w);
    const int32_t y = random.Below(h);
    const std::optional<RECT> areas[] = {
        RECT{x, y, x + 1 + random.Below(w - x), y + 1 + random.Below(h - y)},
        RECT{x, 0, w, y + 1},
        RECT{-3, y, x + 1, h + 5},
        RECT{INT_MIN, y - 9, INT_MAX, y + 2},
        RECT{w, 0, w + 9, h},
        RECT{x, y, x, h},
        RECT{w, h, -1, -1},
        std::nullopt,
    };
    const auto area = static_cast<size_t>(random.Below(16));
    return area < std::size(areas) ? areas[area] : RECT{0, 0, w, h};
}

/// A picture of the same size and the kind `further` places on.
const Picture& Neighbor(size_t index, size_t further) {
    return AllPictures()[index / kKinds * kKinds + (index + further) % kKinds];
}

/// Names of options and their values.
using Values = std::vector<std::pair<std::string_view, int32_t>>;

/// The cases of one group.
struct Walk {
    std::string filter;
    std::string group;
    Values values{};
    Checksum sum{filter + ", " + group};
    SplitMix random{1};
    size_t kind = 0;

    ImageProcess* Prepare(const Picture& merged, Position current, int32_t target,
                          ImageProcess* reference) {
        ImageProcess* process =
            ImagePluginPrepare2(filter.c_str(), merged.width, merged.height, 0, current.layer,
                                current.subLayer, 0xAA336699, 0x0180FE, 0, nullptr, 0, reference);
        process->TargetType = target;
        for (const FilterOption& option : FindFilter(filter.c_str())->options) {
            for (const auto& [name, value] : values) {
                if (name == option.name) {
                    option.set(*process, value);
                }
            }
        }
        if (auto* scaling = dynamic_cast<ScalingImageProcess*>(process)) {
            scaling->skipDialog = true;
        }
        return process;
    }

    void Run(const Picture& merged, const std::vector<Item>& items, Position current,
             int32_t target) {
        const char* name = filter.c_str();
        // A repeat, since that asks nobody for the options.
        ImageProcess* reference = Prepare(merged, current, target, nullptr);
        ImageProcess* process = Prepare(merged, current, target, reference);
        sum.Add(ImagePluginDialog(name, process, [] { return true; }));
        for (int32_t phase = 0; phase < ImagePluginGetPhase(name); ++phase) {
            auto width = static_cast<uint32_t>(merged.width);
            auto height = static_cast<uint32_t>(merged.height);
            uint32_t showOnly = 77;
            const int result = ImagePluginPhase2(name, process, phase, &width, &height,
                                                 &merged.pixels[0].r, 0, 0, &showOnly);
            sum.Add(result, width, height, showOnly);
            Position shift{0, 0};  // by what was inserted or removed before an item
            for (size_t i = 0; result == 1 && i < items.size();) {
                const uint32_t code = Visit(process, phase, items[i], shift, width * height);
                (items[i].position.subLayer < 0 ? shift.layer : shift.subLayer) += code == 1   ? -1
                                                                                   : code == 2 ? 1
                                                                                               : 0;
                i += code == 2 ? 0 : 1;
            }
        }
        AddAdjustments(process);
        sum.Add(ImagePluginDispose(name, process));
        sum.Add(ImagePluginDispose(name, reference));
    }

    uint32_t Visit(ImageProcess* process, int32_t phase, const Item& item, Position shift,
                   size_t pixels) {
        std::vector<RGBA16> dst(pixels, RGBA16{1, 2, 3, 4});
        RECT written{77, 77, 77, 77};
        uint32_t out[] = {77, 77, 77, item.opacity, 77};
        char layerName[64] = {};
        item.name.copy(layerName, sizeof layerName - 1);
        const auto [layer, subLayer] = item.position;
        sum.Add(ImagePluginExecute4(filter.c_str(), process, phase, layer + shift.layer,
                                    subLayer + (subLayer < 0 ? 0 : shift.subLayer), 0, dst.data(),
                                    &written, item.picture.pixels.data(),
                                    item.area ? &*item.area : nullptr, false, &out[0], &out[1],
                                    &out[2], &out[3], &out[4], layerName));
        sum.Add(written.left, written.top, written.right, written.bottom);
        sum.AddEach(out);
        for (const char c : layerName) {
            sum.Add(static_cast<signed char>(c));
        }
        sum.AddEach(dst);
        return out[0];
    }

    void AddAdjustments(ImageProcess* process) {
        for (int32_t at = 0; at < 3; ++at) {
            double numbers[] = {1.5 + at, 1000.0 / (at + 3), 5, 7};
            sum.Add(ImagePluginAdjustLocate2(filter.c_str(), process, at, at, at - 1, &numbers[0],
                                             &numbers[1]));
            ImagePluginAdjustScale(filter.c_str(), process, 0, 0, &numbers[2], &numbers[3]);
            sum.AddEach(numbers);
        }
    }

    void TwoLayers(size_t index) {
        std::vector<Item> items;
        for (int32_t layer = 0; layer < 2; ++layer) {
            const Picture& picture = Neighbor(index, layer == 0 ? 0 : 2);
            items.push_back({{layer}, picture, AnyArea(random, picture)});
        }
        Run(Neighbor(index, 1), items, {}, random.Below(4) == 0 ? MergedImage : AllLayers);
    }
    /// One kind of each size, another one the next time.
    void EverySize(size_t end = kSizes - 1, size_t begin = 0) {
        ++kind;
        for (size_t size = begin; size < end; ++size) {
            TwoLayers(size * kKinds + (size + kind) % kKinds);
        }
    }
    void EveryPicture() {
        for (size_t i = 0; i < kKinds; ++i) {
            EverySize(i == 0 ? kSizes : kSizes - 1);
        }
    }
    /// Layers beside and in two folders; every target and current layer that a host may set.
    void EveryTarget() {
        constexpr Position kPlaces[] = {{0, -1}, {0, 0}, {1, -1}, {1, 0}, {1, 1}, {2, -1}};
        for (int32_t run = 0; run < 75; ++run) {
            const auto index = static_cast<size_t>(random.Below(5 * kKinds));
            std::vector<Item> items;
            for (const Position place : kPlaces) {
                const Picture& picture = Neighbor(index, items.size());
                items.push_back({place, picture, AnyArea(random, picture)});
            }
            Run(Neighbor(index, 5), items, {1, run % 3 - 1}, run / 3 % 5 - 1);
        }
    }
};

class FilterRecord : public KernelTest {};

TEST_P(FilterRecord, Gray) {
    for (int32_t calcMode = 0; calcMode <= 10; ++calcMode) {
        Walk walk{"gray", "CalcMode " + std::to_string(calcMode)};
        for (int32_t colorMode = -1; colorMode <= 9; ++colorMode) {
            walk.values = {{"CalcMode", calcMode}, {"ColorMode", colorMode}};
            walk.EverySize(colorMode == 7 ? kSizes : kSizes - 1);
        }
    }
    Walk{"gray", "targets", {{"CalcMode", 2}, {"ColorMode", 7}}}.EveryTarget();
}

TEST_P(FilterRecord, Mono) {
    for (const int32_t threshold : {1, 128, 255}) {
        Walk{"mono", "Threshold " + std::to_string(threshold), {{"Threshold", threshold}}}
            .EveryPicture();
    }
    Walk others{"mono", "other thresholds"};
    for (const int32_t threshold : {64, 254, INT_MIN, -1, 0, 256, INT_MAX}) {
        others.values = {{"Threshold", threshold}};
        others.EverySize();
    }
    Walk{"mono", "targets", {{"Threshold", 90}}}.EveryTarget();
}

TEST_P(FilterRecord, Nega) {
    Walk{"nega", "pictures"}.EveryPicture();
    Walk{"nega", "targets"}.EveryTarget();
}

Values Reduce(int32_t colors, int32_t dither, bool graduate, bool share) {
    return {{"ReduceColor", colors},
            {"DitherType", dither},
            {"GraduateReduce", graduate},
            {"SharePalette", share}};
}

TEST_P(FilterRecord, ColReduce) {
    for (int32_t walks = 0; walks < 16; ++walks) {
        const int32_t dither = walks / 4;
        const bool graduate = (walks & 2) != 0;
        const bool share = (walks & 1) != 0;
        Walk walk{"col_reduce", "dither " + std::to_string(dither) +
                                    (graduate ? ", graduated" : "") + (share ? ", shared" : "")};
        for (const int32_t colors : {1, 2, 3, 16, 17, 64, 255, 256}) {
            walk.values = Reduce(colors, dither, graduate, share);
            walk.EverySize(colors == 17 ? 8 : 5, graduate ? 4 : 3);
        }
    }
    Walk unusual{"col_reduce", "unusual options"};
    for (const auto& [colors, dither] : {std::pair{-5, 2}, {0, 3}, {999, 1}, {16, 4}, {16, -1}}) {
        unusual.values = Reduce(colors, dither, false, false);
        unusual.EverySize(5);
    }
    Walk{"col_reduce", "targets", Reduce(20, 1, false, true)}.EveryTarget();
}

/// To nothing, the same, 1 x 1, whole and broken fractions and multiples.
void WalkSizes(int32_t inter, int32_t boundary, bool fade) {
    Walk walk{"scaling", "InterType " + std::to_string(inter) +
                             (inter != 2 ? "" : ", boundary " + std::to_string(boundary)) +
                             (fade ? ", fading" : "")};
    for (size_t first = 0; first < (kSizes - 1) * kKinds; first += kKinds) {
        const int32_t w = AllPictures()[first].width;
        const int32_t h = AllPictures()[first].height;
        const int32_t widths[] = {0, w, 1, w / 2, w / 3, 2 * w, 3 * w, w + 1, 97, w, w * 5 / 3};
        const int32_t heights[] = {0,     h,     1,  h / 2, h / 3,    2 * h,
                                   3 * h, h - 1, 61, 2 * h, h * 2 / 3};
        for (size_t i = 0; i < std::size(widths); ++i) {
            walk.values = {{"newWidth", widths[i]},
                           {"newHeight", heights[i]},
                           {"InterType", inter},
                           {"BoundaryType", boundary},
                           {"BoundAlpha", fade}};
            walk.TwoLayers(first + ++walk.kind % kKinds);
        }
    }
}

TEST_P(FilterRecord, Scaling) {
    for (const int32_t inter : {0, 1, 3}) {
        WalkSizes(inter, 0, false);
    }
    for (const int32_t boundary : {0, 1, 2, 3}) {
        WalkSizes(2, boundary, false);
        WalkSizes(2, boundary, true);
    }
    Walk percentages{"scaling", "percentages"};
    for (const auto& percent : {std::pair{50, 50}, {33, 150}, {1, 1}, {100, 100}, {-7, 99}}) {
        percentages.values = {{"RatioSize", 1},
                              {"RatioWidth", percent.first},
                              {"RatioHeight", percent.second},
                              {"ChangeBrush", percent.first != 33}};
        percentages.EverySize();
    }
}

/// Layers that are named by a tag and the same text, in a folder or not, between others.
std::vector<Item> TaggedLayers(SplitMix& random, size_t index, bool folder) {
    static const std::string kNames[] = {"Sky",
                                         "\x83\x8C\x83\x43",
                                         std::string(57, 'a'),
                                         std::string(56, 'a') + "\x83\x8C",
                                         std::string(57, 'a') + "\x83\x8C",
                                         std::string(63, '\x81')};
    constexpr uint32_t kOpacities[] = {100, 50, 1, 0, 250, 0xFFFF'FFFF};
    const std::string& name = kNames[static_cast<size_t>(random.Below(6))];
    std::vector<Item> items;
    for (const char* tag : {"", "[B]", "[R]", "", "[G]", "[A]", ""}) {
        const auto place = static_cast<int32_t>(items.size());
        const Picture& picture = Neighbor(index, items.size());
        items.push_back({folder ? Position{1, place - 1} : Position{place, -1}, picture,
                         AnyArea(random, picture), tag + name, kOpacities[random.Below(6)]});
    }
    return items;
}

TEST_P(FilterRecord, Channels) {
    for (const bool folder : {false, true}) {
        Walk decompose{"chan_decomp", folder ? "in a folder" : "flat"};
        Walk merge{"chan_merge", folder ? "in a folder" : "flat"};
        for (size_t run = 0; run < 100; ++run) {
            const size_t index = run % (AllPictures().size() - kKinds + 1);
            const auto items = TaggedLayers(merge.random, index, folder);
            const Picture& merged = Neighbor(index, 1);
            decompose.Run(merged, items, items[run % items.size()].position, MergedImage);
            merge.Run(merged, items, items[run % 2 == 0 ? 2 : 5].position, MergedImage);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Forms, FilterRecord, kForms, FormName);

}  // namespace
}  // namespace imgbasic
