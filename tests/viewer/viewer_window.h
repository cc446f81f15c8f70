#pragma once

#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/flatten.h"
#include "host/image_file.h"
#include "host/sample_depth.h"
#include "host/viewer/main_window.h"
#include "host/viewer/menu.h"
#include "plugin/imgbasic/filters.h"
#include "tests/plugin/private_store.h"
#include "tests/viewer/viewer_hand.h"
#include "tests/win32/dialog_hand.h"

namespace imgbasic::viewer {

namespace fs = std::filesystem;
using host::Document;

/// How often the driver has asked for the phases, which it does once a run.
inline int runs = 0;
inline decltype(&ImagePluginGetPhase) realGetPhase = nullptr;

inline int CountedGetPhase(const char* name) {
    ++runs;
    return realGetPhase(name);
}

inline host::Layer PaintedLayer(const Document& document, const char* name, PixelRect bounds,
                                int seed) {
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
inline Document PaintedDocument() {
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

inline std::string BytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The viewer's window with a document open, and a folder for files.
class Viewer : public testing::Test {
  public:
    static constexpr uint32_t kDrawn = 0x336699;

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
    void WithDialog(const char* filter, const Script& script) {
        const auto open = [&] {
            DoFilter(filter);
            return true;
        };
        WithHand(filter, open, script);
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
        EXPECT_TRUE(host::Flatten(a) == host::Flatten(b));
    }

    const fs::path folder_ = fs::temp_directory_path() / "imgbasic-viewer-tests";
    host::Module module_ = host::LoadModule(host::FindModule());
    std::unique_ptr<MainWindow> window_;
};

}  // namespace imgbasic::viewer
