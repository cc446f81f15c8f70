#include "tests/host/command_line.h"

namespace imgbasic::host {
namespace {

using testing::HasSubstr;

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
    const Result result = RunWell(
        "imgbasic nega a.png b.c.ora -o out/ --format tiff && "
        "imgbasic mono a.png b.c.ora -o out --indexed --quiet && imgbasic info out/b.c.png");
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
        {"in.png -negate x.png", 2, "'in.png' is a file; the filter comes first"},
        {"chandecmop in.png -o x.png", 2, "did you mean chan_decomp?"},
        {"mono in.png -o x.png --treshold=9", 2,
         "mono has no option --treshold; did you mean --th"},
        {"nega in.png", 2, "no output is named; write -o OUT"},
        {"nega -o x.png", 2, "no input is named"},
        {"nega in.png -o x.png --jobs 0", 2, "--jobs: Value 0"},
        {"nega in.png -o x.png --depth 12", 2, "--depth"},
        {"nega in.png -o x.png --target some", 2, "'some' is none of merged, all, current"},
        {"nega in.png -o x.png --sub-layer 0", 2, "--sub-layer requires --layer"},
        {"nega in.png -o x.png --set Threshold=1", 2, "the options are TargetType"},
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
        {"scaling in.png -o x.png --ratio 1/0", 2, "'1/0' is no percentage"},
        {"chan_merge in.png -o x.png", 1, "none of a picture's channels; name one"},
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

TEST_F(CommandLine, TellsOfOptionsWithoutEffect) {
    WriteImage("in.png", 1);
    const Result result = RunWell(
        "imgbasic gray in.png -o a.png --draw-color 369 && "
        "imgbasic gray in.png -o b.png --tint draw --draw-color '#369' && "
        "imgbasic nega in.png -o c.png --target all --layer 0 && "
        "imgbasic run nega 'scaling --ratio 50 --interp nearest --boundary clip' -- in.png -o "
        "d.png");
    EXPECT_EQ(result.err,
              "--draw-color has no effect without --tint draw\n"
              "--layer has no effect with another --target than current\n"
              "step 2 (scaling): --boundary has no effect without --interp bilinear\n");
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
