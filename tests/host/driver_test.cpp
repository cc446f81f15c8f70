#include "host/driver.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "host/flatten.h"
#include "plugin/imgbasic/entry.h"
#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

constexpr int32_t kWidth = 4;
constexpr int32_t kHeight = 3;
constexpr RGBA16 kRed{kFullScale, 0, 0, kFullScale};
constexpr RGBA16 kGreen{0, kFullScale, 0, kFullScale};

/// What one phase is told, and may change.
struct PhaseArgs {
    int phase;
    uint32_t& width;
    uint32_t& height;
    uint32_t& flag;
};

/// What the module answers, replaced by each test.
struct Script {
    bool sizeChange = false;
    int phases = 1;
    std::function<int(ApplyCallback apply)> dialog = [](ApplyCallback apply) { return apply(); };
    std::function<int(const PhaseArgs& args)> phase = [](const PhaseArgs&) { return 1; };
    /// `log` has a line for every visit already.
    std::function<void(const ExecuteArgs& args)> execute = [](const ExecuteArgs&) {};
    bool answer = true;  ///< of that visit
    std::vector<std::string> log;
    ImageProcess* object = nullptr;
    int prepared = 0;
    int disposed = 0;
};

Script* script = nullptr;

struct ScriptedProcess : ImageProcess {
    int BatchPrepare() override { return 0; }
    bool BatchDispose() override { return false; }
    int Dialog(ApplyCallback apply) override { return script->dialog(apply); }
    int Phase(int phase, uint32_t* newWidth, uint32_t* newHeight, const RGBA16*, uint64_t, uint64_t,
              uint32_t* flag) override {
        return script->phase({phase, *newWidth, *newHeight, *flag});
    }
    bool Execute(const ExecuteArgs& args) override {
        script->log.push_back(std::string(args.layerName) + " " + std::to_string(args.layer) + "," +
                              std::to_string(args.subLayer));
        script->answer = true;
        script->execute(args);
        return script->answer;
    }
    void AdjustScale(int, int, double* x, double* y) override { *x = 2, *y = 3; }
    bool AdjustLocate(int index, int, int, double* x, double*) override {
        *x += 10 * (index + 1);
        return true;
    }
    bool Dispose() override { return ++script->disposed > 0; }
};

Module ScriptedModule() {
    Module module;
    module.isSizeChange = [](const char*) { return script->sizeChange; };
    module.getPhase = [](const char*) { return script->phases; };
    module.prepare = [](const char*, int, int, int, int, int, uint32_t, uint32_t, uint64_t, HWND,
                        uint64_t, ImageProcess*) -> ImageProcess* {
        ++script->prepared;
        return script->object = new ScriptedProcess;
    };
    module.dialog = ImagePluginDialog;
    module.phase = ImagePluginPhase2;
    module.execute = ImagePluginExecute4;
    module.adjustScale = ImagePluginAdjustScale;
    module.adjustLocate = ImagePluginAdjustLocate2;
    module.dispose = ImagePluginDispose;
    return module;
}

Layer FilledLayer(const std::string& name, RGBA16 pixel) {
    Layer layer = LayerOf(std::vector<RGBA16>(kWidth * kHeight, pixel), kWidth, kHeight);
    layer.name = name;
    layer.opacity = 50;
    layer.clip = true;
    layer.visible = false;
    return layer;
}

/// top; folder (in0, in1); empty; bottom.
Document SampleDocument() {
    Document document{kWidth, kHeight, 8, {}};
    document.items.emplace_back(FilledLayer("top", kRed));
    Folder folder;
    folder.name = "folder";
    Layer in0 = FilledLayer("in0", kRed);
    in0.visible = true;
    in0.clip = false;
    folder.items = {in0, FilledLayer("in1", kRed)};
    document.items.emplace_back(folder);
    document.items.emplace_back(FilledLayer("empty", {}));
    document.items.emplace_back(FilledLayer("bottom", kRed));
    return document;
}

/// The names from top to bottom, a folder's layers behind it in brackets.
std::string Names(const std::vector<Item>& items) {
    std::string names;
    for (const Item& item : items) {
        if (const auto* folder = std::get_if<Folder>(&item)) {
            names += folder->name + "( " + Names(folder->items) + ") ";
        } else {
            names += std::get<Layer>(item).name + " ";
        }
    }
    return names;
}

const Layer& LayerAt(const auto& documentOrFolder, size_t index) {
    return std::get<Layer>(documentOrFolder.items[index]);
}

class DriverTest : public testing::Test {
  protected:
    void SetUp() override { script = &script_; }
    void TearDown() override {
        EXPECT_EQ(script_.disposed, script_.prepared);
        EXPECT_EQ(Names(document_.items), Names(SampleDocument().items))
            << "the caller's document stays";
    }

    RunOutcome Run() { return RunFilter(module_, document_, request_); }

    Script script_;
    Module module_ = ScriptedModule();
    Document document_ = SampleDocument();
    RunRequest request_{.filter = "chan_decomp"};
};

bool IsNamed(const ExecuteArgs& args, const char* name) {
    return std::strcmp(args.layerName, name) == 0;
}

TEST_F(DriverTest, VisitsEveryLayerAndFollowsRemovalsAndNewLayers) {
    int made = 0;
    script_.execute = [&](const ExecuteArgs& args) {
        if (IsNamed(args, "top") || IsNamed(args, "in1")) {
            *args.resultCode = 1;
        } else if ((IsNamed(args, "in0") || IsNamed(args, "empty")) && made++ % 3 < 2) {
            *args.resultCode = 2;
            *args.layerMode = 2;
            *args.layerOpacity = 70;
            *args.layerFlag = 0;
            *args.outRect = {1, 1, 2, 2};
            args.dst[kWidth + 1] = kGreen;
            std::strcpy(args.layerName, made % 3 == 1 ? "new1" : "new2");
        }
    };
    const RunOutcome outcome = Run();
    ASSERT_EQ(outcome.status, RunStatus::Done);
    EXPECT_EQ(Names(outcome.document.items), "folder( new1 new2 in0 ) new1 new2 empty bottom ");
    EXPECT_EQ(script_.log, (std::vector<std::string>{"top 0,-1", "folder 0,-1", "in0 0,0",
                                                     "in0 0,1", "in0 0,2", "in1 0,3", "empty 1,-1",
                                                     "empty 2,-1", "empty 3,-1", "bottom 4,-1"}));
    const Layer& second = LayerAt(outcome.document, 2);
    EXPECT_TRUE(second.kind == CompositionKind::Additive && second.opacity == 70 && !second.clip);
    EXPECT_FALSE(second.visible) << "as hidden as the layer that it was made of";
    EXPECT_EQ(second.bounds, (PixelRect{1, 1, 2, 2}));
}

TEST_F(DriverTest, StopsAModuleThatMakesLayersWithoutEnd) {
    script_.execute = [](const ExecuteArgs& args) { *args.resultCode = 2; };
    EXPECT_EQ(Run().status, RunStatus::Failed);
}

TEST_F(DriverTest, CopiesOnlyTheReportedAreaInsideTheImage) {
    script_.execute = [](const ExecuteArgs& args) {
        EXPECT_TRUE(std::all_of(args.dst, args.dst + kWidth * kHeight,
                                [](RGBA16 pixel) { return pixel == RGBA16{}; }));
        EXPECT_EQ(args.inRect == nullptr, IsNamed(args, "empty"));
        EXPECT_EQ(args.skipPixels, IsNamed(args, "folder"));
        std::fill_n(args.dst, kWidth * kHeight, kGreen);
        if (IsNamed(args, "top")) {
            *args.outRect = {2, -2147483647, 2147483647, 1};
        } else if (IsNamed(args, "in0")) {
            *args.outRect = {3, 2, 1, 1};
        } else if (IsNamed(args, "empty")) {
            *args.outRect = {1, 1, 3, 3};
            *args.resultCode = 99;
            *args.layerMode = 99;
            *args.layerOpacity = 1000;
        } else {
            *args.outRect = {0, 0, kWidth, kHeight};
            std::strcpy(args.layerName, "?");
            script->answer = false;
        }
    };
    const RunOutcome outcome = Run();
    ASSERT_EQ(outcome.status, RunStatus::Done);
    EXPECT_EQ(Names(outcome.document.items), Names(document_.items));
    const std::vector<RGBA16> top = {kRed, kRed, kGreen, kGreen, kRed, kRed,
                                     kRed, kRed, kRed,   kRed,   kRed, kRed};
    EXPECT_EQ(LayerAt(outcome.document, 0).pixels, top);
    EXPECT_EQ(LayerAt(outcome.document, 2).bounds, (PixelRect{1, 1, 3, 3}));
    EXPECT_EQ(LayerAt(outcome.document, 2).opacity, 100U) << "at most";
    EXPECT_EQ(LayerAt(outcome.document, 3).pixels, LayerAt(document_, 3).pixels);
}

TEST_F(DriverTest, TurnsAFolderWithTheMergedResultIntoAPlainLayer) {
    script_.execute = [](const ExecuteArgs& args) {
        *args.resultCode = IsNamed(args, "folder") ? 0 : 1;
        *args.resultKind = 1;
        *args.outRect = {0, 0, kWidth, 1};
        EXPECT_EQ(args.src->r == kRed.r, !IsNamed(args, "empty")) << "also of a folder";
        std::fill_n(args.dst, kWidth, kGreen);
    };
    const RunOutcome outcome = Run();
    ASSERT_EQ(Names(outcome.document.items), "folder ");
    const Layer& merged = LayerAt(outcome.document, 0);
    EXPECT_TRUE(merged.visible && !merged.clip && merged.opacity == 100);
    EXPECT_EQ(merged.bounds, (PixelRect{0, 0, kWidth, 1}));
}

TEST_F(DriverTest, ChangesNothingInAPhaseThatOnlyShowsTheLayers) {
    script_.phases = 2;
    script_.phase = [](const PhaseArgs& args) {
        args.flag = args.phase == 0 ? 1 : 0;
        return 1;
    };
    script_.execute = [](const ExecuteArgs& args) {
        *args.resultCode = args.phase == 0 ? 2 : 0;
        std::strcpy(args.layerName, args.phase == 0 ? "?" : "seen");
    };
    EXPECT_EQ(Names(Run().document.items), "seen seen( seen seen ) seen seen ");
    EXPECT_EQ(script_.log.size(), 12U);
}

TEST_F(DriverTest, EndsAsTheLastPhaseAnswers) {
    script_.phases = 2;
    const struct {
        int answer;
        uint32_t width;
        bool sizeChange;
        RunStatus status;
    } cases[] = {
        {1, kWidth, false, RunStatus::Done},     {-1, kWidth, false, RunStatus::NothingToDo},
        {0, kWidth, false, RunStatus::Failed},   {-2, kWidth, false, RunStatus::Failed},
        {-77, kWidth, false, RunStatus::Failed}, {1, 0, true, RunStatus::Failed},
        {1, 65536, true, RunStatus::Failed},     {1, UINT32_MAX, true, RunStatus::Failed},
        {1, 7777, false, RunStatus::Done},  // ignored of a filter that keeps the size
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.answer << ", " << c.width);
        script_.sizeChange = c.sizeChange;
        script_.phase = [&](const PhaseArgs& args) {
            args.width = args.phase == 0 ? args.width : c.width;
            return args.phase == 0 ? 1 : c.answer;
        };
        const RunOutcome outcome = Run();
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_EQ(outcome.fault.empty(), c.status != RunStatus::Failed);
        EXPECT_EQ(outcome.document.width, c.status == RunStatus::Done ? kWidth : 0);
    }
}

TEST_F(DriverTest, GivesEveryLayerTheNewSize) {
    script_.sizeChange = true;
    script_.phase = [](const PhaseArgs& args) {
        EXPECT_EQ(args.width, static_cast<uint32_t>(kWidth));
        args.width = 7;
        args.height = 5;
        return 1;
    };
    script_.execute = [](const ExecuteArgs& args) {
        std::fill_n(args.dst, 7 * 5, kGreen);
        *args.outRect = {0, 0, 7, IsNamed(args, "bottom") ? 2 : 5};
        script->answer = !IsNamed(args, "top");
    };
    request_.points = {{{1, 0}, 1, 1}, {{0, -1}, 2, 2}};
    const RunOutcome outcome = Run();
    EXPECT_EQ(outcome.document.width, 7);
    EXPECT_EQ(outcome.document.height, 5);
    EXPECT_EQ(LayerAt(outcome.document, 0).pixels, std::vector<RGBA16>(35)) << "answered false";
    EXPECT_TRUE(LayerAt(outcome.document, 0).bounds.IsEmpty());
    EXPECT_EQ(LayerAt(outcome.document, 3).bounds, (PixelRect{0, 0, 7, 2}));
    const Layer& inside = LayerAt(std::get<Folder>(outcome.document.items[1]), 1);
    EXPECT_EQ(inside.pixels, std::vector<RGBA16>(35, kGreen));
    EXPECT_EQ(outcome.scaleX, 2);
    EXPECT_EQ(outcome.scaleY, 3);
    EXPECT_EQ(outcome.points[0].x, 11);
    EXPECT_EQ(outcome.points[1].x, 22);
}

TEST_F(DriverTest, SetsTheOptionsForTheRunAndPutsTheLoadedOnesBack) {
    request_.filter = "nega";
    request_.options = {Option("nega", "TargetType", 1), Option("nega", "TargetType", 2)};
    for (const bool remember : {false, true}) {
        request_.rememberOptions = remember;
        script_.dialog = [&](ApplyCallback apply) {
            script_.object->TargetType = 7;
            apply();
            EXPECT_EQ(script_.object->TargetType, remember ? 2 : 7);
            return 1;
        };
        script_.execute = [&](const ExecuteArgs&) { EXPECT_EQ(script_.object->TargetType, 2); };
        EXPECT_EQ(Run().status, RunStatus::Done);
    }
}

TEST_F(DriverTest, TakesTheLastRunOfAConfirmedDialog) {
    int run = 0;
    script_.execute = [&](const ExecuteArgs& args) {
        std::strcpy(args.layerName, run == 1 ? "first" : "second");
    };
    const auto dialog = [&](int answer) {
        return [&run, answer](ApplyCallback apply) {
            for (run = 1; run <= 2; ++run) {
                EXPECT_TRUE(apply());
            }
            return answer;
        };
    };
    script_.dialog = dialog(1);
    EXPECT_EQ(LayerAt(Run().document, 0).name, "second");
    script_.dialog = dialog(-1);
    EXPECT_EQ(Run().status, RunStatus::Cancelled);
    script_.dialog = [](ApplyCallback) { return 1; };
    EXPECT_EQ(Run().status, RunStatus::NothingToDo) << "confirmed without a run";
}

TEST_F(DriverTest, RefusesRunsInsideARun) {
    ApplyCallback callback = nullptr;
    script_.dialog = [&](ApplyCallback apply) {
        callback = apply;
        return apply();
    };
    script_.execute = [&](const ExecuteArgs&) {
        EXPECT_FALSE(callback());
        EXPECT_EQ(RunFilter(module_, document_, request_).status, RunStatus::Failed);
    };
    EXPECT_EQ(Run().status, RunStatus::Done);
    EXPECT_FALSE(callback()) << "no run is active any more";
}

class RealModule : public testing::Test {
  protected:
    Document Run(const Document& document, const RunRequest& request) const {
        RunOutcome outcome = RunFilter(module_, document, request);
        EXPECT_EQ(outcome.status, RunStatus::Done) << outcome.fault;
        return std::move(outcome.document);
    }

    Module module_ = LoadModule(FindModule());
    RandomDocuments random_{5};
};

TEST_F(RealModule, InvertsWhatTheDocumentShows) {
    for (int i = 0; i < 20; ++i) {
        Document document = random_.AnyDocument(9, 7);
        document.items.insert(document.items.begin(), random_.AnyLayer(9, 7));
        const Document result =
            Run(document, {.filter = "nega", .options = {Option("nega", "TargetType", 0)}});
        std::vector<RGBA16> inverted = Flatten(document);
        for (RGBA16& pixel : inverted) {
            pixel = {static_cast<uint16_t>(kFullScale - pixel.r),
                     static_cast<uint16_t>(kFullScale - pixel.g),
                     static_cast<uint16_t>(kFullScale - pixel.b), pixel.a};
        }
        ASSERT_EQ(result.items.size(), 1U);
        EXPECT_EQ(LayerAt(result, 0).pixels, inverted);
    }
}

TEST_F(RealModule, JoinsTheChannelsOfALayerToTheSameLayerInTheSamePlace) {
    for (int i = 0; i < 20; ++i) {
        Document document = random_.AnyDocument(9, 7);
        Folder folder;
        folder.name = "folder";
        for (int k = 0; k < 3; ++k) {
            Layer layer = random_.AnyLayer(9, 7);
            layer.name += "😀 a name of more than sixty-four bytes, 空空空空空空空空空空";
            folder.items.emplace_back(layer);
            document.items.insert(document.items.begin(), folder.items[0]);
        }
        document.items.emplace_back(folder);
        const auto last = static_cast<int32_t>(document.items.size()) - 1;
        for (LayerPosition position : {LayerPosition{1, -1}, LayerPosition{last, 2}}) {
            const Layer& source = position.layer < 0 ? LayerAt(document, 1) : LayerAt(folder, 2);
            const Document split = Run(document, {.filter = "chan_decomp", .current = position});
            if (source.kind == CompositionKind::Normal && !source.clip) {
                EXPECT_TRUE(Flatten(split) == Flatten(document)) << "its channels look like it";
            }
            ++(position.layer < 0 ? position.item : position.layer);
            const Document joined = Run(split, {.filter = "chan_merge", .current = position});
            ASSERT_EQ(Names(joined.items), Names(document.items));
            EXPECT_TRUE(Contents(LayerAt(joined, 1)) == Contents(LayerAt(document, 1)));
            EXPECT_TRUE(Contents(LayerAt(std::get<Folder>(joined.items.back()), 2)) ==
                        Contents(LayerAt(folder, 2)));
        }
    }
}

TEST_F(RealModule, IsRefusedWhenItCannotBeUsed) {
    EXPECT_THROW(LoadModule("/nowhere/libimgbasic.so"), ModuleError);
    EXPECT_THROW(LoadModule("libz.so.1"), ModuleError) << "nothing from the system's folders";
    EXPECT_EQ(RunFilter(module_, SampleDocument(), {.filter = "sepia"}).status, RunStatus::Failed);
}

}  // namespace
}  // namespace imgbasic::host
