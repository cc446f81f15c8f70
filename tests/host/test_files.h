#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "host/document.h"
#include "host/file_metadata.h"
#include "host/image_file.h"
#include "host/openraster_archive.h"

namespace imgbasic::host {

inline Layer LayerOf(std::vector<RGBA16> pixels, int32_t width, int32_t height) {
    Layer layer;
    layer.bounds = BoundsOf(pixels, width, height);
    layer.pixels = std::move(pixels);
    return layer;
}

inline Document OneLayer(int32_t width, int32_t height, int bitDepth, std::vector<RGBA16> pixels) {
    Document document{width, height, bitDepth, {}};
    document.items.emplace_back(LayerOf(std::move(pixels), width, height));
    return document;
}

/// A folder of its own for every test, removed at the end.
class FileTest : public testing::Test {
  public:
    ~FileTest() override { std::filesystem::remove_all(folder_); }

  protected:
    FileTest() { std::filesystem::create_directories(folder_); }

    std::filesystem::path Path(const std::string& name) const { return folder_ / name; }

    std::string Bytes(const std::string& name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void WriteBytes(const std::string& name, const std::string& bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
    }

    /// Names and contents of an archive's files.
    using Entries = std::vector<std::pair<std::string, std::string>>;

    void WriteZip(const std::string& name, const Entries& entries) const {
        ZipWriter archive(name);
        for (const auto& [entry, content] : entries) {
            archive.Add(entry, MetadataBytes(content), ZIP_CM_DEFLATE);
        }
        WriteBytes(name, std::string(TextOf(archive.Finish())));
    }

    /// Sorted by name.
    Entries ReadZip(const std::string& name) const {
        Entries entries;
        const ZipReader archive(Path(name).string());
        for (const ZipReader::Entry& entry : archive.Entries()) {
            entries.emplace_back(entry.name, TextOf(archive.Content(entry, name)));
        }
        std::ranges::sort(entries);
        return entries;
    }

    std::string ZipEntry(const std::string& name, const std::string& entry) const {
        for (auto& [known, content] : ReadZip(name)) {
            if (known == entry) {
                return content;
            }
        }
        ADD_FAILURE() << name << " has no " << entry;
        return "";
    }

    /// The bytes of a PNG of one row.
    std::string RowFile(int bitDepth, const std::vector<RGBA16>& pixels) const {
        (void)SaveDocument(OneLayer(static_cast<int32_t>(pixels.size()), 1, bitDepth, pixels),
                           Path("row.png"), {.overwrite = true});
        return Bytes("row.png");
    }

    /// The message of the FileError that loading gives, or what it did instead.
    std::string LoadError(const std::string& name) const {
        try {
            (void)LoadDocument(Path(name));
        } catch (const FileError& error) {
            return error.what();
        }
        return "loaded without an error";
    }

    std::string SaveError(const Document& document, const std::string& name,
                          const SaveOptions& options = {}) const {
        try {
            (void)SaveDocument(document, Path(name), options);
        } catch (const FileError& error) {
            return error.what();
        }
        return "saved without an error";
    }

  private:
    std::filesystem::path folder_ = std::filesystem::temp_directory_path() /
                                    ("imgbasic_" + std::to_string(getpid()) + "_" +
                                     testing::UnitTest::GetInstance()->current_test_info()->name());
};

/// Random documents; the fully transparent and the opaque are as frequent as the rest.
class RandomDocuments {
  public:
    explicit RandomDocuments(uint32_t seed) : random_(seed) {}

    uint32_t Below(uint32_t limit) { return static_cast<uint32_t>(random_() % limit); }

    RGBA16 Pixel(int bitDepth) {
        const auto channel = [&] {
            return static_cast<uint16_t>(bitDepth == 8 ? Below(256) * 256 : Below(kFullScale + 1));
        };
        RGBA16 pixel{channel(), channel(), channel(), channel()};
        const uint16_t alphas[] = {0, kFullScale, pixel.a};
        pixel.a = alphas[Below(3)];
        return pixel;
    }

    std::vector<RGBA16> Pixels(size_t count, int bitDepth) {
        std::vector<RGBA16> pixels(count);
        std::ranges::generate(pixels, [&] { return Pixel(bitDepth); });
        return pixels;
    }

    Layer AnyLayer(int32_t width, int32_t height) {
        Layer layer = Attributes<Layer>();
        layer.pixels.resize(PixelCount(width, height));
        if (Below(4) != 0) {
            for (RGBA16& pixel : std::span(layer.pixels).subspan(Below(40))) {
                pixel = Pixel(16);
            }
        }
        layer.bounds = BoundsOf(layer.pixels, width, height);
        return layer;
    }

    Document AnyDocument(int32_t width, int32_t height) {
        Document document{width, height, Below(2) == 0 ? 8 : 16, {}};
        document.items = AnyItems(width, height, Below(5) + 1, 2);
        return document;
    }

  private:
    std::vector<Item> AnyItems(int32_t width, int32_t height, uint32_t count, int levels) {
        std::vector<Item> items;
        for (; count > 0; --count) {
            if (levels == 0 || Below(3) != 0 || (levels == 2 && count == 1)) {
                items.emplace_back(AnyLayer(width, height));
                continue;
            }
            Folder folder = Attributes<Folder>();
            folder.items = AnyItems(width, height, Below(4), levels - 1);
            items.emplace_back(std::move(folder));
        }
        return items;
    }

    template <typename LayerOrFolder>
    LayerOrFolder Attributes() {
        const char* const names[] = {"", "plain", "空 & <雲> \"quoted\" 'x'", "a\tb"};
        LayerOrFolder member;
        member.name = names[Below(4)];
        member.opacity = Below(2) == 0 ? 100 : Below(101);
        member.kind = Below(3) == 0 ? CompositionKind::Additive : CompositionKind::Normal;
        member.clip = Below(3) == 0;
        member.visible = Below(5) != 0;
        return member;
    }

    std::mt19937 random_;
};

/// What tells two layers apart but for their kind, for a comparison.
inline auto Contents(const Layer& layer) {
    return std::tie(layer.name, layer.opacity, layer.clip, layer.visible, layer.pixels);
}

}  // namespace imgbasic::host
