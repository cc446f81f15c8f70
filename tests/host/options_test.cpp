#include "host/options.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "host/scaled_size.h"

namespace imgbasic::host {
namespace {

std::string Outcome(std::string_view filter, const std::string& text) {
    try {
        const OptionValue option = ParseOption(filter, text);
        return std::string(option.option->name) + " " + std::to_string(option.value);
    } catch (const std::invalid_argument& fault) {
        return fault.what();
    }
}

TEST(Options, AreReadFromFieldAndValue) {
    const struct {
        const char* filter;
        const char* text;
        const char* outcome;
    } cases[] = {
        {"gray", "CalcMode=9", "CalcMode 9"},
        {"scaling", "RatioWidth=819200", "RatioWidth 819200"},
        {"nega", "TargetType=-1", "'TargetType=-1': the value must be a whole number, 0 to 2"},
        {"scaling", "newWidth=0", "'newWidth=0': the value must be a whole number, 1 to 8192"},
        {"scaling", "BoundAlpha=false", "BoundAlpha 0"},
        {"scaling", "RatioSize=true", "RatioSize 1"},
        {"scaling", "RatioSize=1", "RatioSize 1"},
        {"scaling", "RatioSize=2", "'RatioSize=2': the value must be 0, 1, true or false"},
        {"mono", "Threshold=true", "'Threshold=true': the value must be a whole number, 1 to 255"},
        {"mono", "Threshold=", "'Threshold=': the value must be a whole number, 1 to 255"},
        {"mono", "Threshold=1x", "'Threshold=1x': the value must be a whole number, 1 to 255"},
        {"mono", "Threshold=2147483648",
         "'Threshold=2147483648': the value must be a whole number, 1 to 255"},
        {"mono", "Threshold",
         "'Threshold' sets nothing; write Field=value, the options are Threshold, TargetType"},
        {"nega", "Threshold=1",
         "'Threshold=1' sets nothing; write Field=value, the options are TargetType"},
        {"chan_merge", "TargetType=1",
         "'TargetType=1' sets nothing; write Field=value, this filter has no options"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(Outcome(test.filter, test.text), test.outcome);
    }
}

std::string SizeText(const SizeRequest& request, PixelSize source) {
    try {
        const PixelSize size = ScaledSize(request, source);
        return std::to_string(size.width) + "x" + std::to_string(size.height);
    } catch (const SizeError&) {
        return "refused";
    }
}

TEST(ScaledSize, ReadsPercentagesAndFractionsExactly) {
    const struct {
        const char* text;
        std::optional<Ratio> ratio;
        std::optional<int32_t> percent;
    } cases[] = {
        {"50", Ratio{50, 100}, 50},         {"150%", Ratio{150, 100}, 150},
        {"33.3", Ratio{333, 1000}, {}},     {"33.333333%", Ratio{33333333, 100'000'000}, {}},
        {"12.50", Ratio{1250, 10'000}, {}}, {"25.0", Ratio{250, 1000}, 25},
        {"1/3", Ratio{1, 3}, {}},           {"3/2", Ratio{3, 2}, 150},
        {"819201", Ratio{819201, 100}, {}},
    };
    for (const auto& test : cases) {
        const std::optional<Ratio> ratio = ParseRatio(test.text);
        ASSERT_EQ(ratio, test.ratio) << test.text;
        EXPECT_EQ(ratio->WholePercent(), test.percent) << test.text;
    }
    for (const char* text : {"", "0", "0.0", "-5", ".5", "5x", "1/0", "1/", "1/2%", "1//2", "%",
                             "9999999999", "0.0000000001", "1e3"}) {
        EXPECT_EQ(ParseRatio(text), std::nullopt) << text;
    }
}

TEST(ScaledSize, FollowsTheRequest) {
    const PixelSize source{1200, 801};
    const struct {
        SizeRequest request;
        PixelSize source;
        const char* size;
    } cases[] = {
        {{.width = 10, .height = 8192}, source, "10x8192"},
        {{.width = 600}, source, "600x401"},
        {{.height = 400}, source, "599x400"},
        {{.width = 1}, {3, 1}, "1x1"},
        {{.width = 8192}, {1, 2}, "refused"},
        {{.ratio = Ratio{50, 100}}, source, "600x400"},
        {{.ratio = Ratio{50, 100}, .ratioHeight = Ratio{2, 1}}, source, "600x1602"},
        {{.ratio = Ratio{10, 100}}, {3, 1000}, "refused"},
        {{.ratio = Ratio{200, 100}}, {5000, 10}, "refused"},
        {{.ratio = Ratio{819200, 100}}, {2147483647, 1}, "refused"},
        {{.ratio = Ratio{999'999'999, 1}}, {2147483647, 1}, "refused"},
        {{.ratio = Ratio{333, 1000}}, source, "399x266"},
        {{.ratio = Ratio{1, 3}}, source, "400x267"},
        {{.fit = PixelSize{300, 300}}, source, "300x200"},
        {{.fit = PixelSize{300, 100}}, source, "150x100"},
        {{.fit = PixelSize{8192, 8192}}, {1, 1}, "8192x8192"},
        {{.fit = PixelSize{10, 10}}, {8000, 1}, "10x1"},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(SizeText(test.request, test.source), test.size)
            << test.source.width << "x" << test.source.height;
    }
}

}  // namespace
}  // namespace imgbasic::host
