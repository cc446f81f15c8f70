#include "host/openraster.h"

#include <gmock/gmock.h>

#include "host/flatten.h"
#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class OpenRaster : public FileTest {
  protected:
    /// 16-bit, opaque.
    std::string LayerFile() const { return RowFile(16, {kLeft, kRight}); }

    static constexpr RGBA16 kLeft{1, 2, 3, kFullScale};
    static constexpr RGBA16 kRight{4, 5, 6, kFullScale};
};

auto AttributesOf(const LayerAttributes& member) {
    return std::tie(member.name, member.opacity, member.kind, member.clip, member.visible);
}

void ExpectSame(const std::vector<Item>& read, const std::vector<Item>& written) {
    ASSERT_EQ(read.size(), written.size());
    for (size_t i = 0; i < read.size(); ++i) {
        ASSERT_EQ(read[i].index(), written[i].index());
        if (const auto* folder = std::get_if<Folder>(&read[i])) {
            const auto& original = std::get<Folder>(written[i]);
            EXPECT_EQ(AttributesOf(*folder), AttributesOf(original));
            EXPECT_EQ(folder->isolated, original.isolated);
            ExpectSame(folder->items, original.items);
            continue;
        }
        const auto& layer = std::get<Layer>(read[i]);
        const auto& original = std::get<Layer>(written[i]);
        EXPECT_EQ(AttributesOf(layer), AttributesOf(original));
        EXPECT_EQ(layer.bounds, original.bounds);
        EXPECT_TRUE(layer.pixels == original.pixels);
    }
}

TEST_F(OpenRaster, ADocumentComesBackBitForBit) {
    for (uint32_t seed = 0; seed < 40; ++seed) {
        SCOPED_TRACE(seed);
        RandomDocuments random(seed);
        const Document written = random.AnyDocument(19, 14);
        EXPECT_THAT(SaveDocument(written, Path("d.ora"), {.overwrite = true}), IsEmpty());
        std::vector<std::string> notes;
        const Document read = LoadDocument(Path("d.ora"), &notes);
        EXPECT_THAT(notes, IsEmpty());
        EXPECT_EQ(read.width, 19);
        EXPECT_EQ(read.height, 14);
        EXPECT_EQ(read.bitDepth, written.bitDepth);
        ExpectSame(read.items, written.items);
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
    (void)SaveDocument(document, Path("d.ora"), {});
    ExpectSame(LoadDocument(Path("d.ora")).items, document.items);
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
    const std::string layerFile = LayerFile();
    const auto image = [](const std::string& stack) {
        return "<image w='4' h='4'><stack>" + stack + "</stack></image>";
    };
    std::string open;
    std::string close;
    for (int i = 0; i < 10000; ++i) {
        open += "<stack>";
        close += "</stack>";
    }
    struct Case {
        const char* what;
        Entries entries;
        std::vector<const char*> fault;
    };
    const Case cases[] = {
        {"no stack.xml", {{"other", ""}}, {"stack.xml"}},
        {"not XML", {{"stack.xml", "<image"}}, {"well-formed"}},
        {"no image", {{"stack.xml", "<svg/>"}}, {"no image"}},
        {"no size", {{"stack.xml", "<image><stack/></image>"}}, {"size (w)"}},
        {"zero", {{"stack.xml", "<image w='4' h='0'><stack/></image>"}}, {"size (h)"}},
        {"negative", {{"stack.xml", "<image w='-4' h='4'><stack/></image>"}}, {"size (w)"}},
        {"beyond int", {{"stack.xml", "<image w='4294967297' h='4'><stack/></image>"}}, {"number"}},
        {"too large",
         {{"stack.xml", "<image w='2000000' h='2000000'><stack><layer/></stack></image>"}},
         {"29802.3 GiB"}},
        {"too many layers",
         {{"stack.xml", "<image w='200000' h='200000'><stack><layer/><layer/></stack></image>"}},
         {"596.0 GiB"}},
        {"too deep", {{"stack.xml", image(open + "<layer/>" + close)}}, {"nested"}},
        {"endless stack.xml", {{"stack.xml", std::string(17 << 20, ' ')}}, {"17 MiB"}},
        {"no layers", {{"stack.xml", image("<stack/>")}}, {"has no layers"}},
        {"huge layer",
         {{"stack.xml", image("<layer name='sky' src='a'/>")},
          {"a", layerFile.substr(0, 16) + std::string("\x7F\0\0\0\x7F\0\0\0", 8) +
                    layerFile.substr(24)}},
         {"\"sky\"", "2130706432 x 2130706432"}},
        {"file larger than its picture",
         {{"stack.xml", image("<layer name='sky' src='a'/>")},
          {"a", layerFile + std::string(17 << 20, ' ')}},
         {"\"sky\"", "17 MiB", "2 x 1 pixels"}},
        {"no layer file",
         {{"stack.xml", image("<layer name='sky' src='data/sky.png'/>")}},
         {"\"sky\"", "\"data/sky.png\""}},
        {"no src", {{"stack.xml", image("<layer name='sky'/>")}}, {"\"sky\""}},
        {"layer no PNG",
         {{"stack.xml", image("<layer name='sky' src='a'/>")}, {"a", "<svg/>"}},
         {"\"sky\"", "damaged"}},
        {"layer cut off",
         {{"stack.xml", image("<layer name='sky' src='a'/>")}, {"a", layerFile.substr(0, 50)}},
         {"\"sky\"", "damaged"}},
        {"bad x",
         {{"stack.xml", image("<layer name='sky' src='a' x='1e9'/>")}, {"a", layerFile}},
         {"\"sky\"", "x=\"1e9\""}},
        {"bad opacity",
         {{"stack.xml", image("<layer name='sky' src='a' opacity='nan'/>")}, {"a", layerFile}},
         {"opacity=\"nan\""}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        WriteZip("bad.ora", c.entries);
        const std::string error = LoadError("bad.ora");
        EXPECT_THAT(error, AllOf(HasSubstr("bad.ora: "), Not(HasSubstr("\n"))));
        for (const char* fault : c.fault) {
            EXPECT_THAT(error, HasSubstr(fault));
        }
    }
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
