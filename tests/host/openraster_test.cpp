#include "host/openraster.h"

#include <gmock/gmock.h>

#include "fuzz/checks.h"
#include "host/flatten.h"
#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class OpenRaster : public FileTest {
  protected:
    /// 16-bit, opaque.
    std::string LayerFile() const { return RowFile(16, {kLeft, kRight}); }

    static constexpr RGBA16 kLeft{1, 2, 3, kFullScale};
    static constexpr RGBA16 kRight{4, 5, 6, kFullScale};
};

TEST_F(OpenRaster, ADocumentComesBackBitForBit) {
    for (uint32_t seed = 0; seed < 40; ++seed) {
        EXPECT_TRUE(ComesBack(RandomDocuments(seed).AnyDocument(19, 14))) << seed;
    }
}

TEST_F(OpenRaster, ANameThatXmlCannotHoldIsMended) {
    Document document{4, 4, 8, {}};
    Layer layer;
    layer.name = "caf\xE9 \x01\u7A7A";
    layer.pixels.resize(16);
    document.items = {layer};
    (void)SaveDocument(document, Path("d.ora"), {});
    const Document read = LoadDocument(Path("d.ora"));
    EXPECT_EQ(std::get<Layer>(read.items[0]).name, "caf\uFFFD \uFFFD\u7A7A");
}

TEST_F(OpenRaster, OtherProgramsFindTheKindAndTheWholePicture) {
    RandomDocuments random(7);
    Document document = random.AnyDocument(300, 20);
    document.bitDepth = 16;
    (void)SaveDocument(document, Path("d.ora"), {});
    const std::string bytes = Bytes("d.ora");
    EXPECT_EQ(bytes.substr(30, 8 + 16), "mimetypeimage/openraster") << "stored, and first";
    WriteBytes("merged.png", ZipEntry("d.ora", "mergedimage.png"));
    EXPECT_TRUE(Flatten(LoadDocument(Path("merged.png"))) == Flatten(document));
    WriteBytes("thumbnail.png", ZipEntry("d.ora", "Thumbnails/thumbnail.png"));
    EXPECT_EQ(LoadDocument(Path("thumbnail.png")).width, 256);
    (void)SaveDocument(document, Path("d.ora"), {.overwrite = true});
    EXPECT_TRUE(Bytes("d.ora") == bytes) << "not the same from run to run";
}

TEST_F(OpenRaster, EveryWholePercentageComesBack) {
    Document document{1, 1, 8, {}};
    for (int percent = 0; percent <= 100; ++percent) {
        document.items.emplace_back(LayerOf({kLeft}, 1, 1));
        std::get<Layer>(document.items.back()).opacity = percent;
    }
    EXPECT_TRUE(ComesBack(document));
}

TEST_F(OpenRaster, PicturesHaveTheProfileOfSrgbAndNoMoreBitsThanTheyNeed) {
    const RGBA16 coarse{256, 512, 768, kFullScale};
    for (const int depth : {8, 16}) {
        Document document{2, 1, depth, {}};
        document.items = {LayerOf({coarse, coarse}, 2, 1), LayerOf({coarse, kLeft}, 2, 1)};
        (void)SaveDocument(document, Path("d.ora"), {.overwrite = true});
        for (const auto& [name, content] : ReadZip("d.ora")) {
            if (name.ends_with(".png")) {
                EXPECT_EQ(content.substr(37, 9), std::string("iCCPsRGB\0", 9)) << name;
                const bool isDeep = name == "data/layer1.png" ||
                                    (depth == 16 && name != "Thumbnails/thumbnail.png");
                EXPECT_EQ(content[24], isDeep ? 16 : 8) << name << " at " << depth;
            }
        }
        EXPECT_EQ(LoadDocument(Path("d.ora")).bitDepth, depth);
    }
}

TEST_F(OpenRaster, ReadsWhatOtherProgramsWrite) {
    WriteZip("o.ora",
             {{"stack.xml",
               "<image w='3' h='2'><stack>"
               "<layer name='multiplied' src='a.png' composite-op='svg:multiply' x='-1' y='1'/>"
               "<layer name='outside' src='a.png' x='2147483647' y='-2147483648'/>"
               "<stack name='one'><stack name='two' opacity='0.5' visibility='hidden' "
               "isolation='isolate'><layer src='a.png'/></stack></stack>"
               "</stack></image>"},
              {"a.png", LayerFile()}});
    const Document document = LoadDocument(Path("o.ora"));
    EXPECT_EQ(document.bitDepth, 16);
    ASSERT_EQ(document.items.size(), 3U);
    const auto& cropped = std::get<Layer>(document.items[0]);
    EXPECT_EQ(cropped.kind, CompositionKind::Multiply);
    EXPECT_THAT(cropped.pixels,
                ElementsAre(RGBA16{}, RGBA16{}, RGBA16{}, kRight, RGBA16{}, RGBA16{}));
    EXPECT_EQ(cropped.bounds, (PixelRect{0, 1, 1, 2}));
    EXPECT_TRUE(std::get<Layer>(document.items[1]).bounds.IsEmpty());
    const auto& one = std::get<Folder>(document.items[2]);
    EXPECT_FALSE(one.isolated);
    const auto& two = std::get<Folder>(one.items.at(0));
    EXPECT_TRUE(two.isolated && two.opacity == 50 && !two.visible && two.items.size() == 1);
}

TEST_F(OpenRaster, AnOutlineIsReadWithoutPixels) {
    WriteZip("o.ora", {{"stack.xml",
                        "<image w='9' h='9'><stack><stack><layer src='a' x='-1' y='7'/></stack>"
                        "</stack></image>"},
                       {"a", LayerFile().substr(0, 40)}});
    const Document outline = LoadDocument(Path("o.ora"), nullptr, Detail::Outline);
    const auto& folder = std::get<Folder>(outline.items.at(0));
    EXPECT_EQ(std::get<Layer>(folder.items.at(0)).bounds, (PixelRect{-1, 7, 1, 8}));
    EXPECT_EQ(outline.bitDepth, 16);
    EXPECT_THAT(LoadError("o.ora"), HasSubstr("damaged"));
}

TEST_F(OpenRaster, HostileFilesAreNamedWithTheirFault) {
    const std::string png = LayerFile();
    const auto image = [](const std::string& stack) {
        return "<image w='4' h='4'><stack>" + stack + "</stack></image>";
    };
    const std::string sky = image("<layer name='sky' src='a'/>");
    std::string deep = "<layer/>";
    for (int i = 0; i < 10000; ++i) {
        deep.insert(0, "<stack>").append("</stack>");
    }
    const std::string hugeSize("\x7F\0\0\0\x7F\0\0\0", 8);
    const struct {
        std::string stack;
        std::string layerFile;
        std::vector<const char*> fault;
    } cases[] = {
        {"<image", "", {"well-formed"}},
        {"<svg/>", "", {"no image"}},
        {"<image><stack/></image>", "", {"size (w)"}},
        {"<image w='4' h='0'><stack/></image>", "", {"size (h)"}},
        {"<image w='-4' h='4'><stack/></image>", "", {"size (w)"}},
        {"<image w='4294967297' h='4'><stack/></image>", "", {"number"}},
        {"<image w='2000000' h='2000000'><stack><layer/></stack></image>", "", {"29802.3 GiB"}},
        {"<image w='200000' h='200000'><stack><layer/><layer/></stack></image>", "", {"596.0 GiB"}},
        {image(deep), "", {"nested"}},
        {std::string(17 << 20, ' '), "", {"17 MiB"}},
        {image(""), "", {"has no layers"}},
        {sky,
         png.substr(0, 16) + hugeSize + png.substr(24),
         {"\"sky\"", "2130706432 x 2130706432"}},
        {sky, png + std::string(17 << 20, ' '), {"\"sky\"", "17 MiB", "2 x 1 pixels"}},
        {image("<layer name='sky' src='data/sky.png'/>"), "", {"\"sky\"", "\"data/sky.png\""}},
        {image("<layer name='sky'/>"), "", {"\"sky\""}},
        {sky, "<svg/>", {"\"sky\"", "damaged"}},
        {sky, png.substr(0, 50), {"\"sky\"", "damaged"}},
        {image("<layer name='sky' src='a' x='1e9'/>"), png, {"\"sky\"", "x=\"1e9\""}},
        {image("<layer name='sky' src='a' opacity='nan'/>"), png, {"opacity=\"nan\""}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.stack.substr(0, 80));
        WriteZip("bad.ora", {{"stack.xml", c.stack}, {"a", c.layerFile}});
        const std::string error = LoadError("bad.ora");
        EXPECT_THAT(error, AllOf(HasSubstr("bad.ora: "), Not(HasSubstr("\n"))));
        for (const char* fault : c.fault) {
            EXPECT_THAT(error, HasSubstr(fault));
        }
    }
    WriteZip("bad.ora", {{"other", ""}});
    EXPECT_THAT(LoadError("bad.ora"), HasSubstr("stack.xml"));
    WriteBytes("no.ora", "PK but no archive");
    EXPECT_THAT(LoadError("no.ora"), HasSubstr("archive"));
}

TEST_F(OpenRaster, ADamagedFileIsReadWholeOrNamedWithItsFault) {
    RandomDocuments random(8);
    (void)SaveDocument(random.AnyDocument(9, 9), Path("d.ora"), {});
    const std::string whole = Bytes("d.ora");
    int faults = 0;
    for (int i = 0; i < 100; ++i) {
        std::string damaged = whole;
        for (uint32_t k = random.Below(4) + 1; k > 0; --k) {
            damaged[random.Below(static_cast<uint32_t>(whole.size()))] =
                static_cast<char>(random.Below(256));
        }
        WriteBytes("d.ora", damaged);
        const std::string error = LoadError("d.ora");
        if (error != "loaded without an error") {
            EXPECT_THAT(error, AllOf(HasSubstr("d.ora: "), Not(HasSubstr("\n")))) << i;
            ++faults;
        }
    }
    EXPECT_GT(faults, 50) << "checksums see nearly every damage";
}

}  // namespace
}  // namespace imgbasic::host
