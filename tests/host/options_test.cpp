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
        {{.ratio = 50}, source, "600x400"},
        {{.ratio = 50, .ratioHeight = 200}, source, "600x1602"},
        {{.ratio = 10}, {3, 1000}, "refused"},
        {{.ratio = 200}, {5000, 10}, "refused"},
        {{.ratio = 819200}, {2147483647, 1}, "refused"},
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
