#include "plugin/imgbasic/settings.h"

#include <gtest/gtest.h>

#include <string>

#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/filters.h"
#include "tests/plugin/private_store.h"

namespace imgbasic {
namespace {

class Settings : public testing::Test {
  protected:
    void SetUp() override { ClearPrivateStore(); }
};

template <typename Process>
void LoadSettings(Process& process) {
    LoadSettings(process, kRow<Process>);
}

TEST_F(Settings, LoadWhatIsWithinBoundsAndTakeTheRestForInitial) {
    for (const FilterRow& row : kFilterRows) {
        for (const FilterOption& option : row.options) {
            for (const int32_t value :
                 {option.least, option.most, option.least - 1, option.most + 1, -1}) {
                SCOPED_TRACE(testing::Message() << row.name << ", " << option.name << "=" << value);
                ClearPrivateStore();
                const StoredNumber stored{option.name, static_cast<uint32_t>(value)};
                ASSERT_TRUE(WriteStore(row.name, {&stored, 1}));
                const auto process = CreateFilter(row);
                LoadSettings(*process, row);
                const int32_t loaded =
                    option.isStored && option.Allows(value) ? value : option.initial;
                EXPECT_EQ(option.get(*process), loaded);
                SaveSettings(*process, row);
                const std::string saved = std::string(option.name) + "=" + std::to_string(loaded);
                EXPECT_EQ(Stored(row.name).find(saved) != std::string::npos, option.isStored);
            }
        }
    }
}

TEST_F(Settings, ApplyTheirRulesOnlyWhenAnythingIsStored) {
    ReduceColorImageProcess reduce;
    reduce.ReduceColor = 999;
    reduce.SharePalette = true;
    reduce.GraduateReduce = true;
    LoadSettings(reduce);
    EXPECT_EQ(reduce.ReduceColor, 999);
    EXPECT_TRUE(reduce.SharePalette);
    Store("col_reduce", "GraduateReduce=2");
    LoadSettings(reduce);
    EXPECT_EQ(reduce.ReduceColor, 16);
    EXPECT_FALSE(reduce.SharePalette) << "missing means off";
    EXPECT_TRUE(reduce.GraduateReduce) << "neither 0 nor 1 leaves it alone";
    ScalingImageProcess scaling;
    scaling.InterType = 7;
    Store("scaling", "RatioSize=1");
    LoadSettings(scaling);
    EXPECT_EQ(scaling.InterType, 7) << "what is missing is not corrected";
    EXPECT_TRUE(scaling.ChangeBrush) << "and a missing switch is not off";
}

TEST_F(Settings, IgnoreTextsInPlaceOfNumbers) {
    Store("scaling", "RatioWidth=50 RatioSize=1");
    for (const char* text : {"", "7", "much too long"}) {
        StoreText("scaling", "RatioWidth", text);
        ScalingImageProcess scaling;
        LoadSettings(scaling);
        EXPECT_EQ(scaling.RatioWidth, 100);
        EXPECT_TRUE(scaling.RatioSize);
    }
}

TEST_F(Settings, AreRemovedForOneFilterAlone) {
    EXPECT_TRUE(RemoveFromStore("mono")) << "nothing to remove is no failure";
    Store("mono", "Threshold=7");
    Store("nega", "TargetType=2");
    EXPECT_TRUE(RemoveFromStore("mono"));
    EXPECT_EQ(Stored("mono"), "");
    EXPECT_EQ(Stored("nega"), "TargetType=2");
}

}  // namespace
}  // namespace imgbasic
