#include <gtest/gtest.h>

#include <string>
#include <vector>

// The bytes are the same in every build; the systems that have iconv check them.
#ifndef _WIN32
#include <iconv.h>

#include "plugin/imgbasic/filters.h"

namespace imgbasic {
namespace {

std::vector<Text> AllTexts() {
    std::vector<Text> all(std::begin(texts::kMessages), std::end(texts::kMessages));
    all.insert(all.end(), std::begin(texts::kChannelNames), std::end(texts::kChannelNames));
    for (const FilterRow& row : kFilterRows) {
        all.push_back(row.displayName);
        for (const FilterOption& option : row.options) {
            all.insert(all.end(), option.choices.begin(), option.choices.end());
        }
    }
    return all;
}

TEST(Texts, AreTheSameInBothEncodings) {
    const iconv_t converter = iconv_open("CP932", "UTF-8");
    for (const Text& text : AllTexts()) {
        std::string utf8 = text.utf8;
        std::string shiftJis(utf8.size(), '\0');
        char* from = utf8.data();
        char* to = shiftJis.data();
        size_t unread = utf8.size();
        size_t unwritten = shiftJis.size();
        EXPECT_EQ(iconv(converter, &from, &unread, &to, &unwritten), 0U) << utf8;
        shiftJis.resize(shiftJis.size() - unwritten);
        EXPECT_EQ(shiftJis, text.shiftJis) << utf8;
    }
    iconv_close(converter);
}

}  // namespace
}  // namespace imgbasic
#endif
