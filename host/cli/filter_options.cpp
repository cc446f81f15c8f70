#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <memory>
#include <span>

#include "host/cli/filter_command.h"
#include "host/cli/option_effects.h"
#include "host/filter_words.h"
#include "host/opaque_defaults.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

constexpr std::string_view kTargetType = "TargetType";

constexpr const char* kFilterGroup = "What the filter does";
constexpr const char* kLayerGroup = "Which layers";

using CLI::App;

/// Behind the word of a value: for whom it is the default.
std::string_view DefaultMark(const FilterOption& option, int32_t value) {
    const std::optional<int32_t> whenOpaque = OpaqueDefault(option.name);
    if (value == whenOpaque) {
        return " (the default for a single opaque layer)";
    }
    if (value == option.initial) {
        return whenOpaque ? " (the default for other pictures)" : " (the default)";
    }
    return "";
}

/// The text, then a line for every word.
std::string Described(const FilterOption& option, const OptionWords& words) {
    size_t longest = 0;
    for (const ChoiceWord& choice : words.choices) {
        longest = std::max(longest, choice.word.size());
    }
    std::string text(words.text);
    text += ':';
    for (const ChoiceWord& choice : words.choices) {
        text.append("\n  ").append(choice.word).append(longest - choice.word.size() + 2, ' ');
        text.append(choice.meaning);
        text += DefaultMark(option, static_cast<int32_t>(&choice - words.choices.data()));
    }
    return text;
}

/// The number of the word that was given; anything else ends the parsing.
int32_t ValueOf(const std::string& flag, const std::string& word, const OptionWords& words) {
    std::string known;
    int32_t value = 0;
    for (const ChoiceWord& choice : words.choices) {
        if (choice.word == word) {
            return value;
        }
        ++value;
        known.append(known.empty() ? "" : ", ").append(choice.word);
    }
    throw CLI::ValidationError(flag, "'" + word + "' is none of " + known);
}

/// Refuses other numbers; the texts of the options say which are meant.
CLI::Validator Between(int32_t least, int32_t most) {
    return CLI::Range(least, most).description("");
}

CLI::Validator InRange(const FilterOption& option) {
    return Between(option.least, option.most);
}

/// Adds the flag of an option, whose value goes to `take`.
CLI::Option* AddOption(App& app, const FilterOption& option, const OptionWords& words,
                       const std::function<void(int32_t)>& take) {
    const std::string flag = FlagOf(option, words);
    switch (option.kind) {
        case OptionKind::Number:
            return app
                .add_option_function<int32_t>(flag, take,
                                              std::string(words.text) + ", " + RangeText(option) +
                                                  " (" + std::to_string(option.initial) + ")")
                ->check(InRange(option))
                ->type_name("N");
        case OptionKind::Choice:
            return app
                .add_option_function<std::string>(
                    flag,
                    [&words, flag, take](const std::string& word) {
                        take(ValueOf(flag, word, words));
                    },
                    Described(option, words))
                ->type_name("WORD");
        case OptionKind::Switch:
            break;
    }
    return app.add_flag_callback(
        flag, [take, value = 1 - option.initial] { take(value); }, std::string(words.text));
}

/// Adds the flags of the filter's options, but for those that exist already, under a form of
/// their own, and TargetType's, which belongs to the layers.
void AddOptions(App& app, FilterCommand& command) {
    for (const OptionWords& words : WordsOf(command.filter).options) {
        const FilterOption& option = *FindOption(command.filter, words.option);
        if (words.flag.empty() || words.option == kTargetType || !option.isStored ||
            app.get_option_no_throw(FlagOf(option, words)) != nullptr) {
            continue;
        }
        const auto take = [&command, &option](int32_t value) {
            command.options.push_back({&option, value});
        };
        AddOption(app, option, words, take)->group(kFilterGroup);
        if (option.kind == OptionKind::Switch && OpaqueDefault(option.name)) {
            // The default depends on the picture, so that both values need a flag.
            app.add_flag_callback(
                   "--" + std::string(words.flag), [take, value = option.initial] { take(value); },
                   "The contrary, the default but for a single opaque layer")
                ->group(kFilterGroup);
        }
    }
}

/// Reads "336699", or "369" for the same, with or without a '#' before it; nothing for anything
/// else.
std::optional<uint32_t> ParseColor(std::string_view text) {
    std::string digits(text.substr(text.starts_with('#') ? 1 : 0));
    if (digits.size() == 3) {
        digits = {digits[0], digits[0], digits[1], digits[1], digits[2], digits[2]};
    }
    uint32_t color = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, fault] = std::from_chars(digits.data(), end, color, 16);
    return digits.size() == 6 && fault == std::errc() && stop == end ? std::optional(color)
                                                                     : std::nullopt;
}

void AddColor(App& app, const std::string& flag, uint32_t& color, const std::string& text) {
    app.add_option_function<std::string>(
           flag,
           [flag, &color](const std::string& word) {
               const std::optional<uint32_t> read = ParseColor(word);
               if (!read) {
                   throw CLI::ValidationError(flag,
                                              "'" + word + "' is no colour such as 336699 or #369");
               }
               color = *read;
           },
           text)
        ->type_name("RRGGBB")
        ->group(kFilterGroup);
}

void AddColors(App& app, FilterCommand& command) {
    AddColor(app, "--draw-color", command.drawColor, "For --tint draw, hexadecimal (000000)");
    AddColor(app, "--back-color", command.backColor, "For --tint back, hexadecimal (FFFFFF)");
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

/// The flag and the words of an option of scaling that is part of the size asked for.
std::pair<std::string, std::string> SizeWords(std::string_view name) {
    const FilterWords& filter = WordsOf("scaling");
    const OptionWords& words = *std::ranges::find(filter.options, name, &OptionWords::option);
    return {FlagOf(*FindOption(filter.filter, name), words), std::string(words.text)};
}

CLI::Option* AddSide(App& app, std::string_view name, std::optional<int32_t>& side) {
    const auto [flag, text] = SizeWords(name);
    return app.add_option(flag, side, text)
        ->check(InRange(*FindOption("scaling", name)))
        ->type_name("PIXELS")
        ->group(kFilterGroup);
}

CLI::Option* AddRatio(App& app, std::string_view name, std::optional<Ratio>& ratio,
                      const std::string& remark) {
    const auto [flag, text] = SizeWords(name);
    return app
        .add_option_function<std::string>(
            flag,
            [flag = flag, &ratio](const std::string& word) {
                ratio = ParseRatio(word);
                if (!ratio) {
                    throw CLI::ValidationError(
                        flag, "'" + word +
                                  "' is no percentage such as 50, 33.3 or 150%, and no "
                                  "fraction such as 1/3");
                }
            },
            text + remark)
        ->type_name("PERCENT")
        ->group(kFilterGroup);
}

/// Returns the flag that can be given alone.
CLI::Option* AddRatios(App& app, SizeRequest& size) {
    auto* ratio = AddRatio(app, "RatioWidth", size.ratio, ", such as 50, 33.3 or 1/3");
    AddRatio(app, "RatioHeight", size.ratioHeight, "")->needs(ratio);
    return ratio;
}

void AddSizes(App& app, FilterCommand& command) {
    SizeRequest& size = command.size;
    auto* ratio = AddRatios(app, size);
    auto* fit = app.add_option_function<std::string>(
                       "--fit", [&size](const std::string& text) { ParseBox(text, size.fit); },
                       "The largest size of the same shape inside a box")
                    ->type_name("WxH")
                    ->group(kFilterGroup)
                    ->excludes(ratio);
    AddSide(app, "newWidth", size.width)->excludes(ratio, fit);
    AddSide(app, "newHeight", size.height)->excludes(ratio, fit);
}

void AddSettings(App& app, FilterCommand& command) {
    std::string fields;
    for (const FilterOption& option : OptionsOf(command.filter)) {
        fields.append("\n  ").append(option.name);
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
        ->allow_extra_args(false)
        ->type_name("FIELD=N")
        ->group(kFilterGroup);
}

void AddMemory(App& app, FilterCommand& command) {
    app.add_flag("--remembered", command.remembered,
                 "Start from the stored options, not from the defaults;\nIMGBASIC_REMEMBERED=1 in "
                 "the environment does so always")
        ->envname("IMGBASIC_REMEMBERED")
        ->group(kFilterGroup);
    app.add_flag("--remember", command.remember, "Store the options of this run")
        ->group(kFilterGroup);
}

/// Adds the flag for TargetType, where the filter has it; null otherwise.
CLI::Option* AddTarget(App& app, FilterCommand& command) {
    const std::span<const OptionWords> words = WordsOf(command.filter).options;
    const auto target = std::ranges::find(words, kTargetType, &OptionWords::option);
    if (target == words.end()) {
        return nullptr;
    }
    return AddOption(app, *FindOption(command.filter, kTargetType), *target,
                     [&command](int32_t value) { command.target = value; });
}

void AddLayers(App& app, FilterCommand& command) {
    CLI::Option* const target = AddTarget(app, command);
    if (target != nullptr) {
        target->group(kLayerGroup);
    }
    const std::string implied =
        target != nullptr ? "\n(means --target current unless that is given)" : "";
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

/// What a filter's command has besides its options.
struct Extra {
    std::string_view filter;
    void (*add)(App& app, FilterCommand& command);
};

/// Added before the options, and after them.
constexpr Extra kExtrasBefore[] = {{"scaling", AddSizes}};
constexpr Extra kExtrasBehind[] = {{"gray", AddColors}};

void AddExtras(std::span<const Extra> extras, App& app, FilterCommand& command) {
    for (const Extra& extra : extras) {
        if (extra.filter == command.filter) {
            extra.add(app, command);
        }
    }
}

}  // namespace

void AddFilterOptions(CLI::App& app, FilterCommand& command) {
    AddExtras(kExtrasBefore, app, command);
    AddOptions(app, command);
    AddExtras(kExtrasBehind, app, command);
    if (!OptionsOf(command.filter).empty()) {
        AddSettings(app, command);
        AddMemory(app, command);
    }
    // Another size is every layer's.
    if (!std::ranges::find(kFilterRows, command.filter, &FilterRow::name)->changesSize) {
        AddLayers(app, command);
    }
    app.parse_complete_callback([&] { command.notes = IneffectiveFlags(app, command); });
}

void AddStoredOptions(CLI::App& app, FilterCommand& command) {
    if (command.filter == "scaling") {
        AddRatios(app, command.size);
    }
    AddOptions(app, command);
    if (CLI::Option* const target = AddTarget(app, command)) {
        target->group(kFilterGroup);
    }
    AddSettings(app, command);
}

}  // namespace imgbasic::host
