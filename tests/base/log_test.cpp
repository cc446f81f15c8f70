#include "lib/base/log.h"

#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

namespace imgbasic {
namespace {

TEST(Log, StampsAndCutsTheLineAndCapturesNest) {
    std::vector<std::string> outer;
    std::vector<std::string> inner;
    const LogCapture captureOuter([&](std::string_view line) { outer.emplace_back(line); });
    {
        const LogCapture captureInner([&](std::string_view line) { inner.emplace_back(line); });
        Log("[Class::Method]値は%dです。\n", 42);
    }
    Log("%s", std::string(5000, 'x').c_str());

    ASSERT_EQ(inner.size(), 1U);
    EXPECT_TRUE(std::regex_match(
        inner[0],
        std::regex(R"(\d{4}/\d\d/\d\d \d\d:\d\d:\d\d : \[Class::Method\]値は42です。\n)")))
        << inner[0];
    ASSERT_EQ(outer.size(), 1U);
    EXPECT_LT(outer[0].size(), 1100U);
}

TEST(Log, SurvivesASinkThatThrows) {
    int calls = 0;
    const LogCapture capture([&](std::string_view) {
        ++calls;
        throw 1;
    });
    Log("first\n");
    Log("second\n");
    EXPECT_EQ(calls, 2);
}

}  // namespace
}  // namespace imgbasic
