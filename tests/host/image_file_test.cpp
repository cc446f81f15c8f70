#include "host/image_file.h"

#include <gmock/gmock.h>

#include "host/flatten.h"
#include "host/sample_depth.h"
#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

using ImageFile = FileTest;

/// The more threads the image library has, the likelier it is that they get in each other's way.
const int manyThreads = setenv("VIPS_CONCURRENCY", "8", 1);

TEST_F(ImageFile, TheDepthAskedForGoesBeforeTheDocuments) {
    RandomDocuments random(2);
    const Document document = OneLayer(4, 4, 8, random.Pixels(16, 8));
    (void)SaveDocument(document, Path("a.png"), {.bitDepth = 16});
    EXPECT_EQ(LoadDocument(Path("a.png")).bitDepth, 16);
    (void)SaveDocument(document, Path("a.ora"), {.bitDepth = 16});
    EXPECT_EQ(LoadDocument(Path("a.ora")).bitDepth, 16);
    (void)SaveDocument(LoadDocument(Path("a.png")), Path("b.png"), {.bitDepth = 8});
    EXPECT_TRUE(Flatten(LoadDocument(Path("b.png"))) == Flatten(document));
}

TEST_F(ImageFile, JpegLaysTranslucencyOverWhiteAndSaysSo) {
    constexpr int kHalf = kFullScale / 2;
    const std::vector<RGBA16> clear(256, RGBA16{0, 0, 0, kHalf});
    EXPECT_THAT(SaveDocument(OneLayer(16, 16, 8, clear), Path("a.jpg"), {}),
                ElementsAre(AllOf(HasSubstr("a.jpg"), HasSubstr("white"))));
    const RGBA16 gray = Flatten(LoadDocument(Path("a.jpg")))[0];
    EXPECT_NEAR(gray.r, kHalf, 512);
    EXPECT_EQ(gray.a, kFullScale);

    const std::vector<RGBA16> opaque(256, RGBA16{0, 0, 0, kFullScale});
    EXPECT_THAT(SaveDocument(OneLayer(16, 16, 8, opaque), Path("b.jpg"), {}), IsEmpty());
    EXPECT_THAT(SaveDocument(OneLayer(16, 16, 16, opaque), Path("c.webp"), {}),
                ElementsAre(HasSubstr("8 bits")));
}

TEST_F(ImageFile, NoPartOfATruncatedFileIsTakenForAPicture) {
    RandomDocuments random(3);
    const Document document = OneLayer(64, 64, 8, random.Pixels(64 * 64, 8));
    for (const std::string name : {"a.png", "a.jpg", "a.webp", "a.tif", "a.ora"}) {
        (void)SaveDocument(document, Path(name), {});
        const std::string whole = Bytes(name);
        for (const size_t percent : {1U, 5U, 30U, 60U, 90U, 99U}) {
            SCOPED_TRACE(name + ", percent: " + std::to_string(percent));
            WriteBytes(name, whole.substr(0, whole.size() * percent / 100));
            // With damage in the last rows, whether threads are in each other's way is luck.
            for (int again = percent < 90 ? 1 : 200; again > 0; --again) {
                ASSERT_THAT(LoadError(name),
                            AllOf(HasSubstr(name), HasSubstr("; "), Not(HasSubstr("\n"))));
            }
        }
    }
}

TEST_F(ImageFile, BadFilesAreNamedWithTheirFault) {
    using namespace std::string_literals;
    WriteBytes("empty.png", "");
    WriteBytes("text.png", "no picture at all");
    WriteBytes("nothing.ppm", "P6 0 1 255\n\1\2\3");
    std::filesystem::create_directory(Path("folder.png"));
    // A million pixels a side.
    WriteBytes("huge.png",
               "\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\x0F\x42\x40\0\x0F\x42\x40\x08\x06\0\0\0"
               "\x5C\x6D\x38\x7D\0\0\0\0IDAT\x35\xAF\x06\x1E\0\0\0\0IEND\xAE\x42\x60\x82"s);
    struct Case {
        const char* name;
        const char* fault;
    };
    for (const Case& c : {Case{"missing.png", "No such file"},
                          {"empty.png", "no image"},
                          {"text.png", "no image"},
                          {"nothing.ppm", "width or height is 0"},
                          {"folder.png", "is a folder"},
                          {"huge.png", "7450.6 GiB"}}) {
        EXPECT_THAT(LoadError(c.name), AllOf(HasSubstr(c.name), HasSubstr(c.fault)));
    }
}

TEST_F(ImageFile, WhatCannotBeWrittenLeavesTheFolderAsItWas) {
    const Document document = OneLayer(2, 2, 8, std::vector<RGBA16>(4));
    WriteBytes("old.png", "precious");
    EXPECT_THAT(SaveError(document, "old.png"), AllOf(HasSubstr("old.png"), HasSubstr("exists")));
    EXPECT_EQ(Bytes("old.png"), "precious");
    EXPECT_THAT(SaveError(document, "none/a.png"), HasSubstr("no folder"));
    EXPECT_THAT(SaveError(document, "a.gif"), HasSubstr("a.gif"));
    EXPECT_THAT(SaveError(document, "a"), HasSubstr(".png"));
    std::filesystem::create_directory(Path("f.png"));
    EXPECT_THAT(SaveError(document, "f.png", {.overwrite = true}), HasSubstr("not a file"));
    // Too wide for the format: the encoder fails after the place was reserved.
    const Document wide = OneLayer(20000, 1, 8, std::vector<RGBA16>(20000));
    EXPECT_THAT(SaveError(wide, "wide.webp"), AllOf(HasSubstr("WebP"), Not(HasSubstr("\n"))));
    constexpr auto kPrivate = std::filesystem::perms(0640);
    std::filesystem::permissions(Path("old.png"), kPrivate);
    (void)SaveDocument(document, Path("old.png"), {.overwrite = true});
    EXPECT_EQ(LoadDocument(Path("old.png")).width, 2);
    EXPECT_EQ(std::filesystem::status(Path("old.png")).permissions(), kPrivate);

    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(Path(""))) {
        names.push_back(entry.path().filename());
    }
    EXPECT_THAT(names, testing::UnorderedElementsAre("old.png", "f.png"));
}

TEST_F(ImageFile, ThePixelsDecideHowTheFileHoldsThem) {
    // Colour types of PNG: 0 gray, 2 RGB, 3 palette, 4 gray and alpha, 6 RGBA.
    struct Case {
        const char* what;
        int bitDepth;
        std::vector<RGBA16> palette;
        int colorType;
        int bits;
    };
    const RGBA16 black{0, 0, 0, kFullScale};
    const RGBA16 white{kFullScale, kFullScale, kFullScale, kFullScale};
    const RGBA16 gray{0x7000, 0x7000, 0x7000, kFullScale};
    const RGBA16 deepGray{0x7001, 0x7001, 0x7001, kFullScale};
    const RGBA16 red{kFullScale, 0, 0, kFullScale};
    const RGBA16 clearRed{kFullScale, 0, 0, 0};
    std::vector<RGBA16> grays;
    for (int value = 0; value < 256; ++value) {
        const uint16_t channel = FromDepth8(static_cast<uint8_t>(value));
        grays.push_back({channel, channel, channel, kFullScale});
    }
    std::vector<RGBA16> translucentGrays = grays;
    translucentGrays.push_back({0, 0, 0, 0x100});
    RandomDocuments random(4);
    std::vector<RGBA16> colors = random.Pixels(257, 8);
    std::vector<RGBA16> fewer(colors.begin(), colors.end() - 1);
    const Case cases[] = {{"black and white", 8, {black, white}, 0, 1},
                          {"deep black and white", 16, {black, white}, 0, 1},
                          {"all grays", 8, grays, 0, 8},
                          {"a deep gray", 16, {black, deepGray}, 0, 16},
                          {"translucent grays", 8, translucentGrays, 4, 8},
                          {"three grays", 8, {black, gray, white}, 3, 2},
                          {"two colours", 8, {red, white}, 3, 1},
                          {"a hidden colour", 8, {red, clearRed, white}, 3, 2},
                          {"a full palette", 8, fewer, 3, 8},
                          {"too many colours", 8, colors, 6, 8}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<RGBA16> pixels;
        for (size_t i = 0; i < size_t{64} * 64; ++i) {
            pixels.push_back(c.palette[i % c.palette.size()]);
        }
        const Document document = OneLayer(64, 64, c.bitDepth, pixels);
        for (const char* name : {"c.png", "c.tif", "c.webp"}) {
            if (c.bitDepth == 8 || name != std::string("c.webp")) {
                EXPECT_THAT(SaveDocument(document, Path(name), {.overwrite = true}), IsEmpty());
                EXPECT_TRUE(Flatten(LoadDocument(Path(name))) == pixels) << name;
            }
        }
        EXPECT_EQ(Bytes("c.png")[25], c.colorType);
        EXPECT_EQ(Bytes("c.png")[24], c.bits);
        const SaveOptions plain{.overwrite = true, .encode = {}};
        (void)SaveDocument(document, Path("c.png"), plain);
        EXPECT_EQ(Bytes("c.png")[25] & ~4, 2) << "RGB or RGBA";
        EXPECT_TRUE(Flatten(LoadDocument(Path("c.png"))) == pixels);
        const SaveOptions indexed{.overwrite = true, .encode = {.indexed = true}};
        const std::string error = SaveError(document, "c.png", indexed);
        EXPECT_THAT(error,
                    HasSubstr(c.palette.size() > 256 ? "more than 256" : "without an error"));
    }
    // Over black and white, which gray JPEGs and bilevel TIFFs are for.
    const Document bilevel = OneLayer(64, 64, 8, std::vector<RGBA16>(64 * 64, white));
    (void)SaveDocument(bilevel, Path("c.jpg"), {});
    EXPECT_EQ(Bytes("c.jpg")[Bytes("c.jpg").find("\xFF\xC0") + 9], 1) << "one component";
}

TEST_F(ImageFile, AnOpaquePictureStaysOpaqueAfterTheRoundingOfAnInterpolation) {
    const std::vector<RGBA16> pixels(size_t{64} * 64, RGBA16{0x1234, 0, 0, kFullScale - 1});
    const Document document = OneLayer(64, 64, 8, pixels);
    EXPECT_THAT(SaveDocument(document, Path("a.jpg"), {}), IsEmpty());
    for (const int depth : {8, 16}) {
        const SaveOptions plain{.bitDepth = depth, .overwrite = true, .encode = {}};
        EXPECT_THAT(SaveDocument(document, Path("a.png"), plain), IsEmpty());
        EXPECT_EQ(Bytes("a.png")[25], 2) << "RGB";
    }
}

TEST_F(ImageFile, EveryValueOfA16BitFileComesBack) {
    std::string samples;
    std::string swapped;
    for (int value = 0; value < 65536; ++value) {
        const char high = static_cast<char>(value >> 8);
        const char low = static_cast<char>(value);
        samples.append(1, high).append(1, low);
        swapped.append(1, low).append(1, high);
    }
    WriteBytes("all.ppm", "P5 256 256 65535\n" + samples);
    const Document document = LoadDocument(Path("all.ppm"));
    SaveOptions options;
    options.encode.tiffCompression = TiffCompression::None;
    (void)SaveDocument(document, Path("all.tif"), options);
    EXPECT_NE(Bytes("all.tif").find(swapped), std::string::npos);
}

TEST_F(ImageFile, OtherFormatsAreReadByTheirContent) {
    using namespace std::string_literals;
    const std::string gif = "GIF89a\2\0\1\0\x80\0\0\xFF\0\0\0\0\xFF,\0\0\0\0\2\0\1\0\0\2\2D\n\0;"s;
    const std::string bmp =
        "BM\x3E\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0"
        "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\xFF\xFF\0\0\0\0"s;
    const std::string ppm = "P6 2 1 255\n\xFF\0\0\0\0\xFF"s;
    const RGBA16 red{kFullScale, 0, 0, kFullScale};
    const RGBA16 blue{0, 0, kFullScale, kFullScale};
    for (const std::string& file : {gif, bmp, ppm}) {
        WriteBytes("x.jpg", file);
        EXPECT_THAT(Flatten(LoadDocument(Path("x.jpg"))), ElementsAre(red, blue)) << file;
        EXPECT_THAT(Flatten(LoadDocument(std::as_bytes(std::span(file)), "-")),
                    ElementsAre(red, blue));
    }
    // 12 bits a sample; and a bomb, a few bytes that claim 100,000 pixels a side.
    WriteBytes("deep.tif",
               "II*\0\x0E\0\0\0\0\0\0\0\0\0\x09\0\0\1\3\0\1\0\0\0\2\0\0\0\1\1\3\0\1\0\0\0\2\0\0\0"
               "\2\1\3\0\1\0\0\0\x0C\0\0\0\3\1\3\0\1\0\0\0\1\0\0\0\6\1\3\0\1\0\0\0\1\0\0\0"
               "\x11\1\4\0\1\0\0\0\x08\0\0\0\x15\1\3\0\1\0\0\0\1\0\0\0\x16\1\3\0\1\0\0\0\2\0\0\0"
               "\x17\1\4\0\1\0\0\0\6\0\0\0\0\0\0\0"s);
    EXPECT_THAT(LoadError("deep.tif"), HasSubstr("not supported"));
    WriteBytes("bomb.ppm", "P6 100000 100000 255\n");
    EXPECT_THAT(LoadError("bomb.ppm"), HasSubstr("GiB"));
}

}  // namespace
}  // namespace imgbasic::host
