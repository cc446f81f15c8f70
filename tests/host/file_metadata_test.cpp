#include "host/file_metadata.h"

#include <gtest/gtest.h>

#include "host/exif.h"
#include "host/flatten.h"
#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

using namespace std::string_literals;

using Metadata = FileTest;

/// A TIFF structure with a preview, as cameras write it: orientation and 300 dots an inch.
std::string Exif(char orientation) {
    return "MM\0*\0\0\0\x08\0\x04"
           "\x01\x12\0\x03\0\0\0\x01\0"s +
           orientation +
           "\0\0"
           "\x01\x1A\0\x05\0\0\0\x01\0\0\0\x5C"
           "\x01\x1B\0\x05\0\0\0\x01\0\0\0\x5C"
           "\x01\x28\0\x03\0\0\0\x01\0\x02\0\0"
           "\0\0\0\x3E"
           "\0\x02"
           "\x02\x01\0\x04\0\0\0\x01\0\0\0\x64"
           "\x02\x02\0\x04\0\0\0\x01\0\0\0\x04"
           "\0\0\0\0"
           "\0\0\x01\x2C\0\0\0\x01"
           "view"s;
}

/// A profile with a single tag, which means nothing, for the colour space of four letters.
std::string Profile(const std::string& space) {
    std::string profile(400, '\0');
    const auto put = [&profile](size_t at, const std::string& bytes) {
        profile.replace(at, bytes.size(), bytes);
    };
    put(2, "\x01\x90");
    put(8, "\x02");
    put(12, "mntr" + space + "XYZ ");
    put(36, "acsp");
    put(68, "\0\0\xF6\xD6\0\1\0\0\0\0\xD3\x2D"s);
    put(128, "\0\0\0\1cprt\0\0\0\x90\0\0\1\0"s);
    // Readers take one that packs to nothing for cut off.
    for (size_t i = 144; i < profile.size(); ++i) {
        profile[i] = static_cast<char>(i * i % 251);
    }
    return profile;
}

std::shared_ptr<FileMetadata> Everything() {
    auto metadata = std::make_shared<FileMetadata>();
    metadata->profile = MetadataBytes(Profile("RGB "));
    metadata->exif = MetadataBytes(Exif(1));
    metadata->xmp = MetadataBytes("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"/>");
    metadata->iptc = MetadataBytes("\x1C\x02\x78\0\3cap"s);
    metadata->xResolution = 300 / 25.4;
    metadata->yResolution = 150 / 25.4;
    metadata->texts = {{"Comment", "hello"}, {"Description", "gr\xC3\xBCn"}};
    return metadata;
}

TEST_F(Metadata, EveryFormatKeepsWhatItHasAPlaceFor) {
    struct Case {
        const char* name;
        bool exif;
        bool iptc;
        bool resolution;
        std::vector<std::string> texts;
    };
    RandomDocuments random(1);
    Document document = OneLayer(40, 20, 8, random.Pixels(800, 8));
    document.metadata = Everything();
    const FileMetadata& source = *document.metadata;
    for (const Case& c : {Case{"m.png", true, false, true, {"hello", "gr\xC3\xBCn"}},
                          {"m.jpg", true, true, true, {"hello"}},
                          {"m.webp", true, false, false, {}},
                          {"m.tif", false, true, true, {"gr\xC3\xBCn"}}}) {
        SCOPED_TRACE(c.name);
        (void)SaveDocument(document, Path(c.name), {});
        const FileMetadata kept = *LoadDocument(Path(c.name)).metadata;
        EXPECT_EQ(kept.profile, source.profile);
        EXPECT_EQ(kept.xmp, source.xmp);
        EXPECT_EQ(kept.iptc, c.iptc ? source.iptc : FileMetadata::Bytes());
        EXPECT_EQ(TextOf(kept.exif).substr(0, 18), c.exif ? Exif(1).substr(0, 18) : "");
        // A format without a place for it has it in the EXIF block.
        EXPECT_NEAR(kept.xResolution * 25.4, 300, 0.1);
        EXPECT_NEAR(kept.yResolution * 25.4, c.resolution ? 150 : 300, 0.1);
        std::vector<std::string> texts;
        for (const TextEntry& entry : kept.texts) {
            texts.push_back(entry.text);
        }
        EXPECT_EQ(texts, c.texts);

        (void)SaveDocument(document, Path(c.name), {.overwrite = true, .strip = true});
        const FileMetadata none = *LoadDocument(Path(c.name)).metadata;
        EXPECT_TRUE(none.profile.empty() && none.exif.empty() && none.xmp.empty() &&
                    none.iptc.empty() && none.texts.empty());
        EXPECT_EQ(none.xResolution, 0) << "no file tells a resolution that was not given";
    }
}

TEST_F(Metadata, EveryOrientationIsTurnedUprightOnce) {
    const struct {
        char orientation;
        std::vector<std::string> upright;
    } cases[] = {{1, {"ABC", "DEF"}},     {2, {"CBA", "FED"}},     {3, {"FED", "CBA"}},
                 {4, {"DEF", "ABC"}},     {5, {"AD", "BE", "CF"}}, {6, {"DA", "EB", "FC"}},
                 {7, {"FC", "EB", "DA"}}, {8, {"CF", "BE", "AD"}}};
    // Every letter stands for a block of pixels, higher than what is decoded at a time.
    constexpr int kBlock = 20;
    const auto color = [](char letter) {
        return RGBA16{static_cast<uint16_t>(letter * 256), 0, 0, kFullScale};
    };
    const auto draw = [&](const std::vector<std::string>& letters) {
        const auto width = static_cast<int32_t>(letters[0].size() * kBlock);
        const auto height = static_cast<int32_t>(letters.size() * kBlock);
        std::vector<RGBA16> pixels;
        for (int32_t y = 0; y < height; ++y) {
            for (int32_t x = 0; x < width; ++x) {
                pixels.push_back(color(
                    letters[static_cast<size_t>(y / kBlock)][static_cast<size_t>(x / kBlock)]));
            }
        }
        return OneLayer(width, height, 8, pixels);
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(int{c.orientation});
        Document sideways = draw(cases[0].upright);
        auto metadata = std::make_shared<FileMetadata>();
        metadata->exif = MetadataBytes(Exif(c.orientation));
        metadata->xResolution = 2;
        metadata->yResolution = 3;
        sideways.metadata = metadata;
        (void)SaveDocument(sideways, Path("o.png"), {.overwrite = true});
        const Document loaded = LoadDocument(Path("o.png"));
        const Document expected = draw(c.upright);
        EXPECT_EQ(loaded.width, expected.width);
        EXPECT_EQ(loaded.height, expected.height);
        EXPECT_TRUE(Flatten(loaded) == Flatten(expected));
        EXPECT_EQ(loaded.metadata->xResolution, c.orientation > 4 ? 3 : 2);
        const std::string exif(TextOf(loaded.metadata->exif));
        EXPECT_EQ(exif.substr(0, 22), Exif(1).substr(0, 22));
        EXPECT_EQ(exif.find("view"), std::string::npos) << "the preview is of another picture";
    }
}

TEST_F(Metadata, AProfileForAnotherKindOfPictureIsLeftOutAndTold) {
    const std::vector<RGBA16> gray(4096, RGBA16{0x7000, 0x7000, 0x7000, kFullScale});
    const std::vector<RGBA16> black(4096, RGBA16{0, 0, 0, kFullScale});
    const std::vector<RGBA16> red(4096, RGBA16{kFullScale, 0, 0, kFullScale});
    const struct {
        const char* space;
        const std::vector<RGBA16>& pixels;
        const char* name;
        bool kept;
        size_t notes;
    } cases[] = {{"RGB ", red, "a.png", true, 0},   {"RGB ", gray, "a.jpg", false, 1},
                 {"RGB ", gray, "a.webp", true, 0}, {"RGB ", black, "a.tif", false, 0},
                 {"GRAY", gray, "a.jpg", true, 0},  {"GRAY", red, "a.png", false, 1},
                 {"CMYK", red, "a.png", false, 0}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.space + " to "s + c.name);
        Document document = OneLayer(64, 64, 8, c.pixels);
        auto metadata = std::make_shared<FileMetadata>();
        metadata->profile = MetadataBytes(Profile(c.space));
        document.metadata = metadata;
        EXPECT_EQ(SaveDocument(document, Path(c.name), {.overwrite = true}).size(), c.notes);
        EXPECT_EQ(!LoadDocument(Path(c.name)).metadata->profile.empty(), c.kept);
    }
}

TEST_F(Metadata, DamagedBlocksAreLeftAlone) {
    const std::string whole = Exif(6);
    for (size_t size = 0; size <= whole.size(); ++size) {
        FileMetadata::Bytes exif = MetadataBytes(whole.substr(0, size));
        MakeExifUpright(exif);
        SetExifSize(exif, 1, 1);
        EXPECT_LE(ResolutionOfExif(exif).x, 300);
        EXPECT_LE(exif.size(), size);
    }
    const std::string resources = PhotoshopOfIptc(MetadataBytes("records"));
    EXPECT_EQ(TextOf(IptcOfPhotoshop("8BIM\x03\xED\0\0\0\0\0\1x\0"s + resources)), "records");
    for (size_t size = 0; size < resources.size(); ++size) {
        EXPECT_LE(IptcOfPhotoshop(resources.substr(0, size)).size(), 7U);
    }
    FileMetadata::Bytes xmp = MetadataBytes("<a tiff:Orientation=\"6\"><tiff:Orientation>8</a>");
    MakeXmpUpright(xmp);
    EXPECT_EQ(TextOf(xmp), "<a tiff:Orientation=\"1\"><tiff:Orientation>1</a>");
}

}  // namespace
}  // namespace imgbasic::host
