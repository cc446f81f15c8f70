#include "host/cli/format_options.h"

#include <CLI/CLI.hpp>

namespace imgbasic::host {
namespace {

struct CompressionWord {
    const char* word;
    TiffCompression compression;
};

constexpr CompressionWord kCompressions[] = {{"none", TiffCompression::None},
                                             {"lzw", TiffCompression::Lzw},
                                             {"deflate", TiffCompression::Deflate},
                                             {"group4", TiffCompression::Group4}};

/// A digit is PNG's, a word TIFF's.
void ParseCompression(const std::string& word, EncodeOptions& options) {
    if (word.size() == 1 && word[0] >= '0' && word[0] <= '9') {
        options.zlibLevel = word[0] - '0';
        return;
    }
    for (const CompressionWord& known : kCompressions) {
        if (word == known.word) {
            options.tiffCompression = known.compression;
            return;
        }
    }
    throw CLI::ValidationError("--compression", "'" + word +
                                                    "' is none of 0 to 9, none, lzw, deflate, "
                                                    "group4");
}

}  // namespace

void AddFormatOptions(CLI::App& app, SaveOptions& save, const char* group) {
    app.add_flag("--strip", save.strip,
                 "Leave out the metadata: colour profile, EXIF, XMP, IPTC,\nresolution, texts")
        ->group(group);
    app.add_flag_callback(
           "--plain", [&save] { save.encode.compact = false; },
           "Write RGB or RGBA also where gray, one bit a pixel or a\npalette would do")
        ->group(group);
    app.add_option("--quality", save.encode.quality,
                   "Of JPEG, 1 to 100 (95); makes WebP lossy, which is\nlossless without it")
        ->check(CLI::Range(1, 100).description(""))
        ->type_name("N")
        ->group(group);
    app.add_option_function<std::string>(
           "--compression",
           [&save](const std::string& word) { ParseCompression(word, save.encode); },
           "Of PNG 0 to 9 (3), of TIFF none, lzw, deflate (the default)\nor group4 (that of black "
           "and white)")
        ->type_name("WORD")
        ->group(group);
}

}  // namespace imgbasic::host
