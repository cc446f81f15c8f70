#include "host/webp_write.h"

#include <webp/encode.h>
#include <webp/mux.h>

#include <memory>

#include "host/image_file.h"

namespace imgbasic::host {
namespace {

class WebPError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// An encoded file; frees itself.
struct WebPFile : WebPMemoryWriter {
    WebPFile() { WebPMemoryWriterInit(this); }
    ~WebPFile() { WebPMemoryWriterClear(this); }
    WebPFile(const WebPFile&) = delete;
    WebPFile& operator=(const WebPFile&) = delete;
};

void Import(const Picture& picture, const SampleLayout& layout, WebPPicture& target) {
    const SampleRows rows(picture, layout);
    const size_t stride = rows.RowSize();
    std::vector<std::byte> samples(stride * static_cast<size_t>(picture.height));
    for (int32_t y = 0; y < picture.height; ++y) {
        rows.Fill(y, samples.data() + static_cast<size_t>(y) * stride);
    }
    const auto import = layout.bands == 4 ? WebPPictureImportRGBA : WebPPictureImportRGB;
    if (import(&target, reinterpret_cast<const uint8_t*>(samples.data()),
               static_cast<int>(stride)) == 0) {
        throw WebPError("not enough memory");
    }
}

void EncodePixels(const Picture& picture, const SampleLayout& layout, std::optional<int> quality,
                  WebPFile& file) {
    WebPConfig config;
    WebPPicture target;
    constexpr int kEffort = 4;
    if (WebPConfigInit(&config) == 0 || WebPPictureInit(&target) == 0 ||
        (!quality && WebPConfigLosslessPreset(&config, kEffort) == 0)) {
        throw WebPError("the WebP library has another version");
    }
    if (picture.width > WEBP_MAX_DIMENSION || picture.height > WEBP_MAX_DIMENSION) {
        throw WebPError("no side may exceed " + std::to_string(WEBP_MAX_DIMENSION) + " pixels");
    }
    const std::unique_ptr<WebPPicture, decltype(&WebPPictureFree)> owned(&target, WebPPictureFree);
    if (quality) {
        config.quality = static_cast<float>(*quality);
    }
    config.exact = 1;
    target.use_argb = 1;
    target.width = picture.width;
    target.height = picture.height;
    target.writer = WebPMemoryWrite;
    target.custom_ptr = &file;
    Import(picture, layout, target);
    if (WebPEncode(&config, &target) == 0) {
        throw WebPError("error " + std::to_string(target.error_code) + " of the WebP library");
    }
}

/// The file with the metadata that its format has places for.
std::vector<std::byte> WithMetadata(const WebPFile& file, const FileMetadata& metadata) {
    const WebPData encoded{file.mem, file.size};
    const std::unique_ptr<WebPMux, decltype(&WebPMuxDelete)> mux(WebPMuxCreate(&encoded, 0),
                                                                 WebPMuxDelete);
    const auto add = [&](const char* chunk, const FileMetadata::Bytes& bytes) {
        const WebPData data{reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()};
        return bytes.empty() || WebPMuxSetChunk(mux.get(), chunk, &data, 0) == WEBP_MUX_OK;
    };
    WebPData whole{};
    if (mux == nullptr || !add("ICCP", metadata.profile) || !add("EXIF", metadata.exif) ||
        !add("XMP ", metadata.xmp) || WebPMuxAssemble(mux.get(), &whole) != WEBP_MUX_OK) {
        throw WebPError("its metadata does not fit");
    }
    const std::unique_ptr<WebPData, decltype(&WebPDataClear)> owned(&whole, WebPDataClear);
    const auto bytes = std::as_bytes(std::span(whole.bytes, whole.size));
    return {bytes.begin(), bytes.end()};
}

}  // namespace

std::vector<std::byte> EncodeWebP(const Picture& picture, const SampleLayout& layout,
                                  const FileMetadata& metadata, std::optional<int> quality,
                                  const std::string& name) {
    try {
        WebPFile file;
        EncodePixels(picture, layout, quality, file);
        return WithMetadata(file, metadata);
    } catch (const WebPError& error) {
        throw FileError(name + ": cannot be encoded as WebP (" + error.what() +
                        "); save it as PNG instead");
    }
}

}  // namespace imgbasic::host
