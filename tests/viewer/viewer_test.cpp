#include "host/viewer/batch.h"
#include "host/viewer/phrases.h"
#include "tests/viewer/viewer_window.h"

namespace imgbasic::viewer {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kPreview = 1303;

struct FilterCase {
    const char* filter;
    std::vector<std::pair<const char*, int32_t>> options;
    Script change;  ///< enters the options by hand; null without a dialog
};

const FilterCase kCases[] = {
    {"gray",
     {{"CalcMode", 2}, {"ColorMode", 7}, {"TargetType", 1}},
     [](const DialogHand& hand) {
         hand.Pick(1003, 2);
         hand.Pick(1004, 7);
         hand.Pick(1002, 1);
     }},
    {"mono", {{"Threshold", 90}}, [](const DialogHand& hand) { hand.Slide(1300, 90); }},
    {"nega", {{"TargetType", 2}}, [](const DialogHand& hand) { hand.Pick(1002, 2); }},
    {"chan_decomp", {}, nullptr},
    {"chan_merge", {}, nullptr},
    {"col_reduce",
     {{"ReduceColor", 5}, {"DitherType", 1}},
     [](const DialogHand& hand) {
         hand.Type(1004, L"5");
         hand.Pick(1012, 1);
     }},
    {"scaling",
     {{"RatioSize", 0}, {"newWidth", 90}, {"newHeight", 60}, {"InterType", 0}},
     [](const DialogHand& hand) {
         hand.Type(1320, L"90");
         hand.Pick(1333, 0);
     }},
};

TEST_F(Viewer, ShowsAndSavesOfEveryFilterWhatTheDriverGives) {
    for (const FilterCase& test : kCases) {
        SCOPED_TRACE(test.filter);
        if (std::string(test.filter) != "chan_merge") {  // which undoes its predecessor
            Open(folder_ / L"絵.ora");
        }
        std::vector<host::OptionValue> options;
        for (const auto& [name, value] : test.options) {
            options.push_back(host::Option(test.filter, name, value));
        }
        const Document source = Shown();
        const Document expected = Expected(source, test.filter, options);
        runs = 0;
        if (test.change == nullptr) {
            DoFilter(test.filter);
        } else {
            WithDialog(test.filter, [&](const DialogHand& hand) {
                test.change(hand);
                if (std::string(test.filter) != "scaling") {
                    hand.Click(kPreview);
                    ExpectOnCanvas(expected);
                }
                hand.Click(IDOK);
            });
        }
        EXPECT_EQ(runs, 1) << "a preview that is confirmed is not computed again";
        ExpectSame(Shown(), expected);
        Do(kActualSize);
        UpdateWindow(window_->Canvas().Handle());
        ExpectOnCanvas(expected);
        for (const char* const name : {"saved.png", "saved.ora"}) {
            WithBoxesAnswered([&] { EXPECT_TRUE(window_->SaveTo(folder_ / name)); }, IDYES);
            EXPECT_EQ(host::Flatten(host::LoadDocument(folder_ / name)), host::Flatten(expected));
        }
        ExpectSame(host::LoadDocument(folder_ / "saved.ora"), expected);
    }
}

TEST_F(Viewer, CancellingAPreviewLeavesEverythingAsItWas) {
    ASSERT_TRUE(window_->SaveTo(folder_ / "before.ora"));
    UpdateWindow(window_->Canvas().Handle());
    const ScreenPart before = ReadBack(window_->Canvas().Handle());
    WithDialog("nega", [&](const DialogHand& hand) {
        hand.Click(kPreview);
        EXPECT_NE(ReadBack(window_->Canvas().Handle()).pixels, before.pixels);
        hand.Click(IDCANCEL);
    });
    EXPECT_FALSE(window_->Picture().HasChanged());
    EXPECT_FALSE(window_->Picture().CanUndo());
    UpdateWindow(window_->Canvas().Handle());
    EXPECT_EQ(ReadBack(window_->Canvas().Handle()).pixels, before.pixels);
    ASSERT_TRUE(window_->SaveTo(folder_ / "after.ora"));
    EXPECT_EQ(BytesOf(folder_ / "after.ora"), BytesOf(folder_ / "before.ora"));
}

TEST_F(Viewer, RepeatsWithTheSameOptionsAndGoesBackAndForth) {
    const Document source = Shown();
    WithDialog("scaling", [&](const DialogHand& hand) {
        hand.Click(1318);
        hand.Type(1273, L"50");
        hand.Click(IDOK);
    });
    const Document once = Shown();
    Do(kRepeat);
    EXPECT_EQ(Shown().width, source.width / 4) << "percentages are of the new picture";
    WithDialog("gray", [&](const DialogHand& hand) {
        hand.Pick(1003, 4);
        hand.Pick(1002, 1);
        hand.Click(IDOK);
    });
    Do(kUndo);
    Do(kUndo);
    ExpectSame(Shown(), once);
    Do(kRedo);
    Do(kUndo);
    Do(kUndo);
    EXPECT_FALSE(window_->Picture().HasChanged());
    ExpectSame(Shown(), source);
    Do(kRepeat);
    ExpectSame(Shown(), Expected(source, "gray",
                                 {host::Option("gray", "CalcMode", 4),
                                  host::Option("gray", "TargetType", 1)}));
    EXPECT_FALSE(window_->Picture().CanRedo());
}

TEST_F(Viewer, WorksTheLayerList) {
    const HWND list = window_->Panel().List();
    EXPECT_EQ(ListView_GetItemCount(list), 4);
    ListView_SetItemState(list, 2, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(window_->Picture().current.item, 1);
    EXPECT_EQ(window_->Picture().current.layer, 0);
    Document expected = Shown();
    std::get<host::Layer>(expected.items[0]).visible = false;
    ListView_SetCheckState(list, 0, FALSE);
    std::get<host::Layer>(std::get<host::Folder>(expected.items[1]).items[0]).opacity = 30;
    SendMessageW(window_->Panel().OpacitySlider(), TBM_SETPOS, TRUE, 30);
    SendMessageW(window_->Panel().Handle(), WM_HSCROLL, TB_ENDTRACK,
                 reinterpret_cast<LPARAM>(window_->Panel().OpacitySlider()));
    UpdateWindow(window_->Canvas().Handle());
    ExpectOnCanvas(expected);
    EXPECT_TRUE(window_->Picture().HasChanged());
}

TEST_F(Viewer, TakesThePlaceThatAnotherScaleGivesIt) {
    RECT given{30, 40, 830, 640};
    SendMessageW(window_->Handle(), WM_DPICHANGED, MAKEWPARAM(144, 144),
                 reinterpret_cast<LPARAM>(&given));
    RECT taken{};
    GetWindowRect(window_->Handle(), &taken);
    EXPECT_TRUE(EqualRect(&taken, &given));
    Do(kActualSize);
    UpdateWindow(window_->Canvas().Handle());
    ExpectOnCanvas(Shown());
}

TEST_F(Viewer, RunsABatchInWhichABadFileCostsThatFile) {
    Document picture = PaintedDocument();
    host::SaveDocument(picture, folder_ / "flat.png", {});
    std::ofstream(folder_ / "broken.png") << "no picture";
    fs::create_directories(folder_ / "out");
    std::wstring report;
    WithHand(
        "mono",
        [&] {
            RunBatch(module_, window_->Handle(),
                     {"mono",
                      {folder_ / L"絵.ora", folder_ / "broken.png", SaveStrangeFile(),
                       folder_ / "flat.png"},
                      folder_ / "out"});
            return true;
        },
        [&](const DialogHand& hand) {
            hand.Slide(1300, 90);
            hand.Click(IDOK);
            const HWND progress = WaitForDialog(phrases::kAppName.Get());
            const HWND lines = FindWindowExW(progress, nullptr, L"Edit", nullptr);
            while ((report = TextIn(lines)).empty()) {
                Sleep(10);
            }
            PostMessageW(progress, WM_CLOSE, 0, 0);
        });
    EXPECT_THAT(report, HasSubstr(L"broken.png"));
    EXPECT_THAT(report, HasSubstr(L"strange.ora"));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_ / "out"), {}), 2);
    for (const wchar_t* const name : {L"flat.png", L"絵.ora"}) {
        const Document source = host::LoadDocument(folder_ / name);
        ExpectSame(host::LoadDocument(folder_ / "out" / name),
                   Expected(source, "mono", {host::Option("mono", "Threshold", 90)}));
    }
}

TEST_F(Viewer, LosesNothingWhenRefusedOrClosed) {
    const Document source = Shown();
    const auto refusals = WithBoxesAnswered([&] { DoFilter("chan_merge"); }, IDOK);
    EXPECT_EQ(refusals.size(), 2U) << "the module's message and the viewer's";
    module_.getPhase = [](const char*) -> int { throw std::bad_alloc(); };
    EXPECT_THAT(WithBoxesAnswered([&] { DoFilter("chan_decomp"); }, IDOK),
                ElementsAre(HasSubstr(L"not enough memory")));
    module_.getPhase = realGetPhase;
    ExpectSame(Shown(), source);
    EXPECT_FALSE(window_->Picture().CanUndo());
    DoFilter("chan_decomp");
    const auto close = [&] { SendMessageW(window_->Handle(), WM_CLOSE, 0, 0); };
    EXPECT_EQ(WithBoxesAnswered(close, IDCANCEL).size(), 1U);
    ASSERT_TRUE(IsWindow(window_->Handle()));
    const auto fault =
        WithBoxesAnswered([&] { window_->SaveTo(folder_ / "nowhere" / "x.ora"); }, IDOK);
    ASSERT_EQ(fault.size(), 1U);
    EXPECT_THAT(fault[0], HasSubstr(L"there is no folder"));
    EXPECT_TRUE(window_->Picture().HasChanged());
    Do(kUndo);
    EXPECT_TRUE(WithBoxesAnswered(close, IDCANCEL).empty());
    EXPECT_FALSE(IsWindow(window_->Handle()));
}

TEST_F(Viewer, AsksBeforeItLosesSomething) {
    const fs::path strange = SaveStrangeFile();
    const auto open = [&] { Open(strange); };
    EXPECT_EQ(WithBoxesAnswered(open, IDOK).size(), 1U);
    const auto run = [&] { DoFilter("chan_decomp"); };
    EXPECT_THAT(WithBoxesAnswered(run, IDNO), ElementsAre(HasSubstr(L"x:strange")));
    EXPECT_FALSE(window_->Picture().CanUndo());
    EXPECT_EQ(WithBoxesAnswered(run, IDYES).size(), 1U);
    EXPECT_TRUE(window_->Picture().CanUndo());
    Do(kUndo);
    EXPECT_TRUE(WithBoxesAnswered(run, IDNO).empty()) << "once agreed to";
    const auto save = [&] { EXPECT_FALSE(window_->SaveTo(folder_ / "merged.png")); };
    EXPECT_EQ(WithBoxesAnswered(save, IDNO).size(), 1U);
    EXPECT_FALSE(fs::exists(folder_ / "merged.png"));
    EXPECT_TRUE(window_->Picture().HasChanged());
}

}  // namespace
}  // namespace imgbasic::viewer
