#include <windows.h>

#include <shlobj.h>

#include <cstring>

#include "host/wic_library.h"
#include "tests/viewer/viewer_window.h"

namespace imgbasic::viewer {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

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
