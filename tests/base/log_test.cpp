#include "lib/base/log.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

namespace imgbasic {
namespace {

/// Logged while the program's variables are made, this file's before the log's.
const std::string early = [] {
    std::string line;
    const LogCapture capture([&](std::string_view text) { line = text; });
    Log("early\n");
    return line;
}();

TEST(Log, WorksBeforeMain) {
    EXPECT_EQ(early.substr(std::min<size_t>(22, early.size())), "early\n");
}

TEST(Log, StampsAndCutsTheLineAndCapturesNest) {
    std::vector<std::string> outer;
    std::vector<std::string> inner;
    const LogCapture captureOuter([&](std::string_view line) { outer.emplace_back(line); });
    {
        const LogCapture captureInner([&](std::string_view line) { inner.emplace_back(line); });
        Log("[Class::Method]値は%dです。\n", 42);
    }
    const std::string filling(1021, 'x');
    for (const std::string more : {"y\n", "yy\n", "の", "のの\n"}) {
        Log("%s", (filling + more).c_str());
    }

    ASSERT_EQ(inner.size(), 1U);
    std::string stamp = inner[0].substr(0, 22);
    std::replace_if(
        stamp.begin(), stamp.end(), [](char c) { return c >= '0' && c <= '9'; }, '0');
    EXPECT_EQ(stamp, "0000/00/00 00:00:00 : ");
    EXPECT_EQ(inner[0].substr(22), "[Class::Method]値は42です。\n");
    for (std::string& line : outer) {
        line.erase(0, 22);
    }
    EXPECT_THAT(outer, testing::ElementsAre(filling + "y\n", filling + "y\n", filling + "\n",
                                            filling + "\n"));
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
