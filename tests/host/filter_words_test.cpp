#include "host/filter_words.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "host/options.h"
#include "plugin/imgbasic/filters.h"

namespace imgbasic::host {
namespace {

std::string Code(std::string_view text) {
    return text.empty() ? std::string() : std::string("`").append(text).append("`");
}

std::string Line(std::initializer_list<std::string> cells) {
    std::string line = "|";
    for (const std::string& cell : cells) {
        line.append(" ").append(cell).append(" |");
    }
    return line.append("\n");
}

std::string ValuesText(const FilterOption& option, const OptionWords& words) {
    if (option.kind != OptionKind::Choice) {
        return RangeText(option);
    }
    std::string text;
    for (size_t value = 0; value < words.choices.size(); ++value) {
        text.append(value == 0 ? "" : ", ").append(std::to_string(value)).append(" ");
        text += Code(words.choices[value].word);
    }
    return text;
}

std::string DefaultText(const FilterOption& option, const OptionWords& words) {
    if (!option.Allows(option.initial)) {
        return "none";
    }
    return option.kind == OptionKind::Choice
               ? Code(words.choices[static_cast<size_t>(option.initial)].word)
               : std::to_string(option.initial);
}

std::string FilterTable() {
    constexpr const char* kBatchTexts[] = {"no", "at once", "by dialog"};
    std::string table =
        Line({"filter", "name", "what it does", "changes the size", "batch use", "phases"}) +
        Line({"---", "---", "---", "---", "---", "---"});
    for (const FilterRow& row : kFilterRows) {
        table += Line({Code(row.name), row.displayName.utf8, std::string(WordsOf(row.name).summary),
                       row.changesSize ? "yes" : "no", kBatchTexts[static_cast<size_t>(row.batch)],
                       std::to_string(row.phases)});
    }
    return table;
}

std::string OptionTable() {
    std::string table = Line({"filter", "option", "flag", "values", "default"}) +
                        Line({"---", "---", "---", "---", "---"});
    for (const FilterRow& row : kFilterRows) {
        const OptionWords* words = WordsOf(row.name).options.data();
        for (const FilterOption& option : row.options) {
            table +=
                Line({Code(row.name), Code(option.name) + (option.isStored ? "" : ", not stored"),
                      Code(FlagOf(option, *words)), ValuesText(option, *words),
                      DefaultText(option, *words)});
            ++words;
        }
    }
    return table;
}

TEST(FilterWords, PageTellsOfEveryFilterAndOptionAsItIs) {
    std::ifstream file(IMGBASIC_FILTERS_PAGE);
    const std::string page{std::istreambuf_iterator<char>(file), {}};
    for (const std::string& table : {FilterTable(), OptionTable()}) {
        EXPECT_NE(page.find("\n\n" + table + "\n"), std::string::npos)
            << IMGBASIC_FILTERS_PAGE << " should have this table:\n"
            << table;
    }
}

}  // namespace
}  // namespace imgbasic::host
