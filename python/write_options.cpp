// Prints imgbasic/_options.py: what the Python package knows of the filters, from their tables.

#include <algorithm>
#include <array>
#include <iomanip>
#include <iostream>

#include "host/filter_words.h"
#include "host/opaque_defaults.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

/// What only concerns pictures of several layers, or brushes.
constexpr std::array<std::string_view, 3> kLeftOut{"TargetType", "SharePalette", "ChangeBrush"};

std::string ParameterOf(const OptionWords& words) {
    std::string name(words.flag);
    std::ranges::replace(name, '-', '_');
    return name;
}

void Print(const FilterOption& option, const OptionWords& words) {
    std::cout << "        " << std::quoted(ParameterOf(words)) << ": Option("
              << std::quoted(option.name) << ", " << std::quoted(words.text) << ", " << option.least
              << ", " << option.most << ", ";
    if (option.Allows(option.initial)) {
        std::cout << option.initial << ", ";
    } else {
        std::cout << "None, ";
    }
    std::cout << OpaqueDefault(option.name).value_or(option.initial) << ", {";
    for (const ChoiceWord& choice : words.choices) {
        std::cout << "\n            " << std::quoted(choice.word) << ": "
                  << std::quoted(choice.meaning) << ",";
    }
    std::cout << "}),\n";
}

void Print(const FilterRow& row) {
    const FilterWords& filter = WordsOf(row.name);
    std::cout << "    " << std::quoted(row.name) << ": Filter(" << std::quoted(filter.summary)
              << (row.changesSize ? ", True, {\n" : ", False, {\n");
    for (size_t i = 0; i < row.options.size(); ++i) {
        const FilterOption& option = row.options[i];
        const OptionWords& words = filter.options[i];
        if (!words.flag.empty() && std::ranges::find(kLeftOut, option.name) == kLeftOut.end()) {
            Print(option, words);
        }
    }
    std::cout << "    }),\n";
}

}  // namespace
}  // namespace imgbasic::host

int main() {
    std::cout << "# Made by write_options.cpp when the project is built.\n"
                 "from ._tables import Filter, Option\n\n"
                 "VERSION = \"" IMGBASIC_VERSION
                 "\"\n"
                 "MODULE_FOLDER = \"" IMGBASIC_MODULE_FOLDER
                 "\"\n"
                 "FILTERS = {\n";
    for (const imgbasic::FilterRow& row : imgbasic::kFilterRows) {
        imgbasic::host::Print(row);
    }
    std::cout << "}\n";
}
