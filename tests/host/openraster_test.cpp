#include "host/openraster.h"

#include <gmock/gmock.h>
#include <zip.h>

#include "host/flatten.h"
#include "tests/host/test_files.h"

namespace imgbasic::host {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Names and contents of an archive's files.
using Entries = std::vector<std::pair<std::string, std::string>>;

class OpenRaster : public FileTest {
  protected:
    void WriteZip(const std::string& name, const Entries& entries) const {
        zip_t* const zip = zip_open(Path(name).c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
        ASSERT_NE(zip, nullptr);
        for (const auto& [entry, content] : entries) {
            zip_source_t* const source = zip_source_buffer(zip, content.data(), content.size(), 0);
            ASSERT_GE(zip_file_add(zip, entry.c_str(), source, ZIP_FL_ENC_UTF_8), 0);
        }
        ASSERT_EQ(zip_close(zip), 0);
    }

    std::string ZipEntry(const std::string& name, const std::string& entry) const {
        zip_t* const zip = zip_open(Path(name).c_str(), ZIP_RDONLY, nullptr);
        zip_stat_t stat;
        EXPECT_EQ(zip_stat(zip, entry.c_str(), 0, &stat), 0) << entry;
        std::string content(stat.size, '\0');
        zip_file_t* const file = zip_fopen(zip, entry.c_str(), 0);
        EXPECT_EQ(zip_fread(file, content.data(), stat.size), static_cast<int64_t>(stat.size));
        zip_fclose(file);
        zip_discard(zip);
        return content;
    }

    /// The bytes of a 16-bit PNG of 2 x 1 opaque pixels.
    std::string LayerFile() const {
        (void)SaveDocument(OneLayer(2, 1, 16, {kLeft, kRight}), Path("l.png"), {.overwrite = true});
        return Bytes("l.png");
    }

    static constexpr RGBA16 kLeft{1, 2, 3, kFullScale};
    static constexpr RGBA16 kRight{4, 5, 6, kFullScale};
};

/// The layers in order, a folder before its own as a layer without pixels.
std::vector<Layer> AllLayers(const Document& document) {
    std::vector<Layer> layers;
    for (const Item& item : document.items) {
        if (const auto* folder = std::get_if<Folder>(&item)) {
            layers.push_back({folder->name,
                              folder->opacity,
                              folder->kind,
                              folder->clip,
                              folder->visible,
                              {},
                              {}});
            layers.insert(layers.end(), folder->layers.begin(), folder->layers.end());
        } else {
            layers.push_back(std::get<Layer>(item));
        }
    }
    return layers;
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
        ASSERT_EQ(read.items.size(), written.items.size());
        const std::vector<Layer> layers = AllLayers(read);
        const std::vector<Layer> originals = AllLayers(written);
        ASSERT_EQ(layers.size(), originals.size());
        for (size_t i = 0; i < layers.size(); ++i) {
            EXPECT_TRUE(Contents(layers[i]) == Contents(originals[i])) << i;
            EXPECT_EQ(layers[i].kind, originals[i].kind);
            EXPECT_EQ(layers[i].bounds, originals[i].bounds);
        }
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

TEST_F(OpenRaster, ReadsWhatOtherProgramsWrite) {
    WriteZip("o.ora",
             {{"stack.xml",
               "<image w='3' h='2'><stack>"
               "<layer name='multiplied' src='a.png' composite-op='svg:multiply' x='-1' y='1'/>"
               "<layer name='outside' src='a.png' x='2147483647' y='-2147483648'/>"
               "<stack name='one'><stack name='two' opacity='0.5' visibility='hidden'>"
               "<layer src='a.png'/><stack><layer src='a.png' x='1'/></stack></stack></stack>"
               "</stack></image>"},
              {"a.png", LayerFile()}});
    std::vector<std::string> notes;
    const Document document = LoadDocument(Path("o.ora"), &notes);
    EXPECT_THAT(notes,
                ElementsAre(AllOf(HasSubstr("multiplied"), HasSubstr("svg:multiply")),
                            HasSubstr("\"\" lies inside"), HasSubstr("\"two\" lies inside")));
    EXPECT_EQ(document.bitDepth, 16);
    ASSERT_EQ(document.items.size(), 3U);
    const auto& cropped = std::get<Layer>(document.items[0]);
    EXPECT_THAT(cropped.pixels,
                ElementsAre(RGBA16{}, RGBA16{}, RGBA16{}, kRight, RGBA16{}, RGBA16{}));
    EXPECT_EQ(cropped.bounds, (PixelRect{0, 1, 1, 2}));
    EXPECT_TRUE(std::get<Layer>(document.items[1]).bounds.IsEmpty());
    const auto& folder = std::get<Folder>(document.items[2]);
    ASSERT_EQ(folder.layers.size(), 1U);
    EXPECT_EQ(folder.layers[0].opacity, 50U);
    EXPECT_FALSE(folder.layers[0].visible);
    EXPECT_THAT(folder.layers[0].pixels,
                ElementsAre(kLeft, kRight, kRight, RGBA16{}, RGBA16{}, RGBA16{}));
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
         {{"stack.xml", "<image w='2000000' h='2000000'><stack/></image>"}},
         {"29802.3 GiB"}},
        {"too many layers",
         {{"stack.xml", "<image w='200000' h='200000'><stack><layer/><layer/></stack></image>"}},
         {"2 layers", "596.0 GiB"}},
        {"too deep", {{"stack.xml", image(open + close)}}, {"nested"}},
        {"endless stack.xml", {{"stack.xml", std::string(17 << 20, ' ')}}, {"17 MiB"}},
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
