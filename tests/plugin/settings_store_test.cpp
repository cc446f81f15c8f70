#include "plugin/imgbasic/settings_store.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "tests/plugin/private_store.h"

// The file that is the store where there is no registry.

namespace imgbasic {
namespace {

namespace fs = std::filesystem;

const std::string kMonoHeading =
    "[HKEY_CURRENT_USER\\Software\\orvex\\brelo2\\plugin\\imgbasic\\mono]\n";

class SettingsFile : public testing::Test {
  protected:
    void SetUp() override {
        fs::remove_all(file.parent_path());
        fs::create_directories(file.parent_path());
    }

    std::string Text() const {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    void SetText(const std::string& text) const { std::ofstream(file, std::ios::binary) << text; }

    struct stat Status() const {
        struct stat status {};
        stat(file.c_str(), &status);
        return status;
    }

    /// Nothing may be stored in what is not understood, or not to be written.
    void ExpectRefused(const std::string& text) const {
        StoredNumber value{"Threshold", 7};
        EXPECT_FALSE(WriteStore("mono", {&value, 1}));
        EXPECT_TRUE(Text() == text);
    }

    const fs::path file = PrivateStoreFile();
};

TEST_F(SettingsFile, IsARegistryExport) {
    Store("mono", "Threshold=128 TargetType=0");
    EXPECT_EQ(Text(), "REGEDIT4\n\n" + kMonoHeading +
                          "\"Threshold\"=dword:00000080\n\"TargetType\"=dword:00000000\n");
}

TEST_F(SettingsFile, KeepsWhatIsNotOurs) {
    const std::string before =
        "; a remark\r\n[HKEY_CURRENT_USER\\Other]\n\"Threshold\"=dword:1\n\n";
    const std::string mine =
        "[hkey_current_user\\software\\ORVEX\\brelo2\\plugin\\imgbasic\\mono]\r\n"
        "\"Later\"=hex:01,\\\n  02\n";
    const std::string after = "\n[-HKEY_CURRENT_USER\\Gone]\n\"x\"=\"\xFF\"\n";
    SetText(before + mine + " \"threshold\"=dword:1F\r\n" + after);
    EXPECT_EQ(Stored("mono"), "Threshold=31");
    Store("mono", "Threshold=32 TargetType=0");
    EXPECT_EQ(Text(), before + mine +
                          "\"Threshold\"=dword:00000020\n\"TargetType\"=dword:00000000\n" + after);
    EXPECT_TRUE(RemoveFromStore("mono"));
    EXPECT_EQ(Text(), before + after.substr(1)) << "its own closing blank line goes along";
}

TEST_F(SettingsFile, MayHoldAnything) {
    const std::string heading = kMonoHeading;
    for (const std::string& text : {
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
         }) {
        SCOPED_TRACE(text);
        SetText(text);
        EXPECT_EQ(Stored("mono"), "");
        Store("mono", "Threshold=9");
        EXPECT_EQ(Stored("mono"), "Threshold=9");
    }
}

TEST_F(SettingsFile, IsRefusedWhereItIsAFolderTooLongOrInWideCharacters) {
    fs::create_directory(file);
    EXPECT_EQ(Stored("mono"), "");
    EXPECT_FALSE(RemoveFromStore("mono"));
    fs::remove(file);
    SetText(std::string(2 << 20, 'x'));
    EXPECT_FALSE(RemoveFromStore("mono"));
    ExpectRefused(Text());
    std::string wide = "\xFF\xFE";
    for (const char c : kMonoHeading) {
        wide += {c, '\0'};
    }
    const std::string full = kMonoHeading + std::string((1 << 20) - kMonoHeading.size(), '\n');
    for (const std::string& text : {full, wide}) {
        SetText(text);
        ExpectRefused(text);
    }
}

TEST_F(SettingsFile, ProcessesThatStoreAtOnceLoseNothing) {
    constexpr int kProcesses = 4;
    constexpr int kValues = 40;
    for (int process = 0; process < kProcesses; ++process) {
        if (fork() == 0) {
            bool stored = true;
            for (int i = 0; i < kValues; ++i) {
                const std::string name = std::to_string(process) + "_" + std::to_string(i);
                const StoredNumber value{name.c_str(), 1};
                stored &= WriteStore("mono", {&value, 1});
            }
            _exit(stored ? 0 : 1);
        }
    }
    for (int status = 0; wait(&status) > 0;) {
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(std::ranges::count(Text(), '='), kProcesses * kValues);
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), {}), 1);
}

TEST_F(SettingsFile, IsCreatedWhereALinkLeads) {
    const fs::path target = file.parent_path() / "new" / "elsewhere.reg";
    fs::create_symlink("new/elsewhere.reg", file);
    Store("mono", "Threshold=7");
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_regular_file(target));
    EXPECT_EQ(Stored("mono"), "Threshold=7");
}

TEST_F(SettingsFile, IsReadBehindAByteOrderMark) {
    SetText("\xEF\xBB\xBF" + kMonoHeading + "\"Threshold\"=dword:00000007\n");
    EXPECT_EQ(Stored("mono"), "Threshold=7");
}

TEST_F(SettingsFile, TheLastSectionOfAFilterCountsAndIsWritten) {
    const std::string first = kMonoHeading + "\"Threshold\"=dword:00000007\n";
    SetText(first + kMonoHeading + "\"Threshold\"=dword:00000008\n");
    EXPECT_EQ(Stored("mono"), "Threshold=8");
    Store("mono", "Threshold=9");
    EXPECT_EQ(Text(), first + kMonoHeading + "\"Threshold\"=dword:00000009\n");
}

TEST_F(SettingsFile, IsNotTouchedWhenNothingChanges) {
    Store("mono", "Threshold=7");
    const ino_t before = Status().st_ino;
    Store("mono", "Threshold=7");
    EXPECT_EQ(Status().st_ino, before);
    EXPECT_TRUE(RemoveFromStore("gray"));
    EXPECT_EQ(Status().st_ino, before);
    Store("mono", "Threshold=8");
    EXPECT_NE(Status().st_ino, before);
}

}  // namespace
}  // namespace imgbasic
