#include "tests/host/command_line.h"

#include "host/driver.h"
#include "host/file_metadata.h"
#include "host/memory_limit.h"

namespace imgbasic::host {
namespace {

using testing::HasSubstr;

TEST_F(CommandLine, OptionsReachTheFilterInEveryWayOfRunning) {
    WriteImage("a.png", 1);
    WriteImage("b.png", 2);
    const Result result = RunWell(
        "imgbasic mono a.png -o flag.png --target all --threshold 7 &&"
        "imgbasic mono --set TargetType=1 --set Threshold=7 a.png -o set.png &&"
        "imgbasic mono a.png b.png -o batch/ --target all --threshold 7 &&"
        "imgbasic mono a.png -o other.png --target all --threshold 200 --quiet");
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
            RunWell("imgbasic scaling --ratio 133 --interp bilinear --force -o out/ " +
                    std::string(test.arguments));
        const std::string written = result.out.substr(0, result.out.find('\n'));
        EXPECT_EQ(Pixels(written).front().a == kFullScale, test.isOpaque) << test.arguments;
    }
}

TEST_F(CommandLine, TakesColorsAndSizesAsPeopleWriteThem) {
    WriteImage("in.png", 1);
    const Result result = RunWell(
        "for c in 336699 '#336699' '#369'; do imgbasic gray in.png -o $c.png --tint draw "
        "--draw-color $c; done; imgbasic scaling in.png -o a.png --ratio 150% && imgbasic "
        "scaling in.png -o b.png --width 19 --height 13 && imgbasic scaling in.png -o c.png "
        "--ratio 2/3 && imgbasic info c.png && imgbasic chan_decomp in.png -o d.png");
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
        RunWell(std::string("imgbasic ") + filter + " in.ora --target merged --force -o out.ora");
        const RunOutcome whole = RunFilter(module, document, request);
        const Document strips = LoadDocument(Path("out.ora"));
        EXPECT_EQ(std::get<Layer>(strips.items.at(0)).pixels,
                  std::get<Layer>(whole.document.items.at(0)).pixels)
            << filter;
    }
}

TEST_F(CommandLine, FilteringAFileWhileItIsReadIsFilteringItRead) {
    auto turned = std::make_shared<FileMetadata>();
    turned->exif = MetadataBytes({"II*\0\x8\0\0\0\x1\0\x12\x1\x3\0\x1\0\0\0\x6\0\0\0\0\0\0\0", 26});
    for (const bool isGray : {false, true}) {
        std::vector<RGBA16> pixels = RandomDocuments(6).Pixels(size_t{211} * 50, 8);
        for (RGBA16& pixel : pixels) {
            pixel = isGray ? RGBA16{pixel.r, pixel.r, pixel.r, kFullScale}
                           : RGBA16{pixel.r, pixel.g, pixel.b, kFullScale};
        }
        Document document = OneLayer(211, 50, 8, pixels);
        SaveDocument(document, Path(isGray ? "gray.png" : "rgb.png"), {});
        document.metadata = turned;
        SaveDocument(document, Path(isGray ? "turned_gray.jpg" : "turned.jpg"), {});
    }
    // What comes through a pipe is read to its end first.
    const Result result = RunWell(
        "for f in gray.png rgb.png turned_gray.jpg turned.jpg; do for o in png jpg; do "
        "imgbasic gray $f -o 1$f.$o --method ntsc && imgbasic gray - -o 2$f.$o --method ntsc "
        "<$f && cmp 1$f.$o 2$f.$o && imgbasic run nega mono -- $f -o 3$f.$o && "
        "imgbasic run nega mono -- - -o 4$f.$o <$f && cmp 3$f.$o 4$f.$o || exit 1; done; done; "
        "imgbasic info 1turned.jpg.png; imgbasic nega gray.png -o n.png --verbose");
    EXPECT_THAT(result.out, HasSubstr("1turned.jpg.png: 50 x 211 pixels"));
    EXPECT_THAT(result.err, HasSubstr("gray.png: nega, 211 x 50 pixels, "));
}

TEST_F(CommandLine, RefusesAPictureByTheMemoryThatARunTakes) {
    WriteBytes("huge.ppm", "P6 1000000 1000000 255\n");
    // 3 bytes a pixel where the file is filtered while it is read, 8 elsewhere.
    const struct {
        const char* arguments;
        const char* need;
    } cases[] = {{"nega huge.ppm -o x.jpg", "need 2794.0 GiB"},
                 {"nega huge.ppm -o x.png --depth 16", "need 7450.6 GiB"},
                 {"col_reduce huge.ppm -o x.png", "need 7450.6 GiB"}};
    for (const auto& test : cases) {
        const Result result = Run(std::string("imgbasic ") + test.arguments);
        EXPECT_EQ(result.status, 1) << test.arguments;
        EXPECT_THAT(result.err, HasSubstr(test.need)) << test.arguments;
    }
    Document document = OneLayer(2, 2, 8, std::vector<RGBA16>(4));
    EXPECT_EQ(BytesForRun("col_reduce", document, 2, 2), 32);
    EXPECT_EQ(BytesForRun("scaling", document, 20, 10), 1600);
    document.items.push_back(document.items.front());
    EXPECT_EQ(BytesForRun("scaling", document, 20, 10), 3200 + 32) << "and the merged picture";
    EXPECT_THROW(RequireMemory("x", 2, 2, 1e18), FileError);
    EXPECT_NO_THROW(RequireMemory("x", 2, 2, 1));
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
        const Result result = RunWell(shell);
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

}  // namespace
}  // namespace imgbasic::host
