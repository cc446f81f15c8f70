#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <optional>
#include <random>
#include <string>

#include "plugin/imgbasic/chan_decomp.h"
#include "plugin/imgbasic/chan_merge.h"
#include "plugin/imgbasic/channel_layer_name.h"
#include "plugin/imgbasic/entry.h"
#include "plugin/imgbasic/message_box.h"

namespace imgbasic {
namespace {

constexpr int32_t kWidth = 4;
constexpr int32_t kHeight = 3;
constexpr size_t kPixels = size_t{kWidth} * kHeight;
constexpr PixelRect kUnwritten{-77, -77, -77, -77};

struct Layer {
    bool inFolder = false;  ///< of the next layer above that is not in one
    std::string name;
    std::optional<PixelRect> rect;
    std::array<uint32_t, 3> attributes{};  ///< mode, opacity in percent, flag
    std::vector<RGBA16> pixels = std::vector<RGBA16>(kPixels);

    bool operator==(const Layer&) const = default;
};

/// Layers and folders, 0 on top, each folder before its layers.
using Tree = std::vector<Layer>;

struct Position {
    int32_t layer;
    int32_t subLayer;
};

Position PositionOf(const Tree& tree, size_t place) {
    Position position{-1, -1};
    for (size_t i = 0; i <= place; ++i) {
        position = tree[i].inFolder ? Position{position.layer, position.subLayer + 1}
                                    : Position{position.layer + 1, -1};
    }
    return position;
}

/// Erases a layer, or a folder with what is in it.
void Erase(Tree& tree, size_t place) {
    const auto first = tree.begin() + static_cast<ptrdiff_t>(place);
    const auto isOutside = [](const Layer& layer) { return !layer.inFolder; };
    tree.erase(first, first->inFolder ? first + 1 : std::find_if(first + 1, tree.end(), isOutside));
}

bool Covers(const std::optional<PixelRect>& rect, size_t pixel) {
    const auto x = static_cast<int32_t>(pixel) % kWidth;
    const auto y = static_cast<int32_t>(pixel) / kWidth;
    return rect && x >= rect->left && x < rect->right && y >= rect->top && y < rect->bottom;
}

/// A host of one filter over a tree. Every buffer that it hands out is of exactly its size, so
/// that the address sanitizer sees any step outside.
struct TreeHost {
    const char* filter;
    Tree tree;
    Position current;
    ImageProcess* object = nullptr;
    std::string message = {};

    int Run() {
        const ErrorCapture capture([this](HWND, const Text& text) { message = text.utf8; });
        object = ImagePluginPrepare2(filter, kWidth, kHeight, 0, current.layer, current.subLayer, 0,
                                     0, 0, nullptr, 0, nullptr);
        int result = ImagePluginDialog(filter, object, [] { return true; });
        for (int phase = 0; result == 1 && phase < ImagePluginGetPhase(filter); ++phase) {
            uint32_t showOnly = 0;
            result = ImagePluginPhase2(filter, object, phase, nullptr, nullptr, nullptr, 0, 0,
                                       &showOnly);
            for (size_t i = 0; result == 1 && i < tree.size();) {
                i += Visit(phase, showOnly == 1, i) ? 1 : 0;
            }
        }
        ImagePluginDispose(filter, object);
        return result;
    }

    /// False when the layer was removed and the next one is in its place. A new layer takes the
    /// place of the visited one, which comes next.
    bool Visit(int phase, bool showOnly, size_t place) {
        const Position position = PositionOf(tree, place);
        Layer& layer = tree[place];
        Layer out = layer;
        auto& [mode, opacity, flag] = out.attributes;
        const RECT in = std::bit_cast<RECT>(layer.rect.value_or(PixelRect{}));
        RECT written = std::bit_cast<RECT>(kUnwritten);
        std::vector<char> name(layer.name.begin(), layer.name.end());
        name.resize(kLayerNameSize);
        std::vector<RGBA16> dst(kPixels);
        uint32_t code = 0;
        if (!ImagePluginExecute4(filter, object, phase, position.layer, position.subLayer, 0,
                                 dst.data(), &written, layer.pixels.data(),
                                 layer.rect ? &in : nullptr, false, &code, nullptr, &mode, &opacity,
                                 &flag, name.data()) ||
            showOnly) {
            return true;
        }
        if (code == 1) {
            Erase(tree, place);
            return false;
        }
        const auto area = std::bit_cast<PixelRect>(written);
        if (layer.rect && !layer.inFolder && position.layer == current.layer &&
            current.subLayer >= 0) {
            EXPECT_EQ(area, *layer.rect) << "the folder of the current layer keeps its area";
        }
        out.name = ReadLayerName(name.data());
        if (code == 2) {
            out.pixels.assign(kPixels, {});
        }
        if (area != kUnwritten) {
            out.rect = area;
            for (size_t i = 0; i < kPixels; ++i) {
                out.pixels[i] = Covers(area, i) ? dst[i] : out.pixels[i];
            }
        }
        if (code == 2) {
            tree.insert(tree.begin() + static_cast<ptrdiff_t>(place), out);
        } else {
            layer = out;
        }
        return true;
    }
};

// The plain model of both filters.

const std::string kTags[] = {"[R]", "[G]", "[B]", "[A]"};
constexpr uint16_t RGBA16::*kMembers[] = {&RGBA16::r, &RGBA16::g, &RGBA16::b, &RGBA16::a};

/// A character that begins at byte 57 is left out; one that begins at 56 loses its second byte.
std::string SimpleCut(const std::string& name) {
    const auto isLead = [&](size_t i) {
        const auto byte = static_cast<unsigned char>(name[i]);
        return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    };
    size_t end = 0;
    while (end < 57 && end < name.size()) {
        end += isLead(end) ? 2 : 1;
    }
    return name.size() < 58 ? name : name.substr(0, end == 57 && isLead(57) ? 56 : 57);
}

void SimpleDecompose(Tree& tree, size_t place) {
    const Layer source = tree[place];
    Erase(tree, place);
    for (size_t k = 4; k-- > 0;) {
        Layer part{source.inFolder, kTags[k] + SimpleCut(source.name), source.rect, {2, 100, 1}};
        if (k == 3) {
            part.attributes = {1, source.attributes[1], source.attributes[2]};
        }
        for (size_t i = 0; i < kPixels; ++i) {
            if (Covers(source.rect, i)) {
                part.pixels[i].a = kFullScale;
                part.pixels[i].*kMembers[k] = source.pixels[i].*kMembers[k];
            }
        }
        tree.insert(tree.begin() + static_cast<ptrdiff_t>(place), part);
    }
}

/// Finds the places of the four channels' layers, or returns the message.
std::string FindChannels(const Tree& tree, size_t own, std::array<size_t, 4>& found) {
    static const std::string kNames[] = {"赤", "緑", "青", "α"};
    const std::string base = tree[own].name.size() > 3 ? tree[own].name.substr(3) : "";
    const auto ownTag = std::find(std::begin(kTags), std::end(kTags), tree[own].name.substr(0, 3));
    if (base.empty() || ownTag == std::end(kTags)) {
        return "カレントレイヤーはチャンネル画像ではありません。";
    }
    found.fill(SIZE_MAX);
    found[static_cast<size_t>(ownTag - std::begin(kTags))] = own;
    for (size_t i = 0; std::count(found.begin(), found.end(), SIZE_MAX) > 0; ++i) {
        if (i == tree.size()) {
            return "チャンネル画像が揃っていません。";
        }
        const bool sameLevel =
            tree[i].inFolder == tree[own].inFolder &&
            (!tree[i].inFolder || PositionOf(tree, i).layer == PositionOf(tree, own).layer);
        for (size_t k = 0; k < 4; ++k) {
            if (i == own || !sameLevel || tree[i].name != kTags[k] + base) {
                continue;
            }
            if (found[k] != SIZE_MAX) {
                return kNames[k] + "チャンネル画像が重複しています。";
            }
            found[k] = i;
        }
    }
    return *std::max_element(found.begin(), found.end()) == found[3]
               ? ""
               : "αチャンネル画像は他のチャンネル画像よりも下に置いてください。";
}

/// Returns the message if the layers do not allow it.
std::string SimpleMerge(Tree& tree, size_t own) {
    std::array<size_t, 4> found;
    if (std::string message = FindChannels(tree, own, found); !message.empty()) {
        return message;
    }
    PixelRect whole{INT_MAX, INT_MAX, INT_MIN, INT_MIN};
    std::vector<RGBA16> pixels(kPixels);
    for (size_t k = 0; k < 4; ++k) {
        const Layer& layer = tree[found[k]];
        const PixelRect rect = layer.rect.value_or(PixelRect{1, 1, -1, -1});
        if (rect.left <= rect.right) {
            whole = {std::min(whole.left, rect.left), std::min(whole.top, rect.top),
                     std::max(whole.right, rect.right), std::max(whole.bottom, rect.bottom)};
        }
        const uint64_t percent = k < 3 ? layer.attributes[1] : 100;
        for (size_t i = 0; i < kPixels; ++i) {
            if (Covers(layer.rect, i)) {
                const auto product = static_cast<int32_t>(layer.pixels[i].*kMembers[k] * percent);
                pixels[i].*kMembers[k] = static_cast<uint16_t>(product / 100);
            }
        }
    }
    if (whole.left > whole.right) {
        whole = tree[own].rect.value_or(PixelRect{1, 1, -1, -1});
    }
    Layer& merged = tree[found[3]];
    merged.rect = whole;
    merged.name.erase(0, 3);
    merged.attributes[0] = 0;
    for (size_t i = 0; i < kPixels; ++i) {
        merged.pixels[i] = Covers(whole, i) ? pixels[i] : merged.pixels[i];
    }
    std::sort(found.begin(), found.end());
    for (const size_t k : {2U, 1U, 0U}) {
        Erase(tree, found[k]);
    }
    return "";
}

struct RandomTrees {
    std::mt19937 random;

    size_t Below(size_t count) { return random() % count; }

    template <typename Values>
    auto OneOf(const Values& values) {
        return values[Below(std::size(values))];
    }

    /// All names are a tag or none before the same text, which may be too long for its buffer.
    Tree MakeTree() {
        static constexpr unsigned char kBytes[] = {0x81, 0x9F, 0xE0, 0xFC, 'a', '[', 0xA0};
        std::string base(Below(2) == 0 ? Below(4) : 54 + Below(8), 'a');
        std::generate(base.begin(), base.end(), [&] { return static_cast<char>(OneOf(kBytes)); });
        Tree tree;
        for (size_t count = 1 + Below(12); count > 0; --count) {
            const bool inFolder = !tree.empty() && Below(2) == 0;
            if (inFolder && !tree.back().inFolder) {
                tree.back().pixels.assign(kPixels, {});  // a folder has none of its own
            }
            tree.push_back(MakeLayer(inFolder, (Below(5) > 0 ? OneOf(kTags) : "") + base));
        }
        return tree;
    }

    /// The sides of a rectangle are all reversed or none is.
    Layer MakeLayer(bool inFolder, const std::string& name) {
        static constexpr uint32_t kOpacities[] = {100, 100, 50, 1, 0, 250, 0xFFFF'FFFF};
        static constexpr PixelRect kRects[] = {{INT_MIN, INT_MIN, INT_MAX, INT_MAX},
                                               {0, 0, kWidth, kHeight},
                                               {1, 0, 3, 2},
                                               {INT_MAX - 1, 0, INT_MAX, 1},
                                               {-5, 2, 100, 3},
                                               {2, 1, 4, 3},
                                               {INT_MAX, 9, INT_MIN, 8},
                                               {3, 3, 3, 3}};
        Layer layer{inFolder, name, OneOf(kRects), {0, OneOf(kOpacities), 0}};
        if (Below(5) == 0) {
            layer.rect.reset();
        }
        for (RGBA16& pixel : layer.pixels) {
            pixel = std::bit_cast<RGBA16>(uint64_t{random()} << 32 | random());
        }
        return layer;
    }
};

void ExpectSimpleMerge(const Tree& tree, size_t current) {
    TreeHost merge{"chan_merge", tree, PositionOf(tree, current)};
    const int result = merge.Run();
    Tree expected = tree;
    EXPECT_EQ(merge.message, SimpleMerge(expected, current));
    EXPECT_EQ(result, merge.message.empty() ? 1 : -2);
    EXPECT_EQ(merge.tree, expected);
}

TEST(ChannelFilters, DoToRandomTreesWhatThePlainModelDoes) {
    for (uint32_t seed = 0; seed < 5000 && !HasFailure(); ++seed) {
        SCOPED_TRACE(seed);
        RandomTrees random{std::mt19937(seed)};
        const Tree tree = random.MakeTree();
        const size_t current = random.Below(tree.size());
        ExpectSimpleMerge(tree, current);

        TreeHost decompose{"chan_decomp", tree, PositionOf(tree, current)};
        EXPECT_EQ(decompose.Run(), 1);
        Tree expected = tree;
        SimpleDecompose(expected, current);
        EXPECT_EQ(decompose.tree, expected);
        ExpectSimpleMerge(expected, current + random.Below(4));
    }
}

TEST(ChannelFilters, DecomposeReportsItsEndOnce) {
    ChannelDecomposeImageProcess process;
    for (int run = 0; run < 2; ++run) {
        process.curLayer = 5;
        process.Dialog([] { return true; });
        for (const uint32_t expected : {2U, 2U, 2U, 2U, 1U, 0U}) {
            uint32_t code = 0;
            ExecuteArgs args{};
            args.layer = process.curLayer;
            args.subLayer = -1;
            args.resultCode = &code;
            EXPECT_TRUE(process.Execute(args));
            EXPECT_EQ(code, expected);
            EXPECT_EQ(process.AdjustLocate(5, 0, 0, nullptr, nullptr), process.curLayer == 9);
            EXPECT_TRUE(process.AdjustLocate(4, 0, 0, nullptr, nullptr));
        }
    }
}

TEST(ChannelFilters, MergeOutlivesBrokenRuns) {
    ChannelMergeImageProcess process;
    std::string message;
    const ErrorCapture capture([&](HWND, const Text& text) { message = text.shiftJis; });
    const auto phase = [&](int number) {
        return process.Phase(number, nullptr, nullptr, nullptr, 0, 0, nullptr);
    };
    EXPECT_EQ(phase(1), 0) << "its own layer was never shown";
    for (const int32_t size : {INT_MAX, 100, 0}) {
        process.width = process.height = size;
        process.Dialog([] { return true; });
        for (int32_t layer = 0; layer < 4; ++layer) {
            std::string name = kTags[layer] + "Sky" + std::string(kLayerNameSize, '\0');
            ExecuteArgs args{};
            args.layer = layer;
            args.subLayer = -1;
            args.layerName = name.data();
            EXPECT_TRUE(process.Execute(args));
        }
        EXPECT_EQ(phase(1), size == INT_MAX ? 0 : 1) << "more memory than there is";
        EXPECT_EQ(phase(1), -2);
        EXPECT_EQ(message, std::string("\x97\xCE") +
                               (texts::Of(texts::Message::DuplicateChannelImage).shiftJis + 2));
    }
}

}  // namespace
}  // namespace imgbasic
