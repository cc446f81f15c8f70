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

TEST_F(ImageFile, LosslessFormatsGiveBackEveryPixelAtTheirDepth) {
    struct Case {
        const char* name;
        int bitDepth;
    };
    for (const Case& c :
         {Case{"p8.png", 8}, {"p16.png", 16}, {"t8.tif", 8}, {"t16.TIFF", 16}, {"w.webp", 8}}) {
        SCOPED_TRACE(c.name);
        RandomDocuments random(1);
        const Document document = OneLayer(37, 23, c.bitDepth, random.Pixels(37 * 23, c.bitDepth));
        EXPECT_THAT(SaveDocument(document, Path(c.name), {}), IsEmpty());
        const Document loaded = LoadDocument(Path(c.name));
        EXPECT_EQ(loaded.width, 37);
        EXPECT_EQ(loaded.height, 23);
        EXPECT_EQ(loaded.bitDepth, c.bitDepth);
        EXPECT_TRUE(Flatten(loaded) == Flatten(document));
    }
}

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

TEST_F(ImageFile, APictureTakenSidewaysIsTurnedUpright) {
    // Left half black, right half white.
    std::vector<RGBA16> pixels(32 * 16, RGBA16{0, 0, 0, kFullScale});
    for (size_t i = 0; i < pixels.size(); ++i) {
        if (i % 32 >= 16) {
            pixels[i] = {kFullScale, kFullScale, kFullScale, kFullScale};
        }
    }
    (void)SaveDocument(OneLayer(32, 16, 8, pixels), Path("flat.jpg"), {});
    // Orientation 6: the row of the file is the column of the picture, turned clockwise.
    using namespace std::string_literals;
    const std::string exif =
        "\xFF\xE1\0\x22"
        "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0"s;
    WriteBytes("turned.jpg", Bytes("flat.jpg").insert(2, exif));
    const Document turned = LoadDocument(Path("turned.jpg"));
    ASSERT_EQ(turned.width, 16);
    ASSERT_EQ(turned.height, 32);
    const std::vector<RGBA16> flat = Flatten(turned);
    EXPECT_LT(flat.front().r, 1000);
    EXPECT_GT(flat.back().r, kFullScale - 1000);
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
    constexpr auto kPrivate = std::filesystem::perms(0600);
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

TEST_F(ImageFile, APaletteKeepsExactlyTheColorsThatFitIt) {
    RandomDocuments random(4);
    for (const size_t colors : {1U, 2U, 5U, 17U, 256U, 257U}) {
        SCOPED_TRACE(colors);
        const std::vector<RGBA16> palette = random.Pixels(colors, 8);
        std::vector<RGBA16> pixels;
        for (size_t i = 0; i < size_t{64} * 64; ++i) {
            pixels.push_back(palette[i % colors]);
        }
        const Document document = OneLayer(64, 64, 8, pixels);
        const bool fits = SaveIndexedPng(document, Path("i.png"), {.overwrite = true});
        EXPECT_EQ(fits, colors <= 256);
        if (fits) {
            EXPECT_EQ(Bytes("i.png")[25], 3) << "the colour type of a palette";
            EXPECT_TRUE(Flatten(LoadDocument(Path("i.png"))) == Flatten(document));
        }
    }
}

}  // namespace
}  // namespace imgbasic::host
