#include <gmock/gmock.h>
#include <sys/wait.h>

#include <cstdio>

#include "host/driver.h"
#include "host/file_metadata.h"
#include "host/flatten.h"
#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

using testing::HasSubstr;

struct Result {
    int status = -1;
    std::string out;
    std::string err;
};

/// Runs the program in the test's folder, with a home there.
class CommandLine : public FileTest {
  protected:
    Result Run(const std::string& arguments) const {
        static const std::string program =
            std::filesystem::read_symlink("/proc/self/exe").parent_path() / "imgbasic";
        const std::string command = "export HOME='" + Path("home").string() +
                                    "'; unset XDG_CONFIG_HOME IMGBASIC_REMEMBERED; cd '" +
                                    Path("").string() + "' && { " + arguments + "; }";
        const std::string shell = "program='" + program +
                                  "'; imgbasic() { \"$program\" \"$@\"; }; { " + command +
                                  "; } 2>'" + ErrorPath() + "'";
        Result result;
        FILE* pipe = popen(shell.c_str(), "r");
        for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
            result.out += static_cast<char>(c);
        }
        const int status = pclose(pipe);
        result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        result.err = Bytes("../" + std::filesystem::path(ErrorPath()).filename().string());
        std::filesystem::remove(ErrorPath());
        return result;
    }

    /// An image of 8 bits a channel.
    void WriteImage(const std::string& name, uint32_t seed) const {
        SaveDocument(OneLayer(13, 9, 8, RandomDocuments(seed).Pixels(13 * 9, 8)), Path(name), {});
    }

    std::vector<RGBA16> Pixels(const std::string& name) const {
        return Flatten(LoadDocument(Path(name)));
    }

  private:
    std::string ErrorPath() const {
        std::string path = Path("").parent_path().string();
        return path + ".err";
    }
};

TEST_F(CommandLine, InvertsTwiceToTheSamePixels) {
    WriteImage("in.png", 1);
    const Result result =
        Run("imgbasic nega in.png -o once.png --target merged && "
            "imgbasic nega once.png -o twice.png --target merged");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "once.png\ntwice.png\n");
    EXPECT_EQ(result.err, "");
    EXPECT_NE(Pixels("once.png"), Pixels("in.png"));
    EXPECT_EQ(Pixels("twice.png"), Pixels("in.png"));
}

TEST_F(CommandLine, ReportsABadFileAndGoesOnWithTheOthers) {
    for (const char* name : {"a.png", "b.png", "c.png"}) {
        WriteImage(name, static_cast<uint32_t>(name[0]));
    }
    WriteBytes("bad.png", Bytes("a.png").substr(0, 60));
    for (const char* jobs : {"1", "3"}) {
        const Result result =
            Run("imgbasic nega a.png bad.png b.png c.png missing.png --target "
                "merged -o out" +
                std::string(jobs) + "/ --jobs " + jobs);
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, HasSubstr("imgbasic: bad.png: "));
        EXPECT_THAT(result.err, HasSubstr("imgbasic: missing.png: "));
        EXPECT_THAT(result.err, HasSubstr("5 files, 2 failed, "));
        EXPECT_EQ(std::ranges::count(result.err, '\n'), 3) << result.err;
        EXPECT_EQ(std::ranges::count(result.out, '\n'), 3) << result.out;
    }
    for (const char* name : {"a.png", "b.png", "c.png"}) {
        EXPECT_EQ(Bytes("out1/" + std::string(name)), Bytes("out3/" + std::string(name)));
    }
}

TEST_F(CommandLine, ReportsAWorkerThatDies) {
    WriteImage("a.png", 1);
    WriteImage("b.png", 2);
    // The system ends a process that writes more than the limit.
    const Result result =
        Run("(ulimit -f 0; imgbasic nega a.png b.png -o out/ --jobs 2 2>&1; echo $?)");
    EXPECT_THAT(result.out, HasSubstr("imgbasic: a.png: the worker process died"));
    EXPECT_THAT(result.out, HasSubstr("imgbasic: b.png: the worker process died"));
    EXPECT_THAT(result.out, testing::EndsWith("\n1\n"));
}

TEST_F(CommandLine, AWorkerThatIsKilledCostsOneFile) {
    for (const char* name : {"a.png", "c.png", "d.png", "e.png"}) {
        WriteImage(name, 1);
    }
    // The one worker that opens the pipe waits there for bytes.
    const Result result =
        Run("mkfifo b.png; \"$program\" nega a.png b.png c.png d.png e.png -o out/ --jobs 2 & "
            "parent=$!; exec 3>b.png; until [ -n \"$victim\" ]; do "
            "for child in $(cat /proc/$parent/task/$parent/children); do "
            "for file in /proc/$child/fd/*; do [ ! $file -ef b.png ] || [ $child = $$ ] || "
            "victim=$child; done; done; done; kill -KILL $victim; wait $parent; echo $?; ls out");
    EXPECT_THAT(result.out, testing::EndsWith("1\na.png\nc.png\nd.png\ne.png\n"));
    EXPECT_THAT(result.err, HasSubstr("imgbasic: b.png: the worker process died (Killed)"));
    EXPECT_THAT(result.err, HasSubstr("5 files, 1 failed, "));
}

TEST_F(CommandLine, WritesAFolderInAnotherFormat) {
    WriteImage("a.png", 1);
    SaveDocument(OneLayer(2, 2, 8, std::vector<RGBA16>(4)), Path("b.c.ora"), {});
    const Result result =
        Run("imgbasic nega a.png b.c.ora -o out/ --format tiff && "
            "imgbasic mono a.png b.c.ora -o out --indexed --quiet && imgbasic info out/b.c.png");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out,
              "out/a.tiff\nout/b.c.tiff\n"
              "out/b.c.png: 2 x 2 pixels, 8 bits a channel, png\n");
    EXPECT_EQ(Bytes("out/a.tiff").substr(0, 2), "II");
    constexpr char kPaletteType = 3;
    EXPECT_EQ(Bytes("out/a.png").at(25), kPaletteType);
}

TEST_F(CommandLine, PassesPicturesOnThroughPipes) {
    Document layered = OneLayer(64, 64, 16, RandomDocuments(1).Pixels(4096, 16));
    layered.items.push_back(layered.items.front());
    SaveDocument(layered, Path("in.ora"), {});
    const Result good =
        Run("imgbasic nega in.ora -o - --target all | imgbasic nega - -o - --target all >piped && "
            "imgbasic info - <piped && imgbasic nega - -o - --format png --target merged <piped | "
            "imgbasic nega /dev/stdin -o twice.png --target merged");
    EXPECT_EQ(good.out,
              "standard input: 64 x 64 pixels, 16 bits a channel\n"
              "LAYER  NAME  PLACE            KIND    OPACITY\n"
              "0            64 x 64 at 0, 0  normal  100 %\n"
              "1            64 x 64 at 0, 0  normal  100 %\n"
              "twice.png\n");
    EXPECT_EQ(good.err, "");
    EXPECT_EQ(Pixels("twice.png"), Pixels("in.ora"));
}

TEST_F(CommandLine, PutsNothingIntoABrokenPipeline) {
    // More than a pipe holds.
    SaveDocument(OneLayer(200, 200, 8, RandomDocuments(1).Pixels(40000, 8)), Path("in.png"), {});
    const struct {
        const char* command;
        const char* message;
    } cases[] = {
        {"{ imgbasic nega in.png -o -; echo $? >status; } | true; (exit $(cat status))",
         "(Broken pipe)"},
        {"imgbasic nega in.png -o - >/dev/full", "(No space left on device)"},
        {"imgbasic nega in.png -o - >&-", "(Bad file descriptor)"},
        {"imgbasic list >/dev/full", "standard output: cannot be written"},
        {"head -c 9999 in.png | imgbasic nega - -o -", "standard input: is damaged"},
        {"imgbasic nega - -o - </dev/null", "standard input: is empty"},
        {"imgbasic nega - - -o out/ <in.png", "can be read only once"},
        {"imgbasic nega - -o out/ <in.png", "has no name"},
        {"imgbasic nega in.png in.png -o -", "several inputs need a folder"},
        {"echo P1 1 1 1 | imgbasic nega - -o -", "choose another one with --format"},
    };
    for (const auto& test : cases) {
        const Result result = Run(std::string("{ ") + test.command + "; echo $? >&2; }");
        EXPECT_EQ(result.out, "") << test.command;
        EXPECT_THAT(result.err, HasSubstr(test.message)) << test.command;
        EXPECT_THAT(result.err, testing::Not(testing::EndsWith("\n0\n"))) << test.command;
    }
}

TEST_F(CommandLine, ATerminatedRunTakesItsWorkersAlong) {
    // The workers wait for pipes that nobody writes to; `held` ends when nobody holds it open.
    const Result result = Run(
        "mkfifo a.png b.png held; \"$program\" nega a.png b.png -o out/ --jobs 2 >held & "
        "parent=$!; exec 3<held; until set -- $(cat /proc/$parent/task/$parent/children) && "
        "[ $# = 2 ]; do :; done; kill $parent; wait $parent; echo $?; timeout 10 cat <&3; echo $?; "
        "kill -KILL $1 $2");
    EXPECT_EQ(result.out, "143\n0\n") << "the second is 124 when workers go on";
}

TEST_F(CommandLine, SaysWhatIsWrongAndWritesNothing) {
    WriteImage("in.png", 1);
    std::filesystem::create_directory(Path("other"));
    std::filesystem::copy(Path("in.png"), Path("other/in.png"));
    RandomDocuments random(3);
    Folder folder;
    folder.items.emplace_back(random.AnyLayer(5, 5));
    Document layered{5, 5, 8, {}};
    layered.items.emplace_back(folder);
    SaveDocument(layered, Path("layers.ora"), {});
    setenv("LC_ALL", "C", 1);
    const auto before = std::distance(std::filesystem::recursive_directory_iterator(Path("")), {});
    const struct {
        const char* arguments;
        int status;
        const char* message;
    } cases[] = {
        {"", 2, "a command is missing"},
        {"sepia in.png -o x.png", 2, "there is no filter 'sepia'; --help"},
        {"grayscale in.png -o x.png", 2, "'grayscale'; did you mean gray?"},
        {"chandecmop in.png -o x.png", 2, "did you mean chan_decomp?"},
        {"mono in.png -o x.png --treshold=9", 2,
         "mono has no option --treshold; did you mean --th"},
        {"nega in.png", 2, "--output is required"},
        {"nega -o x.png", 2, "IN is required"},
        {"nega in.png -o x.png --jobs 0", 2, "--jobs: Value 0"},
        {"nega in.png -o x.png --jobs -3", 2, "--jobs: Value -3"},
        {"nega in.png -o x.png --depth 12", 2, "--depth"},
        {"nega in.png -o x.png --target some", 2, "'some' is none of merged, all, current"},
        {"nega in.png -o x.png --sub-layer 0", 2, "--sub-layer requires --layer"},
        {"nega in.png -o x.png --set Threshold=1", 2, "the options are TargetType"},
        {"mono in.png -o x.png --set Threshold=256", 2, "a whole number, 1 to 255"},
        {"nega in.png layers.ora -o x.png", 2, "several inputs need a folder"},
        {"nega in.png other/in.png -o out/", 2, "in.png and other/in.png would both become"},
        {"nega in.png layers.ora in.ora -o out/ --format png", 2, "in.png and in.ora would both"},
        {"nega in.png -o x.png --format png", 2, "the ending of x.png says the format"},
        {"nega in.png -o out/ --format gif", 2, "'gif' is none of png, jpg"},
        {"nega in.png -o x.jpg --indexed", 2, "--indexed writes PNG"},
        {"nega in.png layers.ora -o out/ --indexed --format jpg", 2, "--indexed writes PNG"},
        {"nega in.png -o in.png", 1, "in.png: exists already; --force overwrites it"},
        {"nega in.png -o x.xyz", 1, "x.xyz: "},
        {"nega in.png -o no/x.png", 1, "no/x.png: "},
        {"nega in.png -o x.png --layer 1", 1, "in.png: has no layer 1, only 1"},
        {"nega in.png -o x.png --layer 0 --sub-layer 0", 1, "layer 0 is no folder"},
        {"nega layers.ora -o x.png --layer 0", 1, "layer 0 is a folder; choose one of its layers"},
        {"nega layers.ora -o x.png --layer 0 --sub-layer 1", 1, "layer 0 has no layer 1 inside"},
        {"nega in.png -o x.png --module in.png", 1, "in.png: the filter module cannot be loaded"},
        {"gray in.png -o x.png --draw-color 33669", 2, "'33669' is no colour"},
        {"gray in.png -o x.png --draw-color 369", 2, "no effect without --tint draw"},
        {"gray in.png -o x.png --tint draw --back-color '#369'", 2, "without --tint back"},
        {"nega in.png -o x.png --target all --layer 0", 2, "with another --target than current"},
        {"scaling in.png -o x.png --ratio 9 --interp nearest --boundary clip", 2, "--interp bilin"},
        {"scaling in.png -o x.png --ratio 1/0", 2, "'1/0' is no percentage"},
        {"chan_merge in.png -o x.png", 1, "none of a picture's channels; name one"},
        {"gray in.png -o x.png --method luma", 2, "'luma' is none of average"},
        {"mono in.png -o x.png --threshold 256", 2, "--threshold: Value 256"},
        {"scaling in.png -o x.png", 2, "scaling needs a size"},
        {"scaling in.png -o x.png --width 8193", 2, "--width: Value 8193"},
        {"scaling in.png -o x.png --fit 9x", 2, "'9x' is no box"},
        {"scaling in.png -o x.png --fit 0x9", 2, "'0x9' is no box"},
        {"scaling in.png -o x.png --width 9 --ratio 50", 2, "--ratio excludes --width"},
        {"scaling in.png -o x.png --ratio 99999", 1, "in.png: the new size would be"},
        {"run nega in.png -o x.png", 2, "run needs its steps in front of --"},
        {"run nega '' -- in.png -o x.png", 2, "step 2, \"\": there is no filter ''; --help"},
        {"run nega 'mono --threshold 300' -- in.png -o x.png", 2,
         "step 2, \"mono --threshold 300\": --threshold: Value 300"},
        {"run 'nega in.png' -- in.png -o x.png", 2, "not expected: in.png"},
        {"run nega scaling -- in.png -o x.png", 2, "step 2 (scaling): scaling needs a size"},
        {"run nega 'nega --layer 1' -- in.png -o x.png", 1, "in.png: step 2 (nega): has no layer"},
        {"run nega 'scaling --ratio 99999' -- in.png -o x.png", 1, "in.png: step 2 (scaling): the"},
        {"settings", 2, "settings needs show, set or reset"},
        {"settings set", 2, "set needs a filter"},
        {"settings set mono", 2, "settings set mono needs an option"},
        {"settings set mono --threshold 256", 2, "--threshold: Value 256"},
        {"settings set scaling --ratio 33.3", 2, "a whole percentage"},
        {"settings set scaling --set newWidth=3", 2, "newWidth is not stored"},
        {"settings show chan_merge", 2, "no filter with stored options; those are gray, mono"},
        {"settings reset sepia", 2, "no filter with stored options"},
        {"info missing.png", 1, "missing.png: "},
    };
    for (const auto& test : cases) {
        const Result result = Run(std::string("imgbasic ") + test.arguments);
        EXPECT_EQ(result.status, test.status) << test.arguments;
        EXPECT_THAT(result.err, testing::StartsWith("imgbasic: ")) << test.arguments;
        EXPECT_THAT(result.err, HasSubstr(test.message)) << test.arguments;
        EXPECT_EQ(result.out, "") << test.arguments;
    }
    EXPECT_EQ(std::distance(std::filesystem::recursive_directory_iterator(Path("")), {}), before);
}

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
    const Result result = Run("imgbasic nega in.ora -o out.ora --layer 0");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(Others("out.ora", "data/wide.png"), Others("in.ora", "data/wide.png"));
    WriteBytes("wide.png", ZipEntry("out.ora", "data/wide.png"));
    EXPECT_EQ(Pixels("wide.png"), (std::vector{kRed, kCyan, kCyan})) << "the first is outside";

    const Result inner = Run("imgbasic nega in.ora -o in1.ora --layer 1 --sub-layer 0");
    EXPECT_EQ(inner.status, 0) << inner.err;
    std::string stack = kStack;
    stack.replace(stack.find("data/shared.png"), 15, "data/layer1.png");
    Entries want = Others("in.ora", "stack.xml");
    want.emplace_back("stack.xml", stack);
    want.emplace_back("data/layer1.png", ZipEntry("in1.ora", "data/layer1.png"));
    std::ranges::sort(want);
    EXPECT_EQ(Others("in1.ora", ""), want) << "the other layer keeps the file that they shared";
}

TEST_F(ForeignOpenRaster, NewLayersStandAtTheirPlaceAmongWhatWasThere) {
    const Result result =
        Run("imgbasic chan_decomp in.ora -o out.ora --layer 1 --sub-layer 0 &&"
            "imgbasic info out.ora");
    EXPECT_EQ(result.status, 0) << result.err;
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
        const Result accepted = Run(command + " --accept-loss");
        EXPECT_EQ(accepted.status, 0) << accepted.err;
        EXPECT_THAT(accepted.err, HasSubstr(test.message));
    }
    EXPECT_EQ(Run("imgbasic scaling in.ora -o c.png --width 6").status, 0)
        << "a picture without layers ends at the image";
    EXPECT_THAT(ZipEntry("b.ora", "stack.xml"), HasSubstr("xres=\"300\""));
}

TEST_F(CommandLine, OptionsReachTheFilterInEveryWayOfRunning) {
    WriteImage("a.png", 1);
    WriteImage("b.png", 2);
    const Result result =
        Run("imgbasic mono a.png -o flag.png --target all --threshold 7 &&"
            "imgbasic mono --set TargetType=1 --set Threshold=7 a.png -o set.png &&"
            "imgbasic mono a.png b.png -o batch/ --target all --threshold 7 &&"
            "imgbasic mono a.png -o other.png --target all --threshold 200 --quiet");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "flag.png\nset.png\nbatch/a.png\nbatch/b.png\n");
    EXPECT_EQ(Bytes("set.png"), Bytes("flag.png"));
    EXPECT_EQ(Bytes("batch/a.png"), Bytes("flag.png"));
    EXPECT_NE(Pixels("other.png"), Pixels("flag.png"));
}

TEST_F(CommandLine, OnlyAnOpaquePictureKeepsItsBorderWhenScaled) {
    std::vector<RGBA16> pixels(13 * 9, RGBA16{0x8000, 0x4000, 0xFF00, kFullScale});
    SaveDocument(OneLayer(13, 9, 8, pixels), Path("opaque.ora"), {});
    SaveDocument(OneLayer(13, 9, 8, pixels), Path("opaque.png"), {});
    Document two = OneLayer(13, 9, 8, pixels);
    two.items.push_back(two.items[0]);
    SaveDocument(two, Path("two.ora"), {});
    pixels[60].a = 0;
    SaveDocument(OneLayer(13, 9, 8, pixels), Path("hole.png"), {});
    const struct {
        const char* arguments;
        bool isOpaque;
    } cases[] = {
        {"opaque.png", true},
        {"opaque.ora", true},
        {"opaque.png opaque.ora", true},
        {"hole.png", false},
        {"two.ora", false},
        {"opaque.png --boundary clip", false},
        {"opaque.png --bound-alpha", false},
        {"opaque.png --set BoundAlpha=1", false},
        {"hole.png --boundary clamp --no-bound-alpha", true},
    };
    for (const auto& test : cases) {
        const Result result =
            Run("imgbasic scaling --ratio 133 --interp bilinear --force -o out/ " +
                std::string(test.arguments));
        EXPECT_EQ(result.status, 0) << result.err;
        const std::string written = result.out.substr(0, result.out.find('\n'));
        EXPECT_EQ(Pixels(written).front().a == kFullScale, test.isOpaque) << test.arguments;
    }
}

TEST_F(CommandLine, TakesColorsAndSizesAsPeopleWriteThem) {
    WriteImage("in.png", 1);
    const Result result =
        Run("for c in 336699 '#336699' '#369'; do imgbasic gray in.png -o $c.png --tint draw "
            "--draw-color $c; done; imgbasic scaling in.png -o a.png --ratio 150% && imgbasic "
            "scaling in.png -o b.png --width 19 --height 13 && imgbasic scaling in.png -o c.png "
            "--ratio 2/3 && imgbasic info c.png && imgbasic chan_decomp in.png -o d.png");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(Bytes("#336699.png"), Bytes("336699.png"));
    EXPECT_EQ(Bytes("#369.png"), Bytes("336699.png"));
    EXPECT_EQ(Bytes("a.png"), Bytes("b.png"));
    EXPECT_THAT(result.out, HasSubstr("c.png: 8 x 6 pixels"));
    EXPECT_THAT(result.err, HasSubstr("d.png: keeps no layers"));
}

TEST_F(CommandLine, ARunInStripsIsTheRunOfTheWhole) {
    RandomDocuments random(5);
    const Document document = OneLayer(311, 300, 16, random.Pixels(size_t{311} * 300, 16));
    SaveDocument(document, Path("in.ora"), {});
    const Module module = LoadModule(FindModule());
    for (const char* filter : {"gray", "mono", "nega"}) {
        const RunRequest request{.filter = filter, .options = {Option(filter, "TargetType", 0)}};
        const Result result =
            Run(std::string("imgbasic ") + filter + " in.ora --target merged --force -o out.ora");
        EXPECT_EQ(result.status, 0) << result.err;
        const RunOutcome whole = RunFilter(module, document, request);
        const Document strips = LoadDocument(Path("out.ora"));
        EXPECT_EQ(std::get<Layer>(strips.items.at(0)).pixels,
                  std::get<Layer>(whole.document.items.at(0)).pixels)
            << filter;
    }
}

TEST_F(CommandLine, RunsSeveralStepsAsSeveralCommandsWould) {
    const auto pixels = RandomDocuments(1).Pixels(200 * 100, 16);
    SaveDocument(OneLayer(200, 100, 16, pixels), Path("in.png"), {});
    Document layered = OneLayer(200, 100, 8, RandomDocuments(2).Pixels(200 * 100, 8));
    layered.items.push_back(LayerOf(RandomDocuments(3).Pixels(200 * 100, 8), 200, 100));
    SaveDocument(layered, Path("in.ora"), {});
    for (const char* in : {"in.png", "in.ora"}) {
        std::string shell = "in=";
        shell.append(in).append(
            "; k=${in#in}; imgbasic gray $in -o 1$k --method ntsc --target all && "
            "imgbasic scaling 1$k -o 2$k --width 77 && imgbasic nega 2$k -o 3$k --layer 0 && "
            "imgbasic col_reduce 3$k -o 4.png --colors 9 --depth 16 --force && "
            "imgbasic run 'gray --method ntsc --target all' ' scaling  --width 77 ' "
            "'nega --layer 0' 'col_reduce --colors 9' -- "
            "$in -o run.png --depth 16 --force --verbose");
        const Result result = Run(shell);
        EXPECT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(Bytes("run.png"), Bytes("4.png")) << in;
        EXPECT_THAT(result.err,
                    HasSubstr(std::string(in) + ": scaling, 200 x 100 to 77 x 39 pixels"));
    }
}

TEST_F(CommandLine, StepsForgetSamplesAsFilesBetweenThemWould) {
    Document document = OneLayer(4, 3, 16, std::vector(12, RGBA16{128, 384, 640, kFullScale}));
    FileMetadata metadata;
    metadata.width = 4;
    metadata.height = 3;
    metadata.lowerSamples.assign(48, true);
    document.metadata = std::make_shared<FileMetadata>(metadata);
    SaveDocument(document, Path("in.png"), {});
    const Result result = Run(
        "imgbasic scaling in.png -o 1.png --width 8 --interp nearest &&"
        "imgbasic scaling 1.png -o 2.png --width 4 --interp nearest &&"
        "imgbasic run 'scaling --width 8 --interp nearest' 'scaling --width 4 --interp nearest' -- "
        "in.png -o run.png");
    EXPECT_EQ(Bytes("run.png"), Bytes("2.png")) << result.err;
    EXPECT_NE(Bytes("run.png"), Bytes("in.png"));
}

TEST_F(CommandLine, StartsFromStoredOptionsOnlyWhereAsked) {
    WriteImage("a.png", 1);
    WriteImage("b.png", 2);
    EXPECT_EQ(Run("imgbasic mono a.png -o default.png && imgbasic gray a.png -o x.png --quiet && "
                  "ls -A home; imgbasic settings set mono --threshold 7 && imgbasic settings set "
                  "gray --method red --target all --set ColorMode=2 && imgbasic settings set "
                  "col_reduce --share-palette && imgbasic settings set scaling --ratio 50 && "
                  "imgbasic settings show && imgbasic settings reset col_reduce && "
                  "XDG_CONFIG_HOME=$HOME/.config imgbasic settings show mono && "
                  "XDG_CONFIG_HOME=$HOME imgbasic settings show")
                  .out,
              "default.png\n"
              "FILTER      STORED\n"
              "gray        --method red --tint green --target all\n"
              "mono        --threshold 7\n"
              "col_reduce  --share-palette\n"
              "scaling     --ratio 50 --ratio-height 50\n"
              "FILTER  STORED\nmono    --threshold 7\n"
              "Nothing is stored.\n");
    const Result runs = Run(
        "imgbasic mono a.png -o 1/ && imgbasic mono a.png -o 7.png --threshold 7 && "
        "imgbasic mono a.png -o 2/ --remembered && IMGBASIC_REMEMBERED=1 imgbasic mono a.png b.png "
        "-o 3/ --jobs 2 && imgbasic gray a.png b.png -o 4/ --remembered && imgbasic gray a.png -o "
        "gray.png --method red --tint green && imgbasic scaling a.png -o half.png --remembered && "
        "imgbasic info half.png && imgbasic run nega 'mono --threshold 9 --remember' -- a.png "
        "missing.png -o 5/; imgbasic settings show mono; "
        "HOME=$PWD/a.png imgbasic mono a.png -o kept.png --remember --threshold 8; echo $?; "
        "imgbasic settings show mono; imgbasic settings reset; imgbasic settings show");
    EXPECT_EQ(Bytes("1/a.png"), Bytes("default.png"));
    EXPECT_EQ(Bytes("2/a.png"), Bytes("7.png"));
    EXPECT_EQ(Bytes("3/a.png"), Bytes("7.png"));
    EXPECT_EQ(Bytes("4/a.png"), Bytes("gray.png"));
    EXPECT_THAT(runs.out, HasSubstr("half.png: 6 x 4 pixels"));
    const std::string nine = "FILTER  STORED\nmono    --threshold 9 --target merged\n";
    EXPECT_THAT(runs.out, testing::EndsWith("5/a.png\n" + nine + "kept.png\n1\n" + nine +
                                            "Nothing is stored.\n"));
    EXPECT_THAT(runs.err, HasSubstr("/a.png/.config/imgbasic/settings.reg: the options of mono"));
}

TEST_F(CommandLine, VerboseMeasuresWhatIsVisibleOfAReduction) {
    // Two opaque colours that are kept, and others that nobody sees.
    std::vector<RGBA16> pixels(64, RGBA16{kFullScale, 0, 0, kFullScale});
    for (uint16_t i = 0; i < 32; ++i) {
        pixels[i] = i < 16 ? RGBA16{0, 0, 0, kFullScale}
                           : RGBA16{static_cast<uint16_t>(i * 0x700), 0x1000, 0x9000, 0};
    }
    SaveDocument(OneLayer(8, 8, 8, pixels), Path("in.png"), {});
    const Result result =
        Run("imgbasic col_reduce in.png -o out.png --colors 200 --dither none --verbose");
    EXPECT_THAT(result.err, HasSubstr("3 colours, mean squared error 0.000"));
}

TEST_F(CommandLine, ListsTheFiltersAsTheModuleTellsThem) {
    const std::string list = Run("imgbasic list").out;
    EXPECT_THAT(list,
                testing::StartsWith("FILTER       NAME            CHANGES SIZE  BATCH  PHASES\n"));
    EXPECT_THAT(list, HasSubstr("\nchan_merge   チャンネル結合  no            no     2\n"));
    EXPECT_THAT(list, HasSubstr("\nscaling      拡大縮小        yes           yes    1\n"));
}

TEST_F(CommandLine, ShowsTheLayersOfAFile) {
    Document document = OneLayer(5, 4, 16, std::vector<RGBA16>(20));
    Layer layer = std::get<Layer>(document.items[0]);
    layer.name = "空e\u0301😀";
    layer.kind = CompositionKind::Additive;
    layer.pixels[6] = {1, 0, 0, kFullScale};
    layer.bounds = BoundsOf(layer.pixels, 5, 4);
    Folder folder;
    folder.name = "folder";
    folder.opacity = 40;
    folder.visible = false;
    layer.clip = true;
    layer.opacity = 12.345678;
    Folder inner;
    inner.name = "inner";
    inner.kind = CompositionKind::Multiply;
    inner.items.emplace_back(layer);
    folder.items = {inner, layer};
    document.items.emplace_back(folder);
    SaveDocument(document, Path("x.ora"), {});
    EXPECT_EQ(Run("imgbasic info x.ora").out,
              "x.ora: 5 x 4 pixels, 16 bits a channel\n"
              "LAYER  NAME       PLACE          KIND          OPACITY\n"
              "0                 1 x 1 at 0, 0  normal        100 %\n"
              "1      folder     folder         normal        40 %     hidden\n"
              "         inner    folder         svg:multiply  100 %\n"
              "  1 0      空e\u0301😀  1 x 1 at 1, 1  additive      12.35 %  clipped\n"
              "  1 1    空e\u0301😀    1 x 1 at 1, 1  additive      12.35 %  clipped\n");
}

}  // namespace
}  // namespace imgbasic::host
