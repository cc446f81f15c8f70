#include <CLI/CLI.hpp>
#include <charconv>
#include <memory>
#include <span>

#include "host/cli/filter_command.h"
#include "plugin/imgbasic/process.h"

namespace imgbasic::host {
namespace {

/// A word of the command line for a number of the module's.
struct Choice {
    std::string_view word;
    int32_t value;
    std::string_view meaning;
};

constexpr Choice kTargets[] = {
    {"merged", MergedImage, "what the layers show together; one layer remains (the default)"},
    {"all", AllLayers, "every layer by itself"},
    {"current", CurrentLayer, "the layer that --layer and --sub-layer name"},
};

constexpr Choice kGrayMethods[] = {
    {"average", 0, "middle of the largest and the smallest channel (the default)"},
    {"rgb", 1, "mean of red, green and blue"},
    {"ntsc", 2, "luma Y: channels weighted as the eye does, green most"},
    {"value", 3, "V of HSV: the largest channel"},
    {"red", 4, "the red channel"},
    {"green", 5, "the green channel"},
    {"blue", 6, "the blue channel"},
    {"saturation", 7, "S of HSV: vivid colours become light, greys black"},
    {"cb", 8, "colour difference Cb: blue becomes light, yellow dark"},
    {"cr", 9, "colour difference Cr; what it takes off is red and green"},
};

constexpr Choice kGrayTints[] = {
    {"white", 0, "plain grey (the default)"},
    {"red", 1, "black to red"},
    {"green", 2, "black to green"},
    {"blue", 3, "black to blue"},
    {"magenta", 4, "black to magenta"},
    {"cyan", 5, "black to cyan"},
    {"yellow", 6, "black to yellow"},
    {"draw", 7, "black to the colour of --draw-color"},
    {"back", 8, "black to the colour of --back-color"},
};

constexpr Choice kDithers[] = {
    {"none", 0, "the nearest palette colour, flat areas"},
    {"pattern", 1, "a regular pattern of dots"},
    {"small", 2, "error diffusion, fine grain"},
    {"large", 3, "error diffusion that gathers up the errors (the default)"},
};

constexpr Choice kInterpolations[] = {
    {"nearest", 0, "repeats or drops pixels, keeps hard edges"},
    {"average", 1, "mean of all covered pixels, best for reducing"},
    {"bilinear", 2, "blends neighbouring pixels, smooth enlarging (the default)"},
};

constexpr Choice kBoundaries[] = {
    {"clip", 0, "there is nothing (the default)"},
    {"clamp", 1, "the border pixels go on"},
    {"repeat", 2, "the picture begins again at the other side"},
};

constexpr const char* kFilterGroup = "What the filter does";
constexpr const char* kLayerGroup = "Which layers";
constexpr const char* kOutputGroup = "Files";
constexpr const char* kOtherGroup = "Other";

/// The text, then a line for every word.
std::string Described(std::string text, std::span<const Choice> choices) {
    size_t longest = 0;
    for (const Choice& choice : choices) {
        longest = std::max(longest, choice.word.size());
    }
    for (const Choice& choice : choices) {
        text.append("\n  ").append(choice.word).append(longest - choice.word.size() + 2, ' ');
        text.append(choice.meaning);
    }
    return text;
}

/// The number of the word that was given; anything else ends the parsing.
int32_t ValueOf(const std::string& flag, const std::string& word, std::span<const Choice> choices) {
    std::string words;
    for (const Choice& choice : choices) {
        if (choice.word == word) {
            return choice.value;
        }
        words.append(words.empty() ? "" : ", ").append(choice.word);
    }
    throw CLI::ValidationError(flag, "'" + word + "' is none of " + words);
}

using CLI::App;

void AddChoice(App& app, FilterCommand& command, const std::string& flag, const char* field,
               const std::string& text, std::span<const Choice> choices) {
    app.add_option_function<std::string>(
           flag,
           [&command, flag, field, choices](const std::string& word) {
               command.options.push_back(
                   Option(command.filter, field, ValueOf(flag, word, choices)));
           },
           Described(text, choices))
        ->type_name("WORD")
        ->group(kFilterGroup);
}

/// Refuses other numbers; the texts of the options say which are meant.
CLI::Validator Between(int32_t least, int32_t most) {
    return CLI::Range(least, most).description("");
}

void AddNumber(App& app, FilterCommand& command, const std::string& flag, const char* field,
               const std::string& text, const CLI::Validator& range) {
    app.add_option_function<int32_t>(
           flag,
           [&command, field](const int32_t& value) {
               command.options.push_back(Option(command.filter, field, value));
           },
           text)
        ->check(range)
        ->type_name("N")
        ->group(kFilterGroup);
}

void AddSwitch(App& app, FilterCommand& command, const std::string& flag, const char* field,
               bool value, const std::string& text) {
    app.add_flag_callback(
           flag,
           [&command, field, value] {
               command.options.push_back(Option(command.filter, field, value));
           },
           text)
        ->group(kFilterGroup);
}

void AddColor(App& app, const std::string& flag, uint32_t& color, const std::string& text) {
    app.add_option_function<std::string>(
           flag,
           [flag, &color](const std::string& digits) {
               const char* end = digits.data() + digits.size();
               const auto [stop, fault] = std::from_chars(digits.data(), end, color, 16);
               if (digits.size() != 6 || fault != std::errc() || stop != end) {
                   throw CLI::ValidationError(flag, "'" + digits + "' is no colour such as 336699");
               }
           },
           text)
        ->type_name("RRGGBB")
        ->group(kFilterGroup);
}

void AddGray(App& app, FilterCommand& command) {
    AddChoice(app, command, "--method", "CalcMode",
              "How the grey is made of a colour:", kGrayMethods);
    AddChoice(app, command, "--tint", "ColorMode", "What the grey is coloured with:", kGrayTints);
    AddColor(app, "--draw-color", command.drawColor, "For --tint draw, hexadecimal (000000)");
    AddColor(app, "--back-color", command.backColor, "For --tint back, hexadecimal (FFFFFF)");
}

void AddMono(App& app, FilterCommand& command) {
    AddNumber(app, command, "--threshold", "Threshold",
              "Red level, 1 to 255, from which a pixel is white (128)", Between(1, 255));
}

void AddNothing(App& /*app*/, FilterCommand& /*command*/) {
}

void AddReduce(App& app, FilterCommand& command) {
    AddNumber(app, command, "--colors", "ReduceColor", "At most so many colours, 1 to 256 (16)",
              Between(1, 256));
    AddChoice(app, command, "--dither", "DitherType",
              "How colours between those of the palette are shown:", kDithers);
    AddSwitch(app, command, "--share-palette", "SharePalette", true,
              "The palette of the topmost layer serves all layers");
    AddSwitch(app, command, "--graduate", "GraduateReduce", true,
              "Halve the colours step by step from 256");
    app.add_flag("--indexed", command.indexed, "Write a PNG with a palette, 8 bits a channel")
        ->group(kFilterGroup);
}

void ParseBox(const std::string& text, std::optional<PixelSize>& box) {
    PixelSize size;
    const char* end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.width);
    const auto height = width.ptr == end ? width : std::from_chars(width.ptr + 1, end, size.height);
    const auto isSide = [](int32_t side) { return side >= kSmallestSide && side <= kLargestSide; };
    if (width.ptr == end || *width.ptr != 'x' || height.ptr != end || !isSide(size.width) ||
        !isSide(size.height)) {
        throw CLI::ValidationError("--fit", "'" + text +
                                                "' is no box such as 640x480; each side must be "
                                                "1 to 8192 pixels");
    }
    box = size;
}

void AddSide(App& app, const std::string& flag, std::optional<int32_t>& side,
             const std::string& text) {
    app.add_option(flag, side, text)
        ->check(Between(kSmallestSide, kLargestSide))
        ->type_name("PIXELS")
        ->group(kFilterGroup)
        ->excludes("--ratio", "--fit");
}

void AddScaling(App& app, FilterCommand& command) {
    SizeRequest& size = command.size;
    const auto percent = Between(1, 819200);
    auto* ratio = app.add_option("--ratio", size.ratio, "New size in percent of the old one");
    ratio->check(percent)->type_name("PERCENT")->group(kFilterGroup);
    app.add_option("--ratio-height", size.ratioHeight, "Another percentage for the height")
        ->check(percent)
        ->type_name("PERCENT")
        ->group(kFilterGroup)
        ->needs(ratio);
    app.add_option_function<std::string>(
           "--fit", [&size](const std::string& text) { ParseBox(text, size.fit); },
           "The largest size of the same shape inside a box")
        ->type_name("WxH")
        ->group(kFilterGroup)
        ->excludes(ratio);
    AddSide(app, "--width", size.width, "New width; alone it keeps the shape");
    AddSide(app, "--height", size.height, "New height; alone it keeps the shape");
    AddChoice(app, command, "--interp", "InterType",
              "How pixels between those of the picture are made:", kInterpolations);
    AddChoice(app, command, "--boundary", "BoundaryType",
              "What bilinear sees beyond the border:", kBoundaries);
    AddSwitch(app, command, "--no-bound-alpha", "BoundAlpha", false,
              "Bilinear with clamp or repeat: do not fade out at the border");
    AddSwitch(app, command, "--no-change-brush", "ChangeBrush", false,
              "Report no factor for the sizes of brushes (to hosts that have some)");
}

/// What every filter's command has.
void AddFiles(App& app, FilterCommand& command) {
    app.add_option("IN", command.inputs, "Images: PNG, JPEG, WebP, TIFF or OpenRaster")
        ->required()
        ->type_name("");
    app.add_option(
           "-o,--output", command.output,
           "File to write, its ending chooses the format, or a folder\n"
           "(DIR/) that gets every result under its input's name and\nis made when it is not there")
        ->required()
        ->type_name("OUT")
        ->group(kOutputGroup);
    app.add_option("--depth", command.save.bitDepth,
                   "Bits a channel, 8 or 16, instead of the input's")
        ->check(CLI::IsMember({8, 16}).description(""))
        ->type_name("BITS")
        ->group(kOutputGroup);
    app.add_flag("--force", command.save.overwrite, "Overwrite what exists")->group(kOutputGroup);
    app.add_option("--jobs", command.jobs, "Worker processes for several inputs (1)")
        ->check(Between(1, 1024))
        ->type_name("N")
        ->group(kOutputGroup);
    app.add_flag("--quiet", command.quiet, "Say nothing but errors")->group(kOtherGroup);
    app.add_flag("--verbose", command.verbose, "Tell about every run")
        ->group(kOtherGroup)
        ->excludes("--quiet");
}

void AddLayers(App& app, FilterCommand& command) {
    const bool hasTarget = FindOption(command.filter, "TargetType") != nullptr;
    if (hasTarget) {
        app.add_option_function<std::string>(
               "--target",
               [&command](const std::string& word) {
                   command.target = ValueOf("--target", word, kTargets);
               },
               Described("What the filter works on:", kTargets))
            ->type_name("WORD")
            ->group(kLayerGroup);
    }
    const std::string implied = hasTarget ? "\n(means --target current unless that is given)" : "";
    const auto position = Between(0, INT32_MAX);
    auto* layer = app.add_option("--layer", command.layer,
                                 "The current layer or folder, 0 on top; `imgbasic info` lists "
                                 "them" +
                                     implied);
    layer->check(position)->type_name("N")->group(kLayerGroup);
    app.add_option("--sub-layer", command.subLayer, "The current layer inside that folder")
        ->check(position)
        ->type_name("N")
        ->group(kLayerGroup)
        ->needs(layer);
}

void AddSettings(App& app, FilterCommand& command) {
    std::string fields;
    for (const OptionField& field : OptionFields(command.filter)) {
        fields.append("\n  ").append(field.name);
    }
    app.add_option_function<std::vector<std::string>>(
           "--set",
           [&command](const std::vector<std::string>& texts) {
               for (const std::string& text : texts) {
                   try {
                       command.options.push_back(ParseOption(command.filter, text));
                   } catch (const std::invalid_argument& fault) {
                       throw CLI::ValidationError("--set", fault.what());
                   }
               }
           },
           "Set an option by its name in the module:" + fields)
        ->expected(1)
        ->take_all()
        ->type_name("FIELD=N")
        ->group(kFilterGroup);
    app.add_flag("--remember", command.remember, "Keep these options as the defaults of later runs")
        ->group(kFilterGroup);
}

struct Subcommand {
    const char* filter;
    const char* summary;
    const char* example;
    bool hasCurrentLayer;
    void (*add)(App& app, FilterCommand& command);
};

constexpr Subcommand kSubcommands[] = {
    {"gray", "Make shades of grey, or of one colour",
     "gray photo.jpg -o grey.png --method ntsc --tint draw --draw-color 336699", true, AddGray},
    {"mono", "Make every pixel black or white", "mono scan.png -o lines.png --threshold 100", true,
     AddMono},
    {"nega", "Invert the tones", "nega *.png -o negatives/ --jobs 4", true, AddNothing},
    {"chan_decomp", "Split a layer into one layer per channel",
     "chan_decomp paint.ora -o channels.ora --layer 2", true, AddNothing},
    {"chan_merge", "Join the layers of the four channels into one again",
     "chan_merge channels.ora -o paint.ora --layer 5", true, AddNothing},
    {"col_reduce", "Reduce the number of colours",
     "col_reduce photo.jpg -o few.png --colors 64 --dither small --indexed", true, AddReduce},
    {"scaling", "Enlarge or reduce the picture",
     "scaling photo.jpg -o small.jpg --fit 1024x768 --interp average", false, AddScaling},
};

}  // namespace

void AddFilterCommands(CLI::App& app, const std::function<void(const FilterCommand&)>& run) {
    for (const Subcommand& row : kSubcommands) {
        App* subcommand = app.add_subcommand(row.filter, row.summary);
        const auto command = std::make_shared<FilterCommand>();
        command->filter = row.filter;
        row.add(*subcommand, *command);
        if (!OptionFields(row.filter).empty()) {
            AddSettings(*subcommand, *command);
        }
        if (row.hasCurrentLayer) {
            AddLayers(*subcommand, *command);
        }
        AddFiles(*subcommand, *command);
        subcommand->set_help_flag("-h,--help", "Show this help")->group(kOtherGroup);
        subcommand->footer(std::string("\nExample: imgbasic ") + row.example);
        subcommand->callback([command, run] { run(*command); });
    }
}

}  // namespace imgbasic::host
