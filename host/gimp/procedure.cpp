#include "host/gimp/procedure.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "host/filter_words.h"
#include "host/gimp/layers.h"
#include "host/gimp/words.h"
#include "host/opaque_defaults.h"
#include "host/options.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

/// run mode, image and drawable
constexpr size_t kCommonParams = 3;

std::string ProcedureName(const FilterRow& filter) {
    std::string name = std::string("imgbasic-") + filter.name;
    std::ranges::replace(name, '_', '-');
    return name;
}

/// "CalcMode" as GIMP writes names: "calc-mode".
std::string ParamName(const FilterOption& option) {
    std::string name;
    for (const char* c = option.name; *c != '\0'; ++c) {
        const bool isUpper = std::isupper(static_cast<unsigned char>(*c)) != 0;
        if (isUpper && !name.empty()) {
            name += '-';
        }
        name += static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
    }
    return name;
}

bool IsAllowed(const FilterOption& option, int32_t value) {
    return option.Allows(value) || value == option.initial;
}

/// "1 to 255", and 0 where an option that is not set has it.
std::string Values(const FilterOption& option) {
    return RangeText(option) +
           (option.Allows(option.initial) ? "" : ", or " + std::to_string(option.initial));
}

std::string ParamHelp(const FilterOption& option, const OptionWords& words) {
    std::string help = LabelOf(option);
    if (option.kind != OptionKind::Choice) {
        return help + " (" + Values(option) + ")";
    }
    for (size_t i = 0; i < words.choices.size(); ++i) {
        help.append(i == 0 ? " (" : ", ").append(std::to_string(i)).append(" ");
        help.append(words.choices[i].word);
    }
    return help + ")";
}

}  // namespace

void InstallProcedure(const FilterRow& filter) {
    const FilterWords& words = WordsOf(filter.name);
    std::vector<std::string> texts;
    texts.reserve(2 * filter.options.size());
    std::vector<GimpParamDef> params;
    const auto add = [&](GimpPDBArgType type, const char* name, const char* help) {
        params.push_back({type, const_cast<gchar*>(name), const_cast<gchar*>(help)});
    };
    add(GIMP_PDB_INT32, "run-mode", "0 interactive, 1 as given here, 2 with the last values");
    add(GIMP_PDB_IMAGE, "image", "RGB image, 8 to 64 bits a channel");
    add(GIMP_PDB_DRAWABLE, "drawable", "Layer, the current one");
    for (size_t i = 0; i < filter.options.size(); ++i) {
        const FilterOption& option = filter.options[i];
        const std::string& name = texts.emplace_back(ParamName(option));
        add(GIMP_PDB_INT32, name.c_str(),
            texts.emplace_back(ParamHelp(option, words.options[i])).c_str());
    }
    const GimpParamDef result{GIMP_PDB_LAYER, const_cast<gchar*>("layer"),
                              const_cast<gchar*>("What stands where the drawable was")};
    const std::string name = ProcedureName(filter);
    const std::string summary(words.summary);
    const std::string label = std::string(TitleOf(filter)) + (filter.options.empty() ? "" : "...");
    gimp_install_procedure(name.c_str(), summary.c_str(), summary.c_str(), "imgbasic", "imgbasic",
                           IMGBASIC_VERSION, label.c_str(), "*", GIMP_PLUGIN,
                           static_cast<gint>(params.size()), 1, params.data(), &result);
    gimp_plugin_menu_register(name.c_str(), "<Image>/Filters/imgbasic");
}

const FilterRow* FindProcedure(std::string_view name) {
    const auto* const row = std::ranges::find(kFilterRows, name, ProcedureName);
    return row != kFilterRows.end() ? row : nullptr;
}

std::vector<int32_t> InitialValues(const FilterRow& filter, gint32 image) {
    const gint32 whole = WholePictureLayer(image);
    const bool isOpaque = whole != -1 && !gimp_drawable_has_alpha(whole);
    std::vector<int32_t> values;
    for (const FilterOption& option : filter.options) {
        const std::optional<int32_t> whenOpaque = OpaqueDefault(option.name);
        const bool isTarget = std::string_view(option.name) == "TargetType";
        values.push_back(isTarget                 ? static_cast<int32_t>(CurrentLayer)
                         : isOpaque && whenOpaque ? *whenOpaque
                                                  : option.initial);
    }
    return values;
}

std::vector<int32_t> ValuesFrom(const FilterRow& filter, std::span<const GimpParam> params) {
    if (params.size() != kCommonParams + filter.options.size()) {
        throw std::invalid_argument(ProcedureName(filter) + " takes " +
                                    std::to_string(kCommonParams + filter.options.size()) +
                                    " arguments; Help > Procedure Browser lists them");
    }
    std::vector<int32_t> values;
    for (const FilterOption& option : filter.options) {
        const int32_t value = params[kCommonParams + values.size()].data.d_int32;
        if (!IsAllowed(option, value)) {
            throw std::invalid_argument(ProcedureName(filter) + ": " + ParamName(option) + " is " +
                                        std::to_string(value) + "; it must be " + Values(option));
        }
        values.push_back(value);
    }
    return values;
}

std::optional<std::vector<int32_t>> LastValues(const FilterRow& filter) {
    const std::string name = ProcedureName(filter);
    std::vector<int32_t> values(filter.options.size());
    const size_t size = values.size() * sizeof(int32_t);
    if (size == 0 || static_cast<size_t>(gimp_get_data_size(name.c_str())) != size ||
        !gimp_get_data(name.c_str(), values.data())) {
        return std::nullopt;
    }
    return values;
}

void KeepValues(const FilterRow& filter, const std::vector<int32_t>& values) {
    gimp_set_data(ProcedureName(filter).c_str(), values.data(),
                  static_cast<guint32>(values.size() * sizeof(int32_t)));
}

}  // namespace imgbasic::host
