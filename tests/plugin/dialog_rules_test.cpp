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

/// The thresholds that the host was asked to run with.
std::vector<int32_t> runs;
MonoImageProcess* mono = nullptr;
bool agrees = true;

bool RunHost() {
    runs.push_back(mono->Threshold);
    return agrees;
}

class DialogRules : public testing::Test {
  protected:
    DialogRules() {
        ClearPrivateStore();
        runs.clear();
        agrees = true;
        mono = &mono_;
        mono_.applyCallback = RunHost;
    }

    MonoImageProcess mono_;
    PreviewedOptions options_{mono_, kRow<MonoImageProcess>};
};

TEST_F(DialogRules, RunTheHostOnceForEveryChange) {
    const auto preview = [&](int32_t threshold, int32_t target) {
        return options_.CarryOut(Press::Preview, std::vector{threshold, target});
    };
    EXPECT_EQ(preview(128, 0), DialogEnd::StaysOpen);
    EXPECT_EQ(preview(128, 0), DialogEnd::StaysOpen);
    EXPECT_EQ(preview(200, 0), DialogEnd::StaysOpen);
    EXPECT_EQ(preview(200, 2), DialogEnd::StaysOpen);
    EXPECT_EQ(mono_.Threshold, 128) << "a preview leaves the options as they were";
    EXPECT_EQ(mono_.TargetType, 0);
    EXPECT_EQ(options_.CarryOut(Press::Execute, std::vector{200, 2}), DialogEnd::Confirmed);
    EXPECT_EQ(runs, (std::vector<int32_t>{128, 200, 200}));
    EXPECT_EQ(mono_.Threshold, 200);
    EXPECT_EQ(mono_.TargetType, 2);
}

TEST_F(DialogRules, AskAgainAfterARefusal) {
    agrees = false;
    for (const Press button : {Press::Preview, Press::Execute}) {
        EXPECT_EQ(options_.CarryOut(button, std::vector{9, 1}), DialogEnd::Cancelled);
    }
    EXPECT_EQ(runs.size(), 2U);
}

TEST_F(DialogRules, ValidateTwoColorsAndReductionAlone) {
    const struct {
        const char* filter;
        std::vector<int32_t> shown;
        bool good;
    } cases[] = {
        {"mono", {1, 0}, true},       {"mono", {255, 2}, true},
        {"mono", {0, 0}, false},      {"mono", {256, 0}, false},
        {"mono", {128, 3}, false},    {"mono", {128, -1}, false},
        {"nega", {99}, true},         {"col_reduce", {1, 3, 0, 0, 0}, true},
        {"gray", {99, -5, 99}, true}, {"col_reduce", {16, 4, 0, 0, 0}, false},
    };
    for (const auto& [filter, shown, good] : cases) {
        const FilterRow& row = *FindFilter(filter);
        const auto process = CreateFilter(row);
        runs.clear();
        process->applyCallback = RunHost;
        const DialogEnd end = PreviewedOptions(*process, row).CarryOut(Press::Execute, shown);
        EXPECT_EQ(end, good ? DialogEnd::Confirmed : DialogEnd::StaysOpen) << filter << shown[0];
        EXPECT_EQ(runs.size(), good ? 1U : 0U);
    }
}

TEST_F(DialogRules, MissingControlsCountAsNothingOrTheInitialChoice) {
    std::vector<int32_t> absent;
    for (const FilterOption& option : kReduceColorOptions) {
        absent.push_back(AbsentValue(option));
    }
    EXPECT_EQ(absent, (std::vector<int32_t>{0, 3, 0, 0, 0}));
}

TEST_F(DialogRules, LinkKeepsTheProportion) {
    EXPECT_EQ(LinkedValue(5, 3, 2), 3) << "toward zero";
    EXPECT_EQ(LinkedValue(819200, 1, 819200), INT32_MAX) << "no wrapping around";
    EXPECT_EQ(LinkedValue(7, 0, -1), 7) << "no side counts as one pixel";
}

struct SizeCase {
    int32_t width;
    bool ratioMode;
    int32_t ratio;
    int32_t newWidth;
    int32_t storedRatio;
};

TEST_F(DialogRules, ScalingSettlesASizeWithinBounds) {
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
    EXPECT_EQ(RatioRange(-7).low, 100) << "no image counts as one pixel";
}

TEST_F(DialogRules, AskTheHostOnceWithoutAWindowAndStoreWhatItAgreedTo) {
    const FilterRow& row = kRow<MonoImageProcess>;
    mono_.Threshold = 77;
    agrees = false;
    EXPECT_EQ(RunOptionsDialog(mono_, row), -1);
    EXPECT_EQ(Stored("mono"), "");
    agrees = true;
    mono_.applyCallback = nullptr;
    EXPECT_EQ(RunOptionsDialog(mono_, row), 1);
    EXPECT_EQ(Stored("mono"), "") << "without a host nothing is written";
    mono_.applyCallback = RunHost;
    EXPECT_EQ(RunOptionsDialog(mono_, row), 1);
    EXPECT_EQ(runs, (std::vector<int32_t>{77, 77}));

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
