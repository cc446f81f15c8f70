#include "host/atomic_file.h"

#include <gmock/gmock.h>

#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

using testing::HasSubstr;

class OutputFile : public FileTest {
  protected:
    /// Writes to `name` while `meanwhile` happens; the error's message.
    template <typename Work>
    std::string Write(const std::string& name, bool overwrite, Work meanwhile) const {
        try {
            AtomicFile file(Path(name), overwrite);
            meanwhile();
            file.Commit(std::as_bytes(std::span("new", 3)));
        } catch (const FileError& error) {
            return error.what();
        }
        return "";
    }
};

TEST_F(OutputFile, DoesNotReplaceWhatCameInTheMeantime) {
    const auto come = [&] { WriteBytes("a.png", "old"); };
    EXPECT_THAT(Write("a.png", false, come), HasSubstr("a.png: exists already"));
    EXPECT_EQ(Bytes("a.png"), "old");
    std::filesystem::remove(Path("a.png"));
    EXPECT_EQ(Write("a.png", true, come), "");
    EXPECT_EQ(Bytes("a.png"), "new");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Path("")), {}), 1);
}

TEST_F(OutputFile, ReplacesNothingThatIsReadOnly) {
    const auto nothing = [] {};
    WriteBytes("a.png", "old");
    std::filesystem::permissions(Path("a.png"), std::filesystem::perms(0444));
    EXPECT_THAT(Write("a.png", true, nothing), HasSubstr("a.png: is read-only; "));
    EXPECT_EQ(Bytes("a.png"), "old");
}

TEST_F(OutputFile, GoesWhereALinkLeads) {
    const auto nothing = [] {};
    std::filesystem::create_symlink("b.png", Path("a.png"));
    EXPECT_THAT(Write("a.png", false, nothing), HasSubstr("exists already"));
    EXPECT_EQ(Write("a.png", true, nothing), "");
    EXPECT_TRUE(std::filesystem::is_symlink(Path("a.png")));
    EXPECT_EQ(Bytes("b.png"), "new");
}

}  // namespace
}  // namespace imgbasic::host
