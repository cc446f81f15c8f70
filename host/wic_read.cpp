#include <algorithm>
#include <array>
#include <string_view>

#include "host/exif.h"
#include "host/image_file.h"
#include "host/memory_limit.h"
#include "host/raster_file.h"
#include "host/sample_pixels.h"
#include "host/text_encoding.h"
#include "host/upright_pixels.h"
#include "host/wic_library.h"

namespace imgbasic::host {
namespace {

constexpr double kMillimetresPerInch = 25.4;

/// What the component gives as the resolution of a file that tells none, dots an inch.
constexpr double kNoResolution = 96;

struct OpenedFile {
    ComPtr<IWICImagingFactory> factory{};
    ComPtr<IWICBitmapFrameDecode> frame{};
    RasterHeader header{};
    int orientation = 1;  ///< as EXIF counts
    int bands = 4;        ///< of samples of 16 bits; others are converted to four of 8
};

[[noreturn]] void FailAsUnknown(const std::string& name) {
    throw FileError(name +
                    ": is no image that can be read; convert it to PNG, JPEG, BMP, TIFF or "
                    "OpenRaster first");
}

ComPtr<IWICStream> StreamOf(IWICImagingFactory& factory, const RasterInput& input) {
    ComPtr<IWICStream> stream;
    Check(factory.CreateStream(stream.GetAddressOf()));
    if (input.path.empty()) {
        // It is only read from.
        auto* const bytes = reinterpret_cast<BYTE*>(const_cast<std::byte*>(input.bytes.data()));
        Check(stream->InitializeFromMemory(bytes, static_cast<DWORD>(input.bytes.size())));
    } else {
        Check(stream->InitializeFromFilename(PathFrom(input.path).c_str(), GENERIC_READ));
    }
    return stream;
}

/// The number of bands of a format with 16 bits a channel that is taken as it is; 0 for others.
int DeepBands(const GUID& format) {
    return IsEqualGUID(format, GUID_WICPixelFormat16bppGray)   ? 1
           : IsEqualGUID(format, GUID_WICPixelFormat48bppRGB)  ? 3
           : IsEqualGUID(format, GUID_WICPixelFormat64bppRGBA) ? 4
                                                               : 0;
}

/// The EXIF block of a JPEG; empty where there is none.
FileMetadata::Bytes ExifOf(IStream& stream) {
    constexpr std::string_view kName("Exif\0\0", 6);
    constexpr unsigned kApp1 = 0xE1;
    constexpr unsigned kScan = 0xDA;
    for (int64_t at = 2;;) {
        std::array<BYTE, 4> head{};
        ULONG read = 0;
        LARGE_INTEGER place{};
        place.QuadPart = at;
        if (FAILED(stream.Seek(place, STREAM_SEEK_SET, nullptr)) ||
            FAILED(stream.Read(head.data(), head.size(), &read)) || read < head.size() ||
            head[0] != 0xFF || head[1] == kScan) {
            return {};
        }
        const auto size = static_cast<ULONG>(head[2] << 8 | head[3]);
        if (head[1] == kApp1 && size > kName.size() + 2) {
            FileMetadata::Bytes block(size - 2);
            if (SUCCEEDED(stream.Read(block.data(), size - 2, &read)) && read == size - 2 &&
                TextOf(block).starts_with(kName)) {
                block.erase(block.begin(), block.begin() + kName.size());
                return block;
            }
        }
        at += 2 + std::max<int64_t>(size, 2);
    }
}

/// What a TIFF tells, as EXIF counts; 1 where it tells none.
int OrientationOf(IWICBitmapFrameDecode& frame) {
    ComPtr<IWICMetadataQueryReader> reader;
    PROPVARIANT value;
    PropVariantInit(&value);
    if (FAILED(frame.GetMetadataQueryReader(reader.GetAddressOf())) ||
        FAILED(reader->GetMetadataByName(L"/ifd/{ushort=274}", &value))) {
        return 1;
    }
    const int orientation = value.vt == VT_UI2 ? value.uiVal : 1;
    PropVariantClear(&value);
    return orientation;
}

FileMetadata::Bytes ProfileOf(IWICImagingFactory& factory, IWICBitmapFrameDecode& frame) {
    UINT count = 0;
    ComPtr<IWICColorContext> context;
    WICColorContextType type = WICColorContextUninitialized;
    UINT size = 0;
    IWICColorContext* first = nullptr;
    if (FAILED(frame.GetColorContexts(0, nullptr, &count)) || count == 0 ||
        FAILED(factory.CreateColorContext(context.GetAddressOf())) ||
        FAILED(frame.GetColorContexts(1, &(first = context.Get()), &count)) ||
        FAILED(context->GetType(&type)) || type != WICColorContextProfile ||
        FAILED(context->GetProfileBytes(0, nullptr, &size))) {
        return {};
    }
    FileMetadata::Bytes profile(size);
    const HRESULT read =
        context->GetProfileBytes(size, reinterpret_cast<BYTE*>(profile.data()), &size);
    return SUCCEEDED(read) ? profile : FileMetadata::Bytes();
}

std::shared_ptr<FileMetadata> MetadataOf(const OpenedFile& file) {
    auto metadata = std::make_shared<FileMetadata>();
    metadata->profile = ProfileOf(*file.factory.Get(), *file.frame.Get());
    double x = 0;
    double y = 0;
    if (SUCCEEDED(file.frame->GetResolution(&x, &y)) && (x != kNoResolution || y != x)) {
        metadata->xResolution = x / kMillimetresPerInch;
        metadata->yResolution = y / kMillimetresPerInch;
    }
    metadata->width = file.header.width;
    metadata->height = file.header.height;
    return metadata;
}

OpenedFile Open(const RasterInput& input, const GUID* wantedFormat,
                std::vector<std::string>& notes) {
    OpenedFile file{.factory = ImagingFactory()};
    const ComPtr<IWICStream> stream = StreamOf(*file.factory.Get(), input);
    ComPtr<IWICBitmapDecoder> decoder;
    GUID container{};
    if (FAILED(file.factory->CreateDecoderFromStream(
            stream.Get(), nullptr, WICDecodeMetadataCacheOnDemand, decoder.GetAddressOf())) ||
        FAILED(decoder->GetContainerFormat(&container)) ||
        (wantedFormat != nullptr && !IsEqualGUID(container, *wantedFormat))) {
        FailAsUnknown(input.name);
    }
    UINT frames = 0;
    Check(decoder->GetFrameCount(&frames));
    if (frames > 1) {
        notes.push_back(input.name + ": has " + std::to_string(frames) +
                        " pages; the first one is used");
    }
    Check(decoder->GetFrame(0, file.frame.GetAddressOf()));
    UINT width = 0;
    UINT height = 0;
    GUID format{};
    Check(file.frame->GetSize(&width, &height));
    Check(file.frame->GetPixelFormat(&format));
    FileMetadata::Bytes exif;
    if (IsEqualGUID(container, GUID_ContainerFormatJpeg)) {
        exif = ExifOf(*stream.Get());
        file.orientation = OrientationOfExif(exif);
        MakeExifUpright(exif);
    } else {
        file.orientation = OrientationOf(*file.frame.Get());
    }
    const int deepBands = DeepBands(format);
    file.bands = deepBands != 0 ? deepBands : 4;
    file.header = {.width = static_cast<int32_t>(width),
                   .height = static_cast<int32_t>(height),
                   .bitDepth = deepBands != 0 ? 16 : 8};
    if (file.orientation > 4) {
        std::swap(file.header.width, file.header.height);
    }
    const std::shared_ptr<FileMetadata> metadata = MetadataOf(file);
    metadata->exif = std::move(exif);
    file.header.metadata = metadata;
    return file;
}

/// The frame with samples as they are taken: of 16 bits, or blue, green, red and alpha of 8.
ComPtr<IWICBitmapSource> SamplesOf(const OpenedFile& file) {
    ComPtr<IWICBitmapSource> source;
    if (file.header.bitDepth == 16) {
        Check(file.frame.As(&source));
    } else {
        Check(WICConvertBitmapSource(GUID_WICPixelFormat32bppBGRA, file.frame.Get(),
                                     source.GetAddressOf()));
    }
    return source;
}

std::vector<RGBA16> PixelsOf(const OpenedFile& file) {
    constexpr UINT kStrip = 16;
    const ComPtr<IWICBitmapSource> source = SamplesOf(file);
    const bool deep = file.header.bitDepth == 16;
    UINT width = 0;
    UINT height = 0;
    Check(source->GetSize(&width, &height));
    const UINT stride = width * static_cast<UINT>(file.bands) * (deep ? 2U : 1U);
    std::vector<BYTE> samples(size_t{stride} * kStrip);
    std::vector<RGBA16> pixels;
    UprightPixels<RGBA16> upright(static_cast<int32_t>(width), static_cast<int32_t>(height),
                                  file.orientation);
    for (UINT top = 0; top < height; top += kStrip) {
        const UINT rows = std::min(kStrip, height - top);
        const WICRect area{0, static_cast<INT>(top), static_cast<INT>(width),
                           static_cast<INT>(rows)};
        Check(source->CopyPixels(&area, stride, stride * rows, samples.data()));
        pixels.resize(size_t{width} * rows);
        if (deep) {
            ConvertSamples(reinterpret_cast<const uint16_t*>(samples.data()), file.bands,
                           std::span(pixels));
        } else {
            ConvertSamples(samples.data(), file.bands, std::span(pixels));
            for (RGBA16& pixel : pixels) {
                std::swap(pixel.r, pixel.b);
            }
        }
        upright.Add(pixels);
    }
    return upright.Take();
}

Picture Decode(const RasterInput& input, const GUID* wantedFormat,
               std::vector<std::string>& notes) {
    const OpenedFile file = Open(input, wantedFormat, notes);
    const RasterHeader& header = file.header;
    // Once for the file and once for what becomes of it.
    RequireMemory(input.name, header.width, header.height,
                  2 * PictureBytes(header.width, header.height));
    Picture picture{header.width, header.height, header.bitDepth, PixelsOf(file)};
    auto metadata = std::make_shared<FileMetadata>(*header.metadata);
    if (picture.bitDepth == 16) {
        metadata->lowerSamples = TakeLowerSamples(picture.pixels);
    }
    picture.metadata = std::move(metadata);
    return picture;
}

/// Does `work`, which reads a file by the component.
template <typename Work>
auto Reading(const std::string& name, Work work) {
    try {
        return work();
    } catch (const ComError& error) {
        throw FileError(name + ": is damaged, incomplete or of a kind that is not supported (" +
                        error.what() + "); get another copy of it or convert it to PNG");
    }
}

const GUID& ContainerOf(RasterFormat format) {
    switch (format) {
        case RasterFormat::Jpeg:
            return GUID_ContainerFormatJpeg;
        case RasterFormat::Tiff:
            return GUID_ContainerFormatTiff;
        case RasterFormat::WebP:
            return GUID_ContainerFormatWebp;
        case RasterFormat::Png:
            break;
    }
    return GUID_ContainerFormatPng;
}

}  // namespace

Picture ReadRaster(const RasterInput& input, std::vector<std::string>& notes) {
    return Reading(input.name, [&] { return Decode(input, nullptr, notes); });
}

Picture DecodeRaster(std::span<const std::byte> bytes, RasterFormat format, const std::string& name,
                     std::vector<std::string>& notes) {
    const RasterInput input{.name = name, .bytes = bytes};
    return Reading(name, [&] { return Decode(input, &ContainerOf(format), notes); });
}

RasterHeader ReadRasterHeader(const RasterInput& input, std::vector<std::string>& notes) {
    return Reading(input.name, [&] { return Open(input, nullptr, notes).header; });
}

}  // namespace imgbasic::host
