#include "plugin/imgbasic/settings.h"

#include <gtest/gtest.h>

#include <string>

#include "plugin/imgbasic/filter_table.h"
#include "plugin/imgbasic/filters.h"
#include "tests/plugin/private_store.h"

#ifndef _WIN32
#include <filesystem>
#include <fstream>
#endif

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

template <typename Process>
void SaveSettings(const Process& process) {
    SaveSettings(process, kRow<Process>);
}

struct RuleCase {
    const char* stored;
    const char* loaded;  ///< null: the same
};

/// What a new object saves after it has loaded what is stored.
void ExpectRules(const char* filter, std::initializer_list<RuleCase> cases) {
    const FilterRow& row = *FindFilter(filter);
    for (const RuleCase& c : cases) {
        SCOPED_TRACE(testing::Message() << filter << " " << c.stored);
        ClearPrivateStore();
        if (*c.stored != '\0') {
            Store(filter, c.stored);
        }
        const auto process = CreateFilter(row);
        LoadSettings(*process, row);
        ClearPrivateStore();
        SaveSettings(*process, row);
        EXPECT_EQ(Stored(filter), c.loaded != nullptr ? c.loaded : c.stored);
    }
}

TEST_F(Settings, LoadWhatIsGoodAndDefaultsForTheRest) {
    ExpectRules("nega", {{"", "TargetType=0"},
                         {"TargetType=2", nullptr},
                         {"TargetType=3", "TargetType=0"},
                         {"TargetType=4294967295", "TargetType=0"}});
    ExpectRules("gray",
                {{"", "CalcMode=0 ColorMode=0 TargetType=0"},
                 {"CalcMode=9 ColorMode=8 TargetType=1", nullptr},
                 {"CalcMode=10 ColorMode=9 TargetType=3", "CalcMode=0 ColorMode=0 TargetType=0"}});
    ExpectRules("mono", {{"", "Threshold=128 TargetType=0"},
                         {"Threshold=1", "Threshold=1 TargetType=0"},
                         {"Threshold=255 TargetType=2", nullptr},
                         {"Threshold=0", "Threshold=128 TargetType=0"},
                         {"Threshold=256", "Threshold=128 TargetType=0"}});
    ExpectRules(
        "col_reduce",
        {{"", "ReduceColor=16 DitherType=3 TargetType=0 SharePalette=0 GraduateReduce=0"},
         {"ReduceColor=1 DitherType=0 TargetType=1 SharePalette=1 GraduateReduce=1", nullptr},
         {"ReduceColor=256 DitherType=2 TargetType=2 SharePalette=0 GraduateReduce=1", nullptr},
         {"ReduceColor=0 DitherType=7 TargetType=3 SharePalette=2 GraduateReduce=256",
          "ReduceColor=16 DitherType=3 TargetType=0 SharePalette=0 GraduateReduce=0"},
         {"ReduceColor=257 DitherType=4294967295",
          "ReduceColor=16 DitherType=3 TargetType=0 SharePalette=0 GraduateReduce=0"}});
    constexpr char kDefaults[] =
        "RatioSize=0 RatioWidth=100 RatioHeight=100 FixRatio=1 InterType=2 BoundaryType=0 "
        "BoundAlpha=1 ChangeBrush=1";
    ExpectRules("scaling", {{"", kDefaults},
                            {"RatioSize=1 RatioWidth=1 RatioHeight=819200 FixRatio=0 InterType=0 "
                             "BoundaryType=2 BoundAlpha=0 ChangeBrush=0",
                             nullptr},
                            {"RatioSize=2 RatioWidth=0 RatioHeight=819201 FixRatio=2 InterType=3 "
                             "BoundaryType=3 BoundAlpha=256 ChangeBrush=2",
                             kDefaults},
                            {"RatioWidth=4294967295", kDefaults}});
    EXPECT_TRUE(ListSettings(*FindFilter("chan_merge")).empty());
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

#ifndef _WIN32

std::string FileText() {
    std::ifstream file(PrivateStoreFile(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void SetFileText(const std::string& text) {
    std::ofstream(PrivateStoreFile(), std::ios::binary) << text;
}

constexpr char kMonoHeading[] =
    "[HKEY_CURRENT_USER\\Software\\orvex\\brelo2\\plugin\\imgbasic\\mono]\n";

TEST_F(Settings, FileIsARegistryExport) {
    SaveSettings(MonoImageProcess());
    EXPECT_EQ(FileText(), std::string("REGEDIT4\n\n") + kMonoHeading +
                              "\"Threshold\"=dword:00000080\n\"TargetType\"=dword:00000000\n");
}

TEST_F(Settings, FileKeepsWhatIsNotOurs) {
    const std::string before =
        "; a remark\r\n[HKEY_CURRENT_USER\\Other]\n\"Threshold\"=dword:1\n\n";
    const std::string mine =
        "[hkey_current_user\\software\\ORVEX\\brelo2\\plugin\\imgbasic\\mono]\r\n"
        "\"Later\"=hex:01,\\\n  02\n \"threshold\"=dword:1F\r\n";
    const std::string after = "\n[-HKEY_CURRENT_USER\\Gone]\n\"x\"=\"\xFF\"\n";
    SetFileText(before + mine + after);
    MonoImageProcess mono;
    LoadSettings(mono);
    EXPECT_EQ(mono.Threshold, 31);
    mono.Threshold = 32;
    SaveSettings(mono);
    std::string expected = mine;
    expected.replace(expected.find(" \"threshold\""), std::string::npos,
                     "\"Threshold\"=dword:00000020\n\"TargetType\"=dword:00000000\n");
    EXPECT_EQ(FileText(), before + expected + after);
    EXPECT_TRUE(RemoveFromStore("mono"));
    EXPECT_EQ(FileText(), before + after.substr(1)) << "its own closing blank line goes along";
}

TEST_F(Settings, FileMayHoldAnything) {
    const std::string heading = kMonoHeading;
    const std::string bad[] = {
        heading + "\"Threshold\"",
        heading + "\"Threshold\"=",
        heading + "\"Threshold\"=dword:",
        heading + "\"Threshold\"=dword:123456789",
        heading + "\"Threshold\"=dword:-1",
        heading + "\"Threshold\"=dword:7 ; seven",
        heading + "Threshold=dword:00000007",
        heading + "\"Threshold\"=dword:00000007\n\"Threshold\"=\"text\"",
        heading.substr(1) + "\"Threshold\"=dword:00000007",
        "[" + heading + "\"Threshold\"=dword:00000007",
    };
    for (const std::string& text : bad) {
        SCOPED_TRACE(text);
        SetFileText(text);
        MonoImageProcess mono;
        LoadSettings(mono);
        EXPECT_EQ(mono.Threshold, 128);
        mono.Threshold = 9;
        SaveSettings(mono);
        MonoImageProcess again;
        LoadSettings(again);
        EXPECT_EQ(again.Threshold, 9);
    }
}

TEST_F(Settings, FileThatCannotBeOursStaysAsItIs) {
    SaveSettings(MonoImageProcess());
    const std::string huge(2 << 20, 'x');
    SetFileText(huge);
    EXPECT_FALSE(WriteStore("mono", {}));
    EXPECT_FALSE(RemoveFromStore("mono"));
    EXPECT_EQ(FileText(), huge);
    namespace fs = std::filesystem;
    ClearPrivateStore();
    fs::create_directory(PrivateStoreFile());
    EXPECT_EQ(Stored("mono"), "");
    EXPECT_FALSE(WriteStore("mono", {}));
    ClearPrivateStore();
    const fs::path target = fs::path(PrivateStoreFile()).replace_filename("elsewhere.reg");
    std::ofstream(target).close();
    fs::create_symlink(target, PrivateStoreFile());
    Store("mono", "Threshold=7");
    EXPECT_TRUE(fs::is_symlink(PrivateStoreFile()));
    EXPECT_EQ(Stored("mono"), "Threshold=7");
    const auto folder = fs::directory_iterator(target.parent_path());
    EXPECT_EQ(std::distance(begin(folder), end(folder)), 2) << "a temporary file is left";
}

#endif

}  // namespace
}  // namespace imgbasic
