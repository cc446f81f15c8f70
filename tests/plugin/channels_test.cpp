#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <string>
#include <vector>

#include "plugin/imgbasic/chan_decomp.h"
#include "plugin/imgbasic/chan_merge.h"
#include "plugin/imgbasic/message_box.h"

namespace imgbasic {
namespace {

TEST(ChannelDecompose, ReportsItsEndOnceInEveryRun) {
    ChannelDecomposeImageProcess process;
    for (int pass = 0; pass < 2; ++pass) {
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
        }
    }
}

struct NamedLayer {
    int32_t layer;
    int32_t subLayer;
    const char* name;
};

/// Shows the layers, of which the first is current, to a new run and begins the second phase.
int CheckLayers(ChannelMergeImageProcess& process, const std::vector<NamedLayer>& layers) {
    process.curLayer = layers[0].layer;
    process.curSubLayer = layers[0].subLayer;
    process.Dialog([] { return true; });
    for (const NamedLayer& layer : layers) {
        char name[kLayerNameSize] = {};
        std::strcpy(name, layer.name);
        ExecuteArgs args{};
        args.layer = layer.layer;
        args.subLayer = layer.subLayer;
        args.layerName = name;
        EXPECT_TRUE(process.Execute(args));
    }
    return process.Phase(1, nullptr, nullptr, nullptr, 0, 0, nullptr);
}

TEST(ChannelMerge, SaysWhichLayersAreMissingOrMisplaced) {
    using enum texts::Message;
    const NamedLayer r{0, -1, "[R]Sky"};
    const NamedLayer g{1, -1, "[G]Sky"};
    const NamedLayer b{2, -1, "[B]Sky"};
    const NamedLayer a{3, -1, "[A]Sky"};
    const std::string missing = texts::Of(MissingChannelImages).utf8;
    const std::string noChannel = texts::Of(NotAChannelImage).utf8;
    const std::string duplicate = texts::Of(DuplicateChannelImage).utf8 + 2;  // behind its "%s"
    const struct {
        std::vector<NamedLayer> layers;
        std::string message;
    } cases[] = {
        {{r, {1, -1, "cloud"}, g, b, a}, ""},
        {{{4, 2, "[G]x"}, {4, 0, "[B]x"}, {4, 1, "[R]x"}, {4, 3, "[A]x"}, r}, ""},
        {{{5, -1, "Sky"}, r, g, b, a}, noChannel},
        {{{0, -1, "[R]"}, {1, -1, "[G]"}, {2, -1, "[B]"}, {3, -1, "[A]"}}, noChannel},
        {{{0, -1, "[r]Sky"}, g, b, a}, noChannel},
        {{r, g, a}, missing},
        {{r, g, {2, -1, "[B]Sea"}, a}, missing},
        {{r, g, {2, 0, "[B]Sky"}, a}, missing},
        {{{4, 0, "[R]Sky"}, {4, 1, "[G]Sky"}, {5, 0, "[B]Sky"}, {4, 2, "[A]Sky"}}, missing},
        {{r, r, g, b, a}, texts::kChannelNames[0].utf8 + duplicate},
        {{r, g, g, b, a}, texts::kChannelNames[1].utf8 + duplicate},
        {{a, g, b, r}, texts::Of(AlphaMustBeBelow).utf8},
    };
    for (const auto& c : cases) {
        std::string message;
        const ErrorCapture capture([&](HWND, const Text& text) { message = text.utf8; });
        ChannelMergeImageProcess process;
        EXPECT_EQ(CheckLayers(process, c.layers), c.message.empty() ? 1 : -2);
        EXPECT_EQ(message, c.message) << "case " << &c - cases;
    }
}

TEST(ChannelMerge, OutlivesBrokenRuns) {
    ChannelMergeImageProcess process;
    const ErrorCapture silence([](HWND, const Text&) {});
    EXPECT_EQ(process.Phase(1, nullptr, nullptr, nullptr, 0, 0, nullptr), 0)
        << "its own layer was never shown";
    for (const int32_t size : {INT_MAX, 100, 0}) {
        process.width = process.height = size;
        const bool possible = size != INT_MAX;
        EXPECT_EQ(CheckLayers(
                      process,
                      {{0, -1, "[R]Sky"}, {1, -1, "[G]Sky"}, {2, -1, "[B]Sky"}, {3, -1, "[A]Sky"}}),
                  possible ? 1 : 0)
            << "more memory than there is";
        EXPECT_EQ(process.Phase(1, nullptr, nullptr, nullptr, 0, 0, nullptr), possible ? -2 : 0);
    }
}

}  // namespace
}  // namespace imgbasic
