#include "plugin/imgbasic/dialogs/dialog_rules.h"

#include <gtest/gtest.h>

#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/dialogs.h"
#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/settings.h"
#include "tests/plugin/private_store.h"

namespace imgbasic {
namespace {

/// The host of one test: what the object held in each run that it was asked for.
struct Host {
    static inline MonoImageProcess* object = nullptr;
    static inline std::vector<int32_t> thresholds;
    static inline int calls = 0;

    explicit Host(MonoImageProcess* process = nullptr) {
        object = process;
        thresholds.clear();
        calls = 0;
    }
    static bool Agree() {
        ++calls;
        if (object != nullptr) {
            thresholds.push_back(object->Threshold);
        }
        return true;
    }
    static bool Refuse() {
        Agree();
        return false;
    }
};

TEST(DialogRules, RunTheHostOnceForEveryChange) {
    MonoImageProcess mono;
    const Host host(&mono);
    mono.applyCallback = Host::Agree;
    PreviewedOptions options(mono, kRow<MonoImageProcess>);
    const auto press = [&](Press button, int32_t threshold, int32_t target) {
        return options.CarryOut(button, std::vector{threshold, target});
    };
    EXPECT_EQ(press(Press::Preview, 128, 0), DialogEnd::StaysOpen);
    EXPECT_EQ(press(Press::Preview, 128, 0), DialogEnd::StaysOpen);
    EXPECT_EQ(press(Press::Preview, 200, 0), DialogEnd::StaysOpen);
    EXPECT_EQ(press(Press::Preview, 200, 2), DialogEnd::StaysOpen);
    EXPECT_EQ(mono.Threshold, 128) << "a preview leaves the options as they were";
    EXPECT_EQ(mono.TargetType, 0);
    EXPECT_EQ(press(Press::Execute, 200, 2), DialogEnd::Confirmed);
    EXPECT_EQ(Host::thresholds, (std::vector<int32_t>{128, 200, 200}));
    EXPECT_EQ(mono.Threshold, 200);
    EXPECT_EQ(mono.TargetType, 2);
}

TEST(DialogRules, EndAsCancelledWhenTheHostRefuses) {
    for (const Press button : {Press::Preview, Press::Execute}) {
        MonoImageProcess mono;
        const Host host(&mono);
        mono.applyCallback = Host::Refuse;
        PreviewedOptions options(mono, kRow<MonoImageProcess>);
        EXPECT_EQ(options.CarryOut(button, std::vector{9, 1}), DialogEnd::Cancelled);
        EXPECT_EQ(mono.Threshold, 9) << "the refused options stay";
        EXPECT_EQ(options.CarryOut(button, std::vector{9, 1}), DialogEnd::Cancelled);
        EXPECT_EQ(Host::calls, 2) << "a refused run does not count as sent";
    }
}

/// Whether `shown` gets as far as a run of the host.
bool Accepts(const char* filter, const std::vector<int32_t>& shown) {
    const FilterRow& row = *FindFilter(filter);
    const auto process = CreateFilter(row);
    const Host host;
    process->applyCallback = Host::Agree;
    const DialogEnd end = PreviewedOptions(*process, row).CarryOut(Press::Execute, shown);
    EXPECT_EQ(end == DialogEnd::Confirmed, Host::calls == 1);
    return Host::calls == 1;
}

TEST(DialogRules, ValidateTwoColorsAndReductionAlone) {
    EXPECT_TRUE(Accepts("mono", {1, 0}));
    EXPECT_TRUE(Accepts("mono", {255, 2}));
    for (const auto& shown : {std::vector{0, 0}, {256, 0}, {128, 3}, {128, -1}}) {
        EXPECT_FALSE(Accepts("mono", shown));
    }
    EXPECT_TRUE(Accepts("col_reduce", {1, 3, 0, 0, 0}));
    for (const auto& shown :
         {std::vector{0, 0, 0, 0, 0}, {257, 0, 0, 0, 0}, {16, 4, 0, 0, 0}, {16, 0, 3, 0, 0}}) {
        EXPECT_FALSE(Accepts("col_reduce", shown));
    }
    EXPECT_TRUE(Accepts("nega", {99}));
    EXPECT_TRUE(Accepts("gray", {99, -5, 99}));
}

TEST(DialogRules, MissingControlsCountAsNothingOrTheInitialChoice) {
    std::vector<int32_t> absent;
    for (const FilterOption& option : kReduceColorOptions) {
        absent.push_back(AbsentValue(option));
    }
    EXPECT_EQ(absent, (std::vector<int32_t>{0, 3, 0, 0, 0}));
}

TEST(DialogRules, RatioRangeReachesOnePixelAndTheLargestSide) {
    EXPECT_EQ(RatioRange(1).low, 100);
    EXPECT_EQ(RatioRange(1).high, 819200);
    EXPECT_EQ(RatioRange(0).high, 819200) << "no image counts as one pixel";
    EXPECT_EQ(RatioRange(-7).low, 100);
    for (const int64_t side : {2, 3, 99, 100, 101, 512, 8191, 8192, 100000, INT32_MAX}) {
        const ValueRange range = RatioRange(static_cast<int32_t>(side));
        EXPECT_GE(side * range.low, 100) << side;
        EXPECT_LT(side * (range.low - 1), 100) << side;
        EXPECT_GE(side * range.high, 819200) << side;
        EXPECT_LT(side * (range.high - 1), 819200) << side;
    }
}

TEST(DialogRules, LinkKeepsTheProportion) {
    EXPECT_EQ(LinkedValue(300, 200, 100), 150);
    EXPECT_EQ(LinkedValue(300, 100, 50), 150);
    EXPECT_EQ(LinkedValue(5, 3, 2), 3) << "toward zero";
    EXPECT_EQ(LinkedValue(0, 3, 2), 0);
    EXPECT_EQ(LinkedValue(819200, 1, 819200), INT32_MAX) << "no wrapping around";
    EXPECT_EQ(LinkedValue(7, 0, -1), 7);
}

struct SizeCase {
    int32_t width;
    bool ratioMode;
    int32_t ratio;
    int32_t newWidth;
    int32_t storedRatio;
};

TEST(DialogRules, ScalingSettlesASizeWithinBounds) {
    constexpr SizeCase kCases[] = {
        {200, false, 50, 200, 50},       {9000, false, 50, 8192, 50},  {0, false, 50, 1, 50},
        {200, true, 150, 300, 150},      {3, true, 50, 1, 50},         {3, true, 1, 1, 34},
        {5000, true, 200, 8192, 164},    {3000, true, 274, 8192, 274}, {0, true, 100, 1, 100},
        {1, true, 819200, 8192, 819200}, {512, true, 100, 512, 100},
    };
    for (const SizeCase& c : kCases) {
        SCOPED_TRACE(testing::Message() << c.width << " at " << c.ratio);
        ScalingImageProcess process;
        process.width = c.width;
        process.height = c.width;
        process.RatioSize = c.ratioMode;
        process.RatioWidth = c.ratio;
        process.RatioHeight = c.ratio;
        ScalingOptions(process).StoreIn(process);
        EXPECT_EQ(process.newWidth, c.newWidth);
        EXPECT_EQ(process.newHeight, c.newWidth);
        EXPECT_EQ(process.RatioWidth, c.storedRatio);
        EXPECT_EQ(process.RatioHeight, c.storedRatio);
    }
}

TEST(UnseenDialog, AsksTheHostOnceAndStoresWhatItAgreedTo) {
    ClearPrivateStore();
    MonoImageProcess mono;
    mono.Threshold = 77;
    const FilterRow& row = kRow<MonoImageProcess>;
    const Host host(&mono);
    EXPECT_EQ(RunOptionsDialog(mono, row), 1);
    EXPECT_TRUE(ListSettings(row).empty()) << "without a host nothing is written";
    mono.applyCallback = Host::Refuse;
    EXPECT_EQ(RunOptionsDialog(mono, row), -1);
    EXPECT_TRUE(ListSettings(row).empty());
    mono.applyCallback = Host::Agree;
    EXPECT_EQ(RunOptionsDialog(mono, row), 1);
    EXPECT_EQ(Host::thresholds, (std::vector<int32_t>{77, 77}));

    MonoImageProcess next;
    EXPECT_EQ(RunOptionsDialog(next, row), 1);
    EXPECT_EQ(next.Threshold, 77);

    ScalingImageProcess scaling;
    scaling.width = 200;
    EXPECT_EQ(RunOptionsDialog(scaling), 1);
    EXPECT_EQ(scaling.newWidth, 200);
}

}  // namespace
}  // namespace imgbasic
