#include "host/cli/file_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace imgbasic::host {
namespace {

constexpr const char* kFileGroup = "Files";

std::string JoinedFormats() {
    std::string formats;
    for (const std::string& format : OutputFormats()) {
        formats.append(formats.empty() ? "" : ", ").append(format);
    }
    return formats;
}

std::string KnownFormat(const std::string& word) {
    const std::vector<std::string> known = OutputFormats();
    if (std::ranges::find(known, word) == known.end()) {
        throw CLI::ValidationError("--format", "'" + word + "' is none of " + JoinedFormats());
    }
    return word;
}

struct CompressionWord {
    const char* word;
    TiffCompression compression;
};

/// Of PNG.
constexpr int kHighestLevel = 9;

constexpr CompressionWord kCompressions[] = {{"none", TiffCompression::None},
                                             {"lzw", TiffCompression::Lzw},
                                             {"deflate", TiffCompression::Deflate},
                                             {"group4", TiffCompression::Group4}};

constexpr int kDepths[] = {8, 16};

/// A digit is PNG's, a word TIFF's.
void ParseCompression(const std::string& word, EncodeOptions& options) {
    if (word.size() == 1 && word[0] >= '0' && word[0] <= '0' + kHighestLevel) {
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

void AddInputs(CLI::App& app, FileOptions& files) {
    app.add_option("IN", files.inputs,
                   "Images: PNG, JPEG, WebP, TIFF, OpenRaster, GIF, BMP and others;\n"
                   "- is the standard input")
        ->required()
        ->type_name("");
}

void AddOutput(CLI::App& app, FileOptions& files) {
    app.add_option("-o,--output", files.output,
                   "File to write, its ending chooses the format, or a folder\n"
                   "(DIR/) that gets every result under its input's name and\nis made when it is "
                   "not there, or - "
                   "for the standard output")
        ->required()
        ->type_name("OUT")
        ->group(kFileGroup);
    app.add_option_function<std::string>(
           "--format", [&files](const std::string& word) { files.format = KnownFormat(word); },
           "Format and ending of what goes into a folder or to the\n"
           "standard output, instead of the input's:\n" +
               JoinedFormats())
        ->type_name("ENDING")
        ->group(kFileGroup);
    app.add_option("--depth", files.save.bitDepth,
                   "Bits a channel, 8 or 16, instead of the input's")
        ->check(CLI::IsMember(std::vector(std::begin(kDepths), std::end(kDepths))).description(""))
        ->type_name("BITS")
        ->group(kFileGroup);
}

/// What files without layers can be asked for.
void AddEncoding(CLI::App& app, SaveOptions& save) {
    app.add_flag("--strip", save.strip,
                 "Leave out the metadata: colour profile, EXIF, XMP, IPTC,\nresolution, texts")
        ->group(kFileGroup);
    auto* plain = app.add_flag_callback(
        "--plain", [&save] { save.encode.compact = false; },
        "Write RGB or RGBA also where gray, one bit a pixel or a\npalette would do");
    plain->group(kFileGroup);
    app.add_flag("--indexed", save.encode.indexed,
                 "Write a PNG with a palette, 8 bits a channel, or fail\nwhere there are more than "
                 "256 colours")
        ->group(kFileGroup)
        ->excludes(plain);
    app.add_option("--quality", save.encode.quality,
                   "Of JPEG, 1 to 100 (95); makes WebP lossy, which is\nlossless without it")
        ->check(CLI::Range(1, 100).description(""))
        ->type_name("N")
        ->group(kFileGroup);
    app.add_option_function<std::string>(
           "--compression",
           [&save](const std::string& word) { ParseCompression(word, save.encode); },
           "Of PNG 0 to 9 (3), of TIFF none, lzw, deflate (the default)\nor group4 (that of black "
           "and white)")
        ->type_name("WORD")
        ->group(kFileGroup);
}

}  // namespace

std::vector<std::string> WordsOfFileOption(std::string_view flag) {
    std::vector<std::string> words;
    if (flag == "--format") {
        words = OutputFormats();
    } else if (flag == "--depth") {
        for (const int depth : kDepths) {
            words.push_back(std::to_string(depth));
        }
    } else if (flag == "--compression") {
        for (int level = 0; level <= kHighestLevel; ++level) {
            words.push_back(std::to_string(level));
        }
        for (const CompressionWord& known : kCompressions) {
            words.emplace_back(known.word);
        }
    }
    return words;
}

void AddFileOptions(CLI::App& app, FileOptions& files) {
    AddInputs(app, files);
    AddOutput(app, files);
    AddEncoding(app, files.save);
    app.add_flag("--force", files.save.overwrite, "Overwrite what exists")->group(kFileGroup);
    app.add_flag("--accept-loss", files.acceptLoss,
                 "Go on where a layered result cannot keep or show everything")
        ->group(kFileGroup);
    app.add_option("--jobs", files.jobs, "Worker processes for several inputs (1)")
        ->check(CLI::Range(1, 1024).description(""))
        ->type_name("N")
        ->group(kFileGroup);
    app.add_flag("--quiet", files.quiet, "Say nothing but errors")->group(kOtherGroup);
    app.add_flag("--verbose", files.verbose, "Tell about every run")
        ->group(kOtherGroup)
        ->excludes("--quiet");
}

}  // namespace imgbasic::host
