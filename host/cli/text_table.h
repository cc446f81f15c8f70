#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace imgbasic::host {

/// Columns that a text takes on a terminal: two for a wide (East Asian) character, none for a
/// combining one. `text` is UTF-8.
size_t DisplayWidth(std::string_view text);

using TextRow = std::vector<std::string>;

/// The rows as lines, their columns aligned on a terminal and two blanks apart.
std::string AlignColumns(const std::vector<TextRow>& rows);

}  // namespace imgbasic::host
