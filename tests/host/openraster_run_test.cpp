#include "tests/host/command_line.h"

namespace imgbasic::host {
namespace {

using testing::HasSubstr;

class ForeignOpenRaster : public CommandLine {
  protected:
    /// Every kind of thing that the programs who made it know and we do not.
    static constexpr const char* kStack =
        R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- made elsewhere --><image version="0.0.5" w="3" h="1" xres="300" yres="300" o:id="7" xmlns:o="urn:o">
 <o:note>a &lt; b</o:note>
 <stack x="0">
  <layer name="wide" src="data/wide.png" x="-1" opacity="0.123456789" selected="true"><o:in/></layer>
  <!-- between --><stack name="outer" edit-locked="true">words<stack isolation="isolate">
    <layer src="data/shared.png" x="2" y="0" composite-op="svg:multiply"/><stack/></stack>
   <layer name="odd" src="data/shared.png" composite-op="o:odd" visibility="hidden" alpha-preserve="no"/>
  </stack><text name="t"><![CDATA[kept]]></text>
 </stack><o:after/>
</image>
)";

    void SetUp() override { WriteForeign("in.ora", kStack); }

    void WriteForeign(const std::string& name, const std::string& stack) const {
        WriteZip(name, {{"mimetype", "image/openraster"},
                        {"stack.xml", stack},
                        {"data/wide.png", RowFile(8, {kRed, kRed, kRed})},
                        {"data/shared.png", RowFile(8, {kRed})},
                        {"data/layer0.png", "taken"},
                        {"o/brush.bin", std::string("\0\1\2", 3)},
                        {"mergedimage.png", "old"}});
    }

    /// The files of out.ora without the pictures of the whole and those named.
    Entries Others(const std::string& name, const std::string& without) const {
        Entries entries = ReadZip(name);
        std::erase_if(entries, [&](const auto& entry) {
            return entry.first == without || entry.first == "mergedimage.png" ||
                   entry.first == "Thumbnails/thumbnail.png";
        });
        return entries;
    }

    static constexpr RGBA16 kRed{0xFF00, 0, 0, 0xFF00};
    static constexpr RGBA16 kCyan{0, 0xFF00, 0xFF00, 0xFF00};
};

TEST_F(ForeignOpenRaster, ARunChangesOnlyTheLayerThatItWasGiven) {
    RunWell("imgbasic nega in.ora -o out.ora --layer 0");
    EXPECT_EQ(Others("out.ora", "data/wide.png"), Others("in.ora", "data/wide.png"));
    WriteBytes("wide.png", ZipEntry("out.ora", "data/wide.png"));
    EXPECT_EQ(Pixels("wide.png"), (std::vector{kRed, kCyan, kCyan})) << "the first is outside";

    RunWell("imgbasic nega in.ora -o in1.ora --layer 1 --sub-layer 0");
    std::string stack = kStack;
    stack.replace(stack.find("data/shared.png"), 15, "data/layer1.png");
    Entries want = Others("in.ora", "stack.xml");
    want.emplace_back("stack.xml", stack);
    want.emplace_back("data/layer1.png", ZipEntry("in1.ora", "data/layer1.png"));
    std::ranges::sort(want);
    EXPECT_EQ(Others("in1.ora", ""), want) << "the other layer keeps the file that they shared";
}

TEST_F(ForeignOpenRaster, NewLayersStandAtTheirPlaceAmongWhatWasThere) {
    const Result result = RunWell(
        "imgbasic chan_decomp in.ora -o out.ora --layer 1 --sub-layer 0 &&"
        "imgbasic info out.ora");
    EXPECT_THAT(result.out, HasSubstr("  1 4"));
    const std::string stack = ZipEntry("out.ora", "stack.xml");
    const std::string before = "isolation=\"isolate\">\n    ";
    const size_t place = stack.find(before);
    ASSERT_NE(place, std::string::npos);
    EXPECT_EQ(stack.substr(0, place), std::string(kStack).substr(0, place));
    EXPECT_LT(stack.find("[B]"), stack.find("[A]"));
    EXPECT_LT(stack.find("[A]"), stack.find("svg:multiply")) << "multiplied as a whole";
    const std::string rest = stack.substr(stack.find("<stack/>"));
    EXPECT_EQ(rest, std::string(kStack).substr(std::string(kStack).find("<stack/>")));
}

TEST_F(ForeignOpenRaster, ALossIsRefusedUnlessAccepted) {
    std::string shown = kStack;
    shown.replace(shown.find("hidden"), 6, "shown");
    WriteForeign("shown.ora", shown);
    const struct {
        const char* arguments;
        const char* message;
    } cases[] = {
        {"nega shown.ora -o a.ora --target all", "the layer \"odd\" is \"o:odd\""},
        {"nega shown.ora -o a.png --target merged", "the layer \"odd\" is \"o:odd\""},
        {"scaling in.ora -o b.ora --width 6", "the layer \"wide\" goes on outside"},
    };
    for (const auto& test : cases) {
        const std::string command = std::string("imgbasic ") + test.arguments;
        const Result refused = Run(command);
        EXPECT_EQ(refused.status, 1) << command;
        EXPECT_THAT(refused.err, HasSubstr(test.message));
        EXPECT_THAT(refused.err, HasSubstr("--accept-loss"));
        const Result accepted = RunWell(command + " --accept-loss");
        EXPECT_THAT(accepted.err, HasSubstr(test.message));
    }
    EXPECT_EQ(Run("imgbasic scaling in.ora -o c.png --width 6").status, 0)
        << "a picture without layers ends at the image";
    EXPECT_THAT(ZipEntry("b.ora", "stack.xml"), HasSubstr("xres=\"300\""));
}

}  // namespace
}  // namespace imgbasic::host
