#include "plugin/imgbasic/settings.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

#include "lib/base/platform.h"
#include "plugin/imgbasic/col_reduce.h"
#include "plugin/imgbasic/gray.h"
#include "plugin/imgbasic/mono.h"
#include "plugin/imgbasic/nega.h"
#include "plugin/imgbasic/scaling.h"
#include "tests/plugin/private_store.h"

#ifndef _WIN32
#include <filesystem>
#include <fstream>
#endif

namespace imgbasic {
namespace {

using Numbers = std::map<std::string, uint32_t>;

constexpr const char* kFilters[] = {"nega", "gray", "mono", "col_reduce", "scaling"};

void Store(const char* filter, const Numbers& numbers) {
    std::vector<StoredNumber> values;
    for (const auto& [name, number] : numbers) {
        values.push_back({name.c_str(), number});
    }
    ASSERT_TRUE(WriteStore(filter, values));
}

Numbers Stored(const char* filter) {
    Numbers numbers;
    for (const StoredNumber& value : ListSettings(filter)) {
        numbers[value.name] = value.number;
    }
    return numbers;
}

/// Stores a text where a number is expected.
void StoreText(const char* filter, const char* name, const char* text) {
#ifdef _WIN32
    const std::string path = std::string("Software\\orvex\\brelo2\\plugin\\imgbasic\\") + filter;
    ASSERT_EQ(RegSetKeyValueA(HKEY_CURRENT_USER, path.c_str(), name, REG_SZ, text,
                              static_cast<DWORD>(std::strlen(text)) + 1),
              ERROR_SUCCESS);
#else
    std::ofstream(PrivateStoreFile(), std::ios::app)
        << "[HKEY_CURRENT_USER\\Software\\orvex\\brelo2\\plugin\\imgbasic\\" << filter << "]\n\""
        << name << "\"=\"" << text << "\"\n";
#endif
}

template <typename Process>
Numbers LoadAndSave(const char* filter, Process&& process) {
    LoadSettings(process);
    ClearPrivateStore();
    SaveSettings(process);
    return Stored(filter);
}

/// What a new object saves after it has loaded what is stored.
Numbers Loaded(const std::string& filter) {
    if (filter == "nega") {
        return LoadAndSave("nega", NegaImageProcess());
    }
    if (filter == "gray") {
        return LoadAndSave("gray", GrayScaleImageProcess());
    }
    if (filter == "mono") {
        return LoadAndSave("mono", MonoImageProcess());
    }
    if (filter == "col_reduce") {
        return LoadAndSave("col_reduce", ReduceColorImageProcess());
    }
    return LoadAndSave("scaling", ScalingImageProcess());
}

const std::map<std::string, Numbers> kDefaults{
    {"nega", {{"TargetType", 0}}},
    {"gray", {{"CalcMode", 0}, {"ColorMode", 0}, {"TargetType", 0}}},
    {"mono", {{"Threshold", 128}, {"TargetType", 0}}},
    {"col_reduce",
     {{"ReduceColor", 16},
      {"DitherType", 3},
      {"TargetType", 0},
      {"SharePalette", 0},
      {"GraduateReduce", 0}}},
    {"scaling",
     {{"RatioSize", 0},
      {"RatioWidth", 100},
      {"RatioHeight", 100},
      {"FixRatio", 1},
      {"InterType", 2},
      {"BoundaryType", 0},
      {"BoundAlpha", 1},
      {"ChangeBrush", 1}}},
};

class Settings : public testing::Test {
  protected:
    void SetUp() override { ClearPrivateStore(); }
};

TEST_F(Settings, StartFromTheCreationValuesAndComeBackAsTheyWereSaved) {
    for (const char* filter : kFilters) {
        SCOPED_TRACE(filter);
        EXPECT_EQ(Loaded(filter), kDefaults.at(filter));
        Numbers changed = kDefaults.at(filter);
        for (auto& [name, number] : changed) {
            number = number > 1 ? number - 1 : 1 - number;
        }
        Store(filter, changed);
        EXPECT_EQ(Loaded(filter), changed);
    }
    EXPECT_TRUE(ListSettings("chan_merge").empty());
}

struct RuleCase {
    const char* filter;
    const char* name;
    uint32_t stored;
    uint32_t loaded;
};

constexpr RuleCase kRules[] = {
    {"nega", "TargetType", 2, 2},
    {"nega", "TargetType", 3, 0},
    {"nega", "TargetType", 0xFFFFFFFF, 0},
    {"gray", "CalcMode", 9, 9},
    {"gray", "CalcMode", 10, 0},
    {"gray", "ColorMode", 8, 8},
    {"gray", "ColorMode", 9, 0},
    {"gray", "TargetType", 3, 0},
    {"mono", "Threshold", 0, 128},
    {"mono", "Threshold", 1, 1},
    {"mono", "Threshold", 255, 255},
    {"mono", "Threshold", 256, 128},
    {"mono", "TargetType", 0x80000000, 0},
    {"col_reduce", "ReduceColor", 0, 16},
    {"col_reduce", "ReduceColor", 1, 1},
    {"col_reduce", "ReduceColor", 256, 256},
    {"col_reduce", "ReduceColor", 257, 16},
    {"col_reduce", "DitherType", 0, 0},
    {"col_reduce", "DitherType", 7, 3},
    {"col_reduce", "TargetType", 3, 0},
    {"col_reduce", "SharePalette", 1, 1},
    {"col_reduce", "SharePalette", 2, 0},
    {"col_reduce", "GraduateReduce", 1, 1},
    {"col_reduce", "GraduateReduce", 0x100, 0},
    {"scaling", "RatioSize", 1, 1},
    {"scaling", "RatioSize", 2, 0},
    {"scaling", "RatioWidth", 0, 100},
    {"scaling", "RatioWidth", 1, 1},
    {"scaling", "RatioHeight", 819200, 819200},
    {"scaling", "RatioHeight", 819201, 100},
    {"scaling", "RatioHeight", 0xFFFFFFFF, 100},
    {"scaling", "FixRatio", 0, 0},
    {"scaling", "FixRatio", 2, 1},
    {"scaling", "InterType", 0, 0},
    {"scaling", "InterType", 3, 2},
    {"scaling", "BoundaryType", 2, 2},
    {"scaling", "BoundaryType", 3, 0},
    {"scaling", "BoundAlpha", 0, 0},
    {"scaling", "BoundAlpha", 256, 1},
    {"scaling", "ChangeBrush", 0, 0},
};

TEST_F(Settings, CorrectOneBadNumberAndKeepTheOthers) {
    for (const RuleCase& rule : kRules) {
        SCOPED_TRACE(testing::Message() << rule.filter << " " << rule.name << " " << rule.stored);
        ClearPrivateStore();
        Store(rule.filter, {{rule.name, rule.stored}});
        Numbers expected = kDefaults.at(rule.filter);
        expected[rule.name] = rule.loaded;
        EXPECT_EQ(Loaded(rule.filter), expected);
    }
}

TEST_F(Settings, ApplyTheirRulesOnlyWhenAnythingIsStored) {
    ReduceColorImageProcess reduce;
    reduce.ReduceColor = 999;
    reduce.DitherType = 9;
    reduce.SharePalette = true;
    reduce.GraduateReduce = true;
    LoadSettings(reduce);
    EXPECT_EQ(reduce.ReduceColor, 999);
    EXPECT_EQ(reduce.DitherType, 9);
    EXPECT_TRUE(reduce.SharePalette);
    Store("col_reduce", {{"GraduateReduce", 2}});
    LoadSettings(reduce);
    EXPECT_EQ(reduce.ReduceColor, 16);
    EXPECT_EQ(reduce.DitherType, 3);
    EXPECT_FALSE(reduce.SharePalette) << "missing means off";
    EXPECT_TRUE(reduce.GraduateReduce) << "neither 0 nor 1 leaves it alone";

    ScalingImageProcess scaling;
    scaling.InterType = 7;
    scaling.FixRatio = false;
    Store("scaling", {{"RatioSize", 1}});
    LoadSettings(scaling);
    EXPECT_EQ(scaling.InterType, 7) << "what is missing is not corrected";
    EXPECT_FALSE(scaling.FixRatio);
}

TEST_F(Settings, IgnoreTextsInPlaceOfNumbers) {
    Store("scaling", {{"RatioWidth", 50}, {"RatioSize", 1}});
    for (const char* text : {"", "7", "much too long"}) {
        StoreText("scaling", "RatioWidth", text);
        ScalingImageProcess scaling;
        LoadSettings(scaling);
        EXPECT_EQ(scaling.RatioWidth, 100);
        EXPECT_TRUE(scaling.RatioSize);
    }
    Store("mono", {{"Threshold", 7}});
    StoreText("mono", "Threshold", "much too long");
    MonoImageProcess mono;
    LoadSettings(mono);
    EXPECT_EQ(mono.Threshold, 128);
}

TEST_F(Settings, AreRemovedForOneFilterAlone) {
    EXPECT_TRUE(RemoveFromStore("mono")) << "nothing to remove is no failure";
    Store("mono", {{"Threshold", 7}});
    Store("nega", {{"TargetType", 2}});
    EXPECT_TRUE(RemoveFromStore("mono"));
    EXPECT_EQ(Stored("mono"), Numbers());
    EXPECT_EQ(Stored("nega"), (Numbers{{"TargetType", 2}}));
    MonoImageProcess mono;
    mono.Threshold = 0;
    LoadSettings(mono);
    EXPECT_EQ(mono.Threshold, 0) << "no key, no rules";
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
        std::string("\0\0\0[\"", 5),
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
    EXPECT_EQ(Stored("mono"), Numbers());
    EXPECT_FALSE(WriteStore("mono", {}));
    ClearPrivateStore();
    const fs::path target = fs::path(PrivateStoreFile()).replace_filename("elsewhere.reg");
    std::ofstream(target).close();
    fs::create_symlink(target, PrivateStoreFile());
    Store("mono", {{"Threshold", 7}});
    EXPECT_TRUE(fs::is_symlink(PrivateStoreFile()));
    EXPECT_EQ(Stored("mono"), (Numbers{{"Threshold", 7}}));
    const auto folder = fs::directory_iterator(target.parent_path());
    EXPECT_EQ(std::distance(begin(folder), end(folder)), 2) << "a temporary file is left";
}

#endif

}  // namespace
}  // namespace imgbasic
