#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "plugin/imgbasic/entry.h"

// After the system's own header.
#include <winver.h>

namespace imgbasic {
namespace {

class Module : public testing::Test {
  protected:
    Module() : handle_(LoadLibraryA("imgbasic.dll")) {}
    ~Module() override { FreeLibrary(handle_); }
    void SetUp() override { ASSERT_NE(handle_, nullptr); }

    template <typename Function>
    Function Find(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(handle_, name)));
    }

    HMODULE handle_;
};

TEST_F(Module, HasItsThirteenExportsByName) {
    std::istringstream names(
        "PluginGetName ImagePluginIsSizeChange ImagePluginIsBatchEnable ImagePluginGetPhase "
        "ImagePluginPrepare2 ImagePluginBatchPrepare ImagePluginDialog ImagePluginPhase2 "
        "ImagePluginExecute4 ?ImagePluginAdjustScale@@YAXPEBDPEAXHHPEAN2@Z "
        "ImagePluginAdjustLocate2 ImagePluginDispose ImagePluginBatchDispose");
    for (std::string name; names >> name;) {
        EXPECT_NE(GetProcAddress(handle_, name.c_str()), nullptr) << name;
    }
}

TEST_F(Module, RunsAFilterEndToEnd) {
    ImageProcess* object = Find<decltype(&ImagePluginPrepare2)>("ImagePluginPrepare2")(
        "nega", 3, 2, 0, 0, -1, 0, 0, 0, nullptr, 0, nullptr);
    ASSERT_NE(object, nullptr);
    const std::vector<RGBA16> merged(6, RGBA16{0xFF00, 0, 0x1200, 0x8000});
    std::vector<RGBA16> result(6);
    RECT area{};
    EXPECT_EQ(Find<decltype(&ImagePluginPhase2)>("ImagePluginPhase2")(
                  "nega", object, 0, nullptr, nullptr,
                  reinterpret_cast<const uint16_t*>(merged.data()), 0, 0, nullptr),
              1);
    EXPECT_TRUE(Find<decltype(&ImagePluginExecute4)>("ImagePluginExecute4")(
        "nega", object, 0, 0, -1, 0, result.data(), &area, nullptr, nullptr, false, nullptr,
        nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(result, std::vector<RGBA16>(6, RGBA16{0, 0xFF00, 0xED00, 0x8000}));
    EXPECT_EQ(area.right, 3);
    EXPECT_EQ(area.bottom, 2);
    EXPECT_TRUE(Find<decltype(&ImagePluginDispose)>("ImagePluginDispose")("nega", object));
}

TEST_F(Module, TellsItsVersion) {
    std::vector<char> data(GetFileVersionInfoSizeA("imgbasic.dll", nullptr));
    ASSERT_TRUE(
        GetFileVersionInfoA("imgbasic.dll", 0, static_cast<DWORD>(data.size()), data.data()));
    void* text = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueW(data.data(), L"\\StringFileInfo\\041104B0\\FileDescription", &text,
                               &length));
    EXPECT_STREQ(static_cast<const wchar_t*>(text), L"基本画像フィルター");
}

}  // namespace
}  // namespace imgbasic
