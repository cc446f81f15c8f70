#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "plugin/imgbasic/entry.h"
#include "plugin/imgbasic/process.h"

// After the system's own header.
#include <winver.h>

namespace imgbasic {
namespace {

TEST(Module, RunsAFilterEndToEnd) {
    const HMODULE module = LoadLibraryA("imgbasic.dll");
    ASSERT_NE(module, nullptr);
    const auto find = [&]<typename Function>(Function*& function, const char* name) {
        function =
            reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
        ASSERT_NE(function, nullptr) << name;
    };
    decltype(ImagePluginPrepare2)* prepare = nullptr;
    decltype(ImagePluginExecute4)* execute = nullptr;
    decltype(ImagePluginAdjustScale)* adjustScale = nullptr;
    decltype(ImagePluginDispose)* dispose = nullptr;
    ASSERT_NO_FATAL_FAILURE(find(prepare, "ImagePluginPrepare2"));
    ASSERT_NO_FATAL_FAILURE(find(execute, "ImagePluginExecute4"));
    ASSERT_NO_FATAL_FAILURE(find(adjustScale, "?ImagePluginAdjustScale@@YAXPEBDPEAXHHPEAN2@Z"));
    ASSERT_NO_FATAL_FAILURE(find(dispose, "ImagePluginDispose"));

    ImageProcess* nega = prepare("nega", 3, 2, 0, 0, -1, 0, 0, 0, nullptr, 0, nullptr);
    const std::vector<RGBA16> merged(6, RGBA16{0xFF00, 0, 0x1200, 0x8000});
    nega->mergedImage = merged.data();
    std::vector<RGBA16> result(6);
    RECT area{};
    EXPECT_TRUE(execute("nega", nega, 0, 0, -1, 0, result.data(), &area, nullptr, nullptr, false,
                        nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(result, std::vector<RGBA16>(6, RGBA16{0, 0xFF00, 0xED00, 0x8000}));
    EXPECT_EQ(area.right, 3);
    EXPECT_TRUE(dispose("nega", nega));

    ImageProcess* scaling = prepare("scaling", 3, 2, 0, 0, -1, 0, 0, 0, nullptr, 0, nullptr);
    double x = 7;
    double y = 7;
    adjustScale("scaling", scaling, 0, 0, &x, &y);
    EXPECT_EQ(x, 1) << "the size is the old one while none is set";
    EXPECT_TRUE(dispose("scaling", scaling));
    FreeLibrary(module);
}

TEST(Module, TellsItsVersionAndAuthors) {
    std::vector<char> data(GetFileVersionInfoSizeA("imgbasic.dll", nullptr));
    ASSERT_TRUE(
        GetFileVersionInfoA("imgbasic.dll", 0, static_cast<DWORD>(data.size()), data.data()));
    constexpr std::pair<const char*, const char*> kTexts[] = {
        {"FileVersion", IMGBASIC_VERSION},
        {"ProductVersion", IMGBASIC_VERSION},
        {"CompanyName", IMGBASIC_AUTHORS},
        {"LegalCopyright", IMGBASIC_COPYRIGHT},
    };
    for (const auto& [name, expected] : kTexts) {
        void* text = nullptr;
        UINT length = 0;
        ASSERT_TRUE(VerQueryValueA(data.data(),
                                   ("\\StringFileInfo\\041104B0\\" + std::string(name)).c_str(),
                                   &text, &length))
            << name;
        EXPECT_STREQ(static_cast<const char*>(text), expected);
    }
}

}  // namespace
}  // namespace imgbasic
