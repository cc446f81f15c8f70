#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "lib/base/platform.h"

// After the system's own header.
#include <winver.h>

namespace imgbasic {
namespace {

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
