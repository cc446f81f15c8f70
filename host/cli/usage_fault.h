#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class ParseError;
}  // namespace CLI

namespace imgbasic::host {

/// What is wrong with a command line that `app` could not parse, for people, and what may have
/// been meant by a word that is not known.
std::string DescribeFault(const CLI::App& app, const CLI::ParseError& fault);

/// The same, and where to look the right words up.
std::string DescribeFaultAndHelp(const CLI::App& app, const CLI::ParseError& fault);

/// The same of a word that is none of the filters or commands that are known.
std::string DescribeUnknown(const std::string& word, const std::vector<std::string>& known);

/// The one of `known` that `word` is likely a misspelling of; empty when none is near.
std::string NearestWord(std::string_view word, const std::vector<std::string>& known);

}  // namespace imgbasic::host
