#include "host/png_write.h"

#include <png.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <csetjmp>

#include "host/image_file.h"

namespace imgbasic::host {
namespace {

constexpr const char* kXmpKeyword = "XML:com.adobe.xmp";

/// libpng's longest keyword of a text.
constexpr size_t kLongestKeyword = 79;

/// Everything that the encoding needs, so that libpng's jump out of an error passes no object that
/// would have to be destroyed.
struct PngJob {
    const Picture& picture;
    const SampleLayout& layout;
    const SampleRows rows;
    const FileMetadata& metadata;
    int zlibLevel;
    std::vector<png_color> colors{};
    std::vector<png_byte> alphas{};
    std::vector<png_text> texts{};
    std::vector<std::byte> row{};
    std::vector<std::byte> file{};
    std::string fault{};
};

int ColorTypeOf(const SampleLayout& layout) {
    if (!layout.palette.empty()) {
        return PNG_COLOR_TYPE_PALETTE;
    }
    constexpr int kTypes[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                              PNG_COLOR_TYPE_RGBA};
    return kTypes[layout.bands - 1];
}

/// libpng takes no const text; it does not write to it, but reads on to the terminator.
png_text TextFor(const std::string& keyword, const std::string& text) {
    const bool ascii =
        std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 128; });
    const bool isXmp = keyword == kXmpKeyword;
    png_text entry{};
    entry.compression = isXmp || !ascii ? PNG_ITXT_COMPRESSION_NONE : PNG_TEXT_COMPRESSION_NONE;
    entry.key = const_cast<char*>(keyword.c_str());
    entry.text = const_cast<char*>(text.c_str());
    (entry.compression == PNG_ITXT_COMPRESSION_NONE ? entry.itxt_length : entry.text_length) =
        text.size();
    return entry;
}

/// The texts are borrowed; `xmp` is that of the metadata.
void CollectTexts(PngJob& job, const std::string& xmpKeyword, const std::string& xmp) {
    const FileMetadata& metadata = job.metadata;
    for (const TextEntry& entry : metadata.texts) {
        if (!entry.keyword.empty() && entry.keyword.size() <= kLongestKeyword) {
            job.texts.push_back(TextFor(entry.keyword, entry.text));
        }
    }
    if (!xmp.empty()) {
        job.texts.push_back(TextFor(xmpKeyword, xmp));
    }
}

void WriteMetadata(png_structp png, png_infop info, const PngJob& job) {
    const FileMetadata& metadata = job.metadata;
    if (!metadata.profile.empty()) {
        png_set_iCCP(png, info, "ICC profile", PNG_COMPRESSION_TYPE_BASE,
                     reinterpret_cast<png_const_bytep>(metadata.profile.data()),
                     static_cast<png_uint_32>(metadata.profile.size()));
    }
    if (!metadata.exif.empty()) {
        png_set_eXIf_1(png, info, static_cast<png_uint_32>(metadata.exif.size()),
                       reinterpret_cast<png_bytep>(const_cast<std::byte*>(metadata.exif.data())));
    }
    if (metadata.xResolution > 0 && metadata.yResolution > 0) {
        const auto perMetre = [](double perMillimetre) {
            return static_cast<png_uint_32>(std::clamp(std::round(perMillimetre * 1000), 1.0, 1e9));
        };
        png_set_pHYs(png, info, perMetre(metadata.xResolution), perMetre(metadata.yResolution),
                     PNG_RESOLUTION_METER);
    }
    if (!job.texts.empty()) {
        png_set_text(png, info, job.texts.data(), static_cast<int>(job.texts.size()));
    }
}

void WriteHeader(png_structp png, png_infop info, PngJob& job) {
    // What is wrong with a profile or a text is no reason to write no picture.
    png_set_benign_errors(png, 1);
    // The limits are meant for what is read.
    png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(png, info, static_cast<png_uint_32>(job.picture.width),
                 static_cast<png_uint_32>(job.picture.height), job.layout.depth,
                 ColorTypeOf(job.layout), PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (!job.colors.empty()) {
        png_set_PLTE(png, info, job.colors.data(), static_cast<int>(job.colors.size()));
    }
    if (!job.alphas.empty()) {
        png_set_tRNS(png, info, job.alphas.data(), static_cast<int>(job.alphas.size()), nullptr);
    }
    WriteMetadata(png, info, job);
    png_set_compression_level(png, job.zlibLevel);
    const bool isIndexed = !job.layout.palette.empty() || job.layout.depth < 8;
    png_set_filter(png, PNG_FILTER_TYPE_BASE, isIndexed ? PNG_FILTER_NONE : PNG_FILTER_SUB);
    png_write_info(png, info);
    if (job.layout.depth < 8) {
        png_set_packing(png);
    } else if (job.layout.depth == 16 && std::endian::native == std::endian::little) {
        png_set_swap(png);
    }
}

/// False after a fault, which the job then tells.
bool Write(png_structp png, png_infop info, PngJob& job) {
    // Holds nothing that a jump from below would have to destroy.
    if (setjmp(png_jmpbuf(png)) != 0) {
        return false;
    }
    WriteHeader(png, info, job);
    for (int32_t y = 0; y < job.picture.height; ++y) {
        job.rows.Fill(y, job.row.data());
        png_write_row(png, reinterpret_cast<png_const_bytep>(job.row.data()));
    }
    png_write_end(png, nullptr);
    return true;
}

void Fail(png_structp png, png_const_charp fault) {
    static_cast<PngJob*>(png_get_error_ptr(png))->fault = fault;
    png_longjmp(png, 1);
}

void Append(png_structp png, png_bytep bytes, size_t size) {
    auto& file = static_cast<PngJob*>(png_get_io_ptr(png))->file;
    const auto part = std::as_bytes(std::span(bytes, size));
    file.insert(file.end(), part.begin(), part.end());
}

}  // namespace

std::vector<std::byte> EncodePng(const Picture& picture, const SampleLayout& layout,
                                 const FileMetadata& metadata, int zlibLevel,
                                 const std::string& name) {
    PngJob job{picture, layout, SampleRows(picture, layout), metadata, zlibLevel};
    for (const auto& [a, r, g, b] : layout.palette) {
        job.colors.push_back({r, g, b});
        if (a < 255) {
            job.alphas.push_back(a);
        }
    }
    const std::string xmpKeyword = kXmpKeyword;
    const std::string xmp(TextOf(metadata.xmp));
    CollectTexts(job, xmpKeyword, xmp);
    job.row.resize(job.rows.RowSize());
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &job, Fail,
                                              [](png_structp, png_const_charp) {});
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    bool done = false;
    if (info != nullptr) {
        png_set_write_fn(png, &job, Append, [](png_structp) {});
        done = Write(png, info, job);
    }
    png_destroy_write_struct(&png, &info);
    if (!done) {
        throw FileError(name + ": cannot be encoded as PNG (" + job.fault +
                        "); save it as TIFF instead");
    }
    return std::move(job.file);
}

}  // namespace imgbasic::host
