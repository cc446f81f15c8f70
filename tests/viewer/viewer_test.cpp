#include <windows.h>

#include <shlobj.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/sample_depth.h"
#include "host/viewer/batch.h"
#include "host/viewer/main_window.h"
#include "host/viewer/menu.h"
#include "host/viewer/phrases.h"
#include "host/wic_library.h"
#include "plugin/imgbasic/filters.h"
#include "tests/plugin/private_store.h"
#include "tests/viewer/viewer_hand.h"
#include "tests/win32/dialog_hand.h"

namespace imgbasic::viewer {
namespace {

namespace fs = std::filesystem;
using host::Document;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kPreview = 1303;
constexpr uint32_t kDrawn = 0x336699;

int runs = 0;
decltype(&ImagePluginGetPhase) realGetPhase = nullptr;

/// The driver asks for the phases once a run.
int CountedGetPhase(const char* name) {
    ++runs;
    return realGetPhase(name);
}

host::Layer PaintedLayer(const Document& document, const char* name, PixelRect bounds, int seed) {
    host::Layer layer;
    layer.name = name;
    layer.bounds = bounds;
    layer.pixels.resize(PixelCount(document.width, document.height));
    for (int y = bounds.top; y < bounds.bottom; ++y) {
        for (int x = bounds.left; x < bounds.right; ++x) {
            const auto shade = [&](int step) {
                return static_cast<uint16_t>((x * step + y * seed) % 256 * 256);
            };
            layer.pixels[static_cast<size_t>(y) * static_cast<size_t>(document.width) +
                         static_cast<size_t>(x)] = {shade(3), shade(5), shade(9), kFullScale};
        }
    }
    return layer;
}

/// Two layers and a folder with a third over an opaque ground.
Document PaintedDocument() {
    Document document{60, 40, 16, {}};
    document.items.emplace_back(PaintedLayer(document, "上 top", {5, 5, 30, 25}, 7));
    host::Folder folder;
    folder.name = "folder";
    folder.items.emplace_back(PaintedLayer(document, "inner", {20, 10, 50, 38}, 11));
    folder.opacity = 50;
    document.items.emplace_back(std::move(folder));
    document.items.emplace_back(PaintedLayer(document, "ground", {0, 0, 60, 40}, 13));
    return document;
}

std::string BytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Viewer : public testing::Test {
  public:
    Viewer() {
        ClearPrivateStore();
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        host::SaveDocument(PaintedDocument(), folder_ / L"絵.ora", {});
        realGetPhase = module_.getPhase;
        module_.getPhase = CountedGetPhase;
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        window_ = std::make_unique<MainWindow>(module_);
        window_->Runs().drawColor = kDrawn;
        ShowWindow(window_->Handle(), SW_SHOW);
        Open(folder_ / L"絵.ora");
    }
    ~Viewer() override {
        window_.reset();
        fs::remove_all(folder_);
        CoUninitialize();
    }

    void Open(const fs::path& path) {
        window_->Open({path});
        Do(kActualSize);
    }
    void Do(int command) {
        SendMessageW(window_->Handle(), WM_COMMAND, static_cast<WPARAM>(command), 0);
    }
    void DoFilter(const std::string& name) {
        const auto* const row = std::ranges::find(kFilterRows, name, &FilterRow::name);
        Do(kFirstFilter + static_cast<int>(row - kFilterRows.begin()));
    }
    bool WithDialog(const wchar_t* caption, const std::string& filter, const Script& script) {
        return WithHand(
            caption,
            [&] {
                DoFilter(filter);
                return true;
            },
            script);
    }
    const Document& Shown() const { return window_->Picture().Content(); }

    /// What the driver makes of a document without a window.
    Document Expected(const Document& document, const std::string& filter,
                      std::vector<host::OptionValue> options) {
        const host::FilterObject reference(
            module_.prepare(filter.c_str(), 1, 1, 0, 0, -1, 0, 0, 0, nullptr, 0, nullptr),
            {module_.dispose, filter});
        const host::RunOutcome outcome = host::RunFilter(module_, document,
                                                         {.filter = filter,
                                                          .drawColor = kDrawn,
                                                          .reference = reference.get(),
                                                          .options = std::move(options)});
        EXPECT_EQ(outcome.status, host::RunStatus::Done) << outcome.fault;
        return outcome.document;
    }

    /// A file with a layer that is composed in a way that only its own program knows.
    fs::path SaveStrangeFile() {
        Document document = PaintedDocument();
        auto& top = std::get<host::Layer>(document.items[0]);
        top.kind = host::CompositionKind::Other;
        top.otherKind = "x:strange";
        host::SaveDocument(document, folder_ / "strange.ora", {});
        return folder_ / "strange.ora";
    }

    /// The canvas shows what the document flattens to, in the middle at actual size.
    void ExpectOnCanvas(const Document& document) {
        const std::vector<RGBA16> flat = host::Flatten(document);
        const ScreenPart canvas = ReadBack(window_->Canvas().Handle());
        const int left = (canvas.width - document.width) / 2;
        const int top = (canvas.height - document.height) / 2;
        int seen = 0;
        int wrong = 0;
        for (int y = 0; y < document.height; ++y) {
            for (int x = 0; x < document.width; ++x) {
                const RGBA16& pixel =
                    flat[static_cast<size_t>(y) * static_cast<size_t>(document.width) +
                         static_cast<size_t>(x)];
                const uint32_t color = uint32_t{host::ToDepth8(pixel.r)} << 16 |
                                       uint32_t{host::ToDepth8(pixel.g)} << 8 |
                                       host::ToDepth8(pixel.b);
                const bool isOpaque = pixel.a == kFullScale;
                const size_t at = static_cast<size_t>(top + y) * static_cast<size_t>(canvas.width) +
                                  static_cast<size_t>(left + x);
                seen += isOpaque ? 1 : 0;
                wrong += isOpaque && canvas.pixels[at] != color ? 1 : 0;
            }
        }
        EXPECT_GT(seen, document.width * document.height / 2);
        EXPECT_EQ(wrong, 0);
    }

    void ExpectSame(const Document& a, const Document& b) {
        EXPECT_EQ(host::CountLayers(a.items), host::CountLayers(b.items));
        const std::vector<RGBA16> left = host::Flatten(a);
        const std::vector<RGBA16> right = host::Flatten(b);
        ASSERT_EQ(left.size(), right.size());
        const auto at = static_cast<size_t>(std::ranges::mismatch(left, right).in1 - left.begin());
        EXPECT_TRUE(left == right)
            << "from pixel " << at << " on: " << testing::PrintToString(left[at])
            << testing::PrintToString(right[at]);
    }

    const fs::path folder_ = fs::temp_directory_path() / "imgbasic-viewer-tests";
    host::Module module_ = host::LoadModule(host::FindModule());
    std::unique_ptr<MainWindow> window_;
};

struct FilterCase {
    const char* filter;
    const wchar_t* caption;  ///< null without a dialog
    std::vector<std::pair<const char*, int32_t>> options;
    Script change;  ///< enters the options by hand
};

const FilterCase kCases[] = {
    {"gray",
     L"グレースケール",
     {{"CalcMode", 2}, {"ColorMode", 7}, {"TargetType", 1}},
     [](const DialogHand& hand) {
         hand.Pick(1003, 2);
         hand.Pick(1004, 7);
         hand.Pick(1002, 1);
     }},
    {"mono", L"2階調化", {{"Threshold", 90}}, [](const DialogHand& hand) { hand.Slide(1300, 90); }},
    {"nega",
     L"階調の反転",
     {{"TargetType", 2}},
     [](const DialogHand& hand) { hand.Pick(1002, 2); }},
    {"chan_decomp", nullptr, {}, nullptr},
    {"chan_merge", nullptr, {}, nullptr},
    {"col_reduce",
     L"減色",
     {{"ReduceColor", 5}, {"DitherType", 1}},
     [](const DialogHand& hand) {
         hand.Type(1004, L"5");
         hand.Pick(1012, 1);
     }},
    {"scaling",
     L"拡大縮小",
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
        if (test.caption == nullptr) {
            DoFilter(test.filter);
        } else {
            WithDialog(test.caption, test.filter, [&](const DialogHand& hand) {
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
    WithDialog(L"階調の反転", "nega", [&](const DialogHand& hand) {
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
    WithDialog(L"拡大縮小", "scaling", [&](const DialogHand& hand) {
        hand.Click(1318);
        hand.Type(1273, L"50");
        hand.Click(IDOK);
    });
    const Document once = Shown();
    Do(kRepeat);
    EXPECT_EQ(Shown().width, source.width / 4) << "percentages are of the new picture";
    WithDialog(L"グレースケール", "gray", [&](const DialogHand& hand) {
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
        L"2階調化",
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

/// Encodes a picture of 2 x 1 pixels, red and blue, by the system.
std::string Encoded(const GUID& container) {
    const auto factory = host::ImagingFactory();
    host::ComPtr<IStream> stream;
    host::ComPtr<IWICBitmapEncoder> encoder;
    host::ComPtr<IWICBitmapFrameEncode> frame;
    BYTE pixels[] = {0, 0, 255, 255, 0, 0};
    GUID format = GUID_WICPixelFormat24bppBGR;
    host::Check(CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf()));
    host::Check(factory->CreateEncoder(container, nullptr, encoder.GetAddressOf()));
    host::Check(encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache));
    host::Check(encoder->CreateNewFrame(frame.GetAddressOf(), nullptr));
    host::Check(frame->Initialize(nullptr));
    host::Check(frame->SetSize(2, 1));
    host::Check(frame->SetPixelFormat(&format));
    host::Check(frame->WritePixels(1, sizeof pixels, sizeof pixels, pixels));
    host::Check(frame->Commit());
    host::Check(encoder->Commit());
    HGLOBAL memory = nullptr;
    host::Check(GetHGlobalFromStream(stream.Get(), &memory));
    std::string bytes(static_cast<const char*>(GlobalLock(memory)), GlobalSize(memory));
    GlobalUnlock(memory);
    return bytes;
}

/// Drops files on a window as the system does.
void Drop(HWND window, const std::vector<fs::path>& paths) {
    std::wstring names;
    for (const fs::path& path : paths) {
        names += path.wstring() + L'\0';
    }
    DROPFILES head{};
    head.pFiles = sizeof head;
    head.fWide = TRUE;
    const size_t bytes = (names.size() + 1) * sizeof(wchar_t);
    const HGLOBAL drop = GlobalAlloc(GMEM_MOVEABLE, sizeof head + bytes);
    auto* const memory = static_cast<std::byte*>(GlobalLock(drop));
    std::memcpy(memory, &head, sizeof head);
    std::memcpy(memory + sizeof head, names.c_str(), bytes);
    GlobalUnlock(drop);
    SendMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(drop), 0);
}

TEST_F(Viewer, OpensTheFormatsOfTheSystemUprightAndSeveralAsLayers) {
    const auto write = [&](const char* name, const std::string& bytes) {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        return folder_ / name;
    };
    const fs::path bmp = write("a.bmp", Encoded(GUID_ContainerFormatBmp));
    const fs::path tiff = write("b.tif", Encoded(GUID_ContainerFormatTiff));
    std::string jpeg = Encoded(GUID_ContainerFormatJpeg);
    using namespace std::string_literals;
    // Orientation 6: the row is shown as a column, its first pixel on top.
    jpeg.insert(2,
                "\xFF\xE1\0\x22"
                "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0"s);
    const fs::path turned = write("c.jpg", jpeg);
    const RGBA16 red{kFullScale, 0, 0, kFullScale};
    const RGBA16 blue{0, 0, kFullScale, kFullScale};
    for (const fs::path& path : {bmp, tiff}) {
        Open(path);
        EXPECT_THAT(host::Flatten(Shown()), ElementsAre(red, blue)) << path;
    }
    Open(turned);
    EXPECT_EQ(Shown().width, 1);
    EXPECT_EQ(Shown().height, 2);
    Drop(window_->Handle(), {turned, bmp, folder_ / L"絵.ora"});
    EXPECT_EQ(host::CountLayers(Shown().items), 5U);
    EXPECT_EQ(Shown().width, 60);
    EXPECT_TRUE(window_->Picture().Path().empty());
    EXPECT_EQ(host::Flatten(Shown())[1], blue) << "of the second, beside the first";

    Document deep{2, 1, 16, {}};
    deep.items.emplace_back(host::Layer{});
    auto& layer = std::get<host::Layer>(deep.items[0]);
    layer.pixels = {{1, 300, 65279, kFullScale}, {128, 32768, 7, 12345}};
    layer.bounds = {0, 0, 2, 1};
    host::SaveDocument(deep, folder_ / "deep.png", {});
    Open(folder_ / "deep.png");
    EXPECT_EQ(host::Flatten(Shown()), layer.pixels);
    ASSERT_TRUE(window_->SaveTo(folder_ / "again.png"));
    EXPECT_EQ(BytesOf(folder_ / "again.png"), BytesOf(folder_ / "deep.png"));
}

/// Starts the program as it is installed in `folder` and closes its message; what that said.
std::wstring StartAlone(const fs::path& folder) {
    const fs::path program = folder / "imgbasic-viewer.exe";
    fs::copy_file(host::FindModule().replace_filename(program.filename()), program,
                  fs::copy_options::overwrite_existing);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    EXPECT_TRUE(CreateProcessW(program.c_str(), nullptr, nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &process));
    const auto texts = WithBoxesAnswered(
        [&] { EXPECT_EQ(WaitForSingleObject(process.hProcess, 20000), WAIT_OBJECT_0); }, IDOK,
        process.dwProcessId);
    DWORD status = 0;
    GetExitCodeProcess(process.hProcess, &status);
    EXPECT_EQ(status, 1U);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return texts.empty() ? L"" : texts.front();
}

TEST_F(Viewer, SaysWhichModuleItMisses) {
    EXPECT_THAT(StartAlone(folder_), HasSubstr(L"imgbasic.dll: the filter module is not there"));
    wchar_t system[MAX_PATH];
    GetSystemDirectoryW(system, MAX_PATH);
    fs::copy_file(fs::path(system) / "version.dll", folder_ / "imgbasic.dll");
    EXPECT_THAT(StartAlone(folder_), HasSubstr(L"does not export PluginGetName"));
}

}  // namespace
}  // namespace imgbasic::viewer
