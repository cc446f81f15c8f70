#pragma once

#include <span>
#include <string>
#include <string_view>

#include "plugin/imgbasic/filter_option.h"

namespace imgbasic::host {

// What hosts of ours call the filters and their options, in English.

struct ChoiceWord {
    std::string_view word;
    std::string_view meaning;
};

struct OptionWords {
    std::string_view option;  ///< FilterOption::name
    /// What to write behind "--"; of a switch that is on at first, behind "--no-". Empty where the
    /// command line has no flag for it.
    std::string_view flag{};
    /// What the flag asks for; of a choice, what its words are about.
    std::string_view text{};
    std::span<const ChoiceWord> choices{};  ///< of a choice, in the order of its values
};

struct FilterWords {
    std::string_view filter;  ///< FilterRow::name
    std::string_view summary;
    std::string_view example;                ///< a command line, without the program's name
    std::span<const OptionWords> options{};  ///< in the order of the filter's row
};

/// The flag of an option on the command line: "--dither", "--no-bound-alpha"; empty for none.
std::string FlagOf(const FilterOption& option, const OptionWords& words);

/// The words of a filter that is known to exist.
const FilterWords& WordsOf(std::string_view filter);

}  // namespace imgbasic::host
