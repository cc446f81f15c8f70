#include "lib/base/log.h"

#include <gmock/gmock.h>

#include <algorithm>
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
    std::string stamp = inner[0].substr(0, 22);
    std::replace_if(
        stamp.begin(), stamp.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
    EXPECT_EQ(stamp, "0000/00/00 00:00:00 : ");
    EXPECT_EQ(inner[0].substr(22), "[Class::Method]値は42です。\n");
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
