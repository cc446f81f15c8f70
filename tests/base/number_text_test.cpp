#include "lib/base/number_text.h"

#include <gtest/gtest.h>

#include <vector>

namespace imgbasic {
namespace {

struct TextCase {
    const char* text;
    int32_t typing;   ///< value while it is typed, kNone for none
    int32_t leaving;  ///< value once the field is left
    bool rewrite;
};

constexpr int32_t kNone = INT32_MIN;

constexpr TextCase kCases[] = {
    {"128", 128, 128, false},
    {"007", 7, 7, false},
    {"  7", 7, 7, false},
    {"+7", 7, 7, false},
    {"12,5", 125, 125, false},
    {"1,2,", 12, 12, false},
    {"12a5", 12, 12, false},
    {"999999", 255, 255, true},
    {"999999999999999", 255, 255, true},
    {"-3", 1, 1, true},
    {"-99999999999999", 1, 1, true},
    {"0", 1, 1, true},
    {"abc", 1, 1, true},
    {"- 3", 1, 1, true},
    {"", kNone, 1, true},
    {",", kNone, 1, true},
    {"\x82\x50\x82\x51", 1, 1, true},  // full-width digits are none
    {"5\x82\x51", 5, 5, false},        // and end the number
    {"\x82,5", 1, 1, true},            // a second byte is no comma
    {"7\x82", 7, 7, false},            // half a character
    {"\xB1\xB2", 1, 1, true},          // single-byte katakana
};

TEST(NumberText, MeansANumberWithinBoundsWhateverIsTyped) {
    for (const TextCase& c : kCases) {
        SCOPED_TRACE(c.text);
        const TypedNumber typing = ReadTypedNumber(c.text, 1, 255, false);
        EXPECT_EQ(typing.value.value_or(kNone), c.typing);
        EXPECT_FALSE(typing.rewrite);
        const TypedNumber leaving = ReadTypedNumber(c.text, 1, 255, true);
        EXPECT_EQ(leaving.value.value_or(kNone), c.leaving);
        EXPECT_EQ(leaving.rewrite, c.rewrite);
    }
    EXPECT_TRUE(ReadTypedNumber("", 0, 9, true).rewrite) << "an empty field shows no 0";
}

TEST(NumberText, ReachesBothEndsOfItsType) {
    const auto read = [](const char* text) {
        return *ReadTypedNumber(text, INT32_MIN + 1, INT32_MAX, true).value;
    };
    EXPECT_EQ(read("2147483647"), INT32_MAX);
    EXPECT_EQ(read("2147483648"), INT32_MAX);
    EXPECT_EQ(read("-2147483648"), INT32_MIN + 1);
    EXPECT_EQ(read(""), 0);
    EXPECT_EQ(read("-819200"), -819200);
}

TEST(NumberText, EndsWithItsText) {
    // Exactly sized, so that the address sanitizer sees a read past the end.
    for (const char c : {'\x82', '-', ',', '9', ' '}) {
        const std::vector<char> bytes{c};
        EXPECT_TRUE(ReadTypedNumber({bytes.data(), bytes.size()}, 0, 9, true).value.has_value());
    }
}

}  // namespace
}  // namespace imgbasic
